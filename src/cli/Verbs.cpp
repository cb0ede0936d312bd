#include "cli/Verbs.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace excelexp::cli {
namespace {

bool IsName(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  });
}

/// FILE, or NAME=FILE for a further alias. What stands before "=" is a name only if it looks like one, so
/// that "./a=b.db" is a file.
void TakeDatabase(Settings& settings, const std::string& value) {
  const std::size_t equals = value.find('=');
  const std::string name = value.substr(0, equals);
  if (equals == std::string::npos || !IsName(name)) {
    if (!settings.database.empty()) {
      throw UsageError("two files for --database, '" + settings.database + "' and '" + value +
                       "'; a further one needs a name, NAME=FILE");
    }
    settings.database = value;
    return;
  }
  const auto same = [&](const auto& alias) { return alias.first == name; };
  if (std::any_of(settings.aliases.begin(), settings.aliases.end(), same))
    throw UsageError("two files for --database " + name);
  if (equals + 1 == value.size()) throw UsageError("--database " + value + " names no file");
  settings.aliases.emplace_back(name, value.substr(equals + 1));
}

void TakeViewTable(Settings& settings, const std::string& value) {
  if (!IsName(value))
    throw UsageError("--view-table '" + value + "' is no name of letters, digits and underscores");
  settings.view_table = value;
}

void TakeProgress(Settings& settings, const std::string& value) {
  if (value != "auto" && value != "always" && value != "never")
    throw UsageError("--progress takes auto, always or never, not '" + value + "'");
  settings.progress = value;
}

template <typename Number>
Number TakeNumber(std::string_view option, const std::string& value, Number low, Number high) {
  Number number = 0;
  const auto result = std::from_chars(value.data(), value.data() + value.size(), number);
  if (result.ec != std::errc{} || result.ptr != value.data() + value.size() || number < low ||
      number > high) {
    throw UsageError(std::string(option) + " takes a number from " + std::to_string(low) + " to " +
                     std::to_string(high) + ", not '" + value + "'");
  }
  return number;
}

void TakeEmployees(Settings& settings, const std::string& value) {
  settings.employees = TakeNumber("--employees", value, 1, 100000);
}

void TakeSeed(Settings& settings, const std::string& value) {
  settings.seed = TakeNumber<std::uint64_t>("--seed", value, 0, std::numeric_limits<std::uint64_t>::max());
}

constexpr Option kExportOptions[] = {
    {"--database", "[NAME=]FILE", &TakeDatabase,
     "the database with the definition; with NAME= a further one under that\n"
     "alias (\"varndb\", the payroll, is the first one unless given)",
     true},
    {"--spreadsheet", "ID", &Settings::spreadsheet, "the definition to export", true},
    {"--output", "FILE", &Settings::output,
     "the workbook to write, .xls or .xlsx; without it a terminal is asked,\n"
     "else the definition's file name is used in the current folder"},
    {"--log", "FILE", &Settings::log, "the user log"},
    {"--internal-log", "FILE", &Settings::internal_log, "the technical log, which holds the user log too"},
    {"--trace", "FILE", &Settings::trace, "every failing SQL statement with the database's error"},
    {"--workstation", "ADDRESS", &Settings::workstation,
     "what keys the analysis records, which are in memory (default: the host name)"},
    {"--view-table", "NAME", &TakeViewTable,
     "the view of the employees that may be seen (default: ViewEmployee)"},
    {"--quiet", "", &Settings::quiet, "no messages but errors"},
    {"--verbose", "", &Settings::verbose, "the user log on standard error as it grows"},
    {"--progress", "WHEN", &TakeProgress, "a progress bar: auto (on a terminal, the default), always, never"},
    {"--help", "", &Settings::quiet, "this text"},
};

constexpr Option kListOptions[] = {
    {"--database", "FILE", &Settings::database, "the database with the definitions", true},
    {"--help", "", &Settings::quiet, "this text"},
};

constexpr Option kDemoOptions[] = {
    {"--output", "FILE", &Settings::output, "the database to make; an existing file is left alone", true},
    {"--employees", "N", &TakeEmployees, "how many employees, 1 to 100000 (default: 25)"},
    {"--seed", "N", &TakeSeed, "another number makes other people (default: 1)"},
    {"--quiet", "", &Settings::quiet, "no messages but errors"},
    {"--help", "", &Settings::quiet, "this text"},
};

constexpr Verb kVerbs[] = {
    {"export", "Turns a stored definition into a workbook and prints the file's name.",
     "  excelexp export --database payroll.db --spreadsheet MONTHLY\n"
     "  excelexp export --database payroll.db --spreadsheet MONTHLY --output Payroll.xlsx --log user.log\n",
     kExportOptions, &RunExport},
    {"list", "Shows the stored definitions with their worksheets and items.",
     "  excelexp list --database payroll.db\n", kListOptions, &RunList},
    {"demo", "Makes a payroll database of invented people, with definitions to export.",
     "  excelexp demo --output demo.db\n"
     "  excelexp demo --output large.db --employees 10000 --seed 7\n",
     kDemoOptions, &RunDemo},
};

}  // namespace

std::span<const Verb> Verbs() {
  return kVerbs;
}

}  // namespace excelexp::cli
