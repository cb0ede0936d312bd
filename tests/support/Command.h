#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace excelexp::test {

/// What a finished command left. `code` is the exit code, or minus the signal that ended it.
struct CommandResult {
  int code = 0;
  std::string out;
  std::string err;  ///< with a terminal, everything that the terminal showed but standard output
};

struct CommandOptions {
  std::string program = EXCELEXP_COMMAND;
  std::string folder = {};     ///< the current folder
  bool terminal = false;       ///< standard input and error are a terminal; else input is empty
  std::string typed = {};      ///< what is typed on the terminal
  bool unprivileged = false;   ///< gives up root's rights, if it has them
  bool closed_output = false;  ///< standard output is a pipe that nobody reads
};

/// The built command as a process of its own. Killed if it still runs when the object goes.
class Command {
 public:
  explicit Command(std::vector<std::string> arguments, CommandOptions options = {});
  ~Command();
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  pid_t Pid() const { return pid_; }
  void Signal(int number) const;
  /// What standard error holds so far.
  std::string ErrorSoFar() const { return ReadOutput("err"); }
  /// Waits for the end; throws after some time.
  CommandResult Wait();

 private:
  [[noreturn]] void BecomeCommand(int terminal);
  bool HasEnded();
  void ReadTerminal();
  std::string ReadOutput(const char* name) const;

  std::vector<std::string> arguments_;
  CommandOptions options_;
  std::string output_folder_;
  pid_t pid_ = -1;
  int status_ = 0;
  int terminal_ = -1;
  std::string shown_;
};

/// Runs the command to its end.
CommandResult RunCommand(std::vector<std::string> arguments, CommandOptions options = {});

}  // namespace excelexp::test
