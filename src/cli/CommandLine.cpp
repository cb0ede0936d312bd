#include "cli/CommandLine.h"

#include <algorithm>
#include <set>

#include "cli/Console.h"
#include "cli/Process.h"

namespace excelexp::cli {
namespace {

template <typename Row>
const Row* Find(std::span<const Row> rows, std::string_view name) {
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.name == name; });
  return found == rows.end() ? nullptr : &*found;
}

std::string Padded(std::string_view text, std::size_t width) {
  std::string padded(text);
  padded.resize(std::max(padded.size(), width), ' ');
  return padded;
}

std::string Heading(const Option& option) {
  return std::string(option.name) + (option.value.empty() ? "" : " " + std::string(option.value));
}

std::string ProgramHelp() {
  std::string help;
  for (const Verb& verb : Verbs()) help += verb.examples;
  help += "\nVerbs:\n";
  for (const Verb& verb : Verbs()) help += "  " + Padded(verb.name, 8) + std::string(verb.summary) + "\n";
  return help + "\nexcelexp VERB --help tells the options of a verb, excelexp --version the version.\n";
}

std::string VerbHelp(const Verb& verb) {
  std::string help = std::string(verb.examples) + "\n" + std::string(verb.summary) + "\n\nOptions:\n";
  std::size_t width = 0;
  for (const Option& option : verb.options) width = std::max(width, Heading(option).size());
  const std::string next_line = "\n" + std::string(width + 4, ' ');
  for (const Option& option : verb.options) {
    help += "  " + Padded(Heading(option), width) + "  ";
    for (const char c : option.help) help += c == '\n' ? next_line : std::string(1, c);
    help += option.required ? " (required)\n" : "\n";
  }
  return help;
}

void Take(const Option& option, const std::string& value, Settings& settings) {
  if (const auto* flag = std::get_if<bool Settings::*>(&option.take)) {
    settings.** flag = true;
    return;
  }
  if (value.empty()) throw UsageError(std::string(option.name) + " needs a value");
  if (const auto* text = std::get_if<std::string Settings::*>(&option.take)) {
    if (!(settings.**text).empty() && option.required)
      throw UsageError(std::string(option.name) + " is given twice");
    settings.** text = value;
  } else {
    std::get<void (*)(Settings&, const std::string&)>(option.take)(settings, value);
  }
}

/// "--option value" and "--option=value"; no abbreviations, so that a script means the same tomorrow.
Settings Parse(const Verb& verb, std::span<const std::string> arguments) {
  Settings settings;
  std::set<std::string_view> given;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    const std::string name = argument.substr(0, equals);
    const Option* option = Find(verb.options, name);
    if (option == nullptr) {
      throw UsageError((name.starts_with('-') ? "there is no option '" : "nothing is known about '") + name +
                       "'");
    }
    const bool is_switch = option->value.empty();
    if (is_switch && equals != std::string::npos) throw UsageError(name + " takes no value");
    std::string value = equals == std::string::npos ? "" : argument.substr(equals + 1);
    if (!is_switch && equals == std::string::npos && ++i < arguments.size()) value = arguments[i];
    Take(*option, value, settings);
    given.insert(option->name);
  }
  for (const Option& option : verb.options) {
    if (option.required && !given.contains(option.name)) throw UsageError(Heading(option) + " is missing");
  }
  return settings;
}

ExitCode RunVerb(const Verb& verb, std::span<const std::string> arguments) {
  if (std::find(arguments.begin(), arguments.end(), "--help") != arguments.end())
    return Print(VerbHelp(verb)) ? kDone : kFailed;
  try {
    return verb.run(Parse(verb, arguments));
  } catch (const UsageError& error) {
    ShowError(std::string(error.what()) + "; see 'excelexp " + std::string(verb.name) + " --help'");
    return kWrongUsage;
  } catch (const ArgumentError& error) {
    ShowError(error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    ShowError(Interrupted() ? "interrupted" : error.what());
    return Interrupted() ? kInterrupted : kFailed;
  }
}

}  // namespace

ExitCode RunCommandLine(std::span<const std::string> arguments) {
  const std::string first = arguments.empty() ? "" : arguments.front();
  if (first == "--help") return Print(ProgramHelp()) ? kDone : kFailed;
  if (first == "--version") return Print("excelexp " EXCELEXP_VERSION "\n") ? kDone : kFailed;
  if (const Verb* verb = Find(Verbs(), first)) return RunVerb(*verb, arguments.subspan(1));
  ShowError((first.empty() ? "a verb is missing" : "there is no verb '" + first + "'") +
            "; see 'excelexp --help'");
  return kWrongUsage;
}

}  // namespace excelexp::cli
