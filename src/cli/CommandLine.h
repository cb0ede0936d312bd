#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace excelexp::cli {

enum ExitCode {
  kDone = 0,  ///< export: a file was written
  kFailed = 1,
  kWrongUsage = 2,      ///< or no such database
  kNothingWritten = 3,  ///< cancelled in the dialog, no worksheets
  kInterrupted = 130
};

/// An argument that names nothing usable, in one sentence: exit code 2.
class ArgumentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Arguments that are put wrongly: the same, and the help is pointed at.
class UsageError : public ArgumentError {
 public:
  using ArgumentError::ArgumentError;
};

/// What the options of all verbs say.
struct Settings {
  std::string database;
  std::vector<std::pair<std::string, std::string>> aliases;  ///< further databases: name, file
  std::string spreadsheet;
  std::string output;
  std::string log;
  std::string internal_log;
  std::string trace;
  std::string workstation;
  std::string view_table;
  std::string progress = "auto";
  int employees = 25;
  std::uint64_t seed = 1;
  bool quiet = false;
  bool verbose = false;
};

/// Where an option's value goes: a switch, a text, or a function that takes the text apart.
using Taker =
    std::variant<bool Settings::*, std::string Settings::*, void (*)(Settings&, const std::string&)>;

struct Option {
  std::string_view name;
  std::string_view value;  ///< what the help calls the value; "" for a switch
  Taker take;
  std::string_view help;
  bool required = false;
};

struct Verb {
  std::string_view name;
  std::string_view summary;
  std::string_view examples;
  std::span<const Option> options;
  ExitCode (*run)(const Settings& settings);
};

/// The table that everything else is made from: verbs, options, help, dispatch.
std::span<const Verb> Verbs();

/// Runs what the arguments (without the program's name) ask for.
ExitCode RunCommandLine(std::span<const std::string> arguments);

}  // namespace excelexp::cli
