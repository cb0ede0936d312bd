#include "support/Command.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace excelexp::test {
namespace {

constexpr auto kLongestRun = std::chrono::seconds(20);
constexpr uid_t kNobody = 65534;
constexpr int kCannotRun = 127;

void Redirect(int descriptor, const std::string& file, int flags) {
  const int opened = open(file.c_str(), flags, 0600);
  if (opened < 0 || dup2(opened, descriptor) < 0) _exit(kCannotRun);
}

}  // namespace

Command::Command(std::vector<std::string> arguments, CommandOptions options)
    : arguments_(std::move(arguments)), options_(std::move(options)) {
  arguments_.insert(arguments_.begin(), options_.program);
  output_folder_ = (std::filesystem::temp_directory_path() / "excelexp-command-XXXXXX").string();
  if (mkdtemp(output_folder_.data()) == nullptr) throw std::runtime_error("no temp folder");
  int slave = -1;
  if (options_.terminal) {
    terminal_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal_ < 0 || grantpt(terminal_) != 0 || unlockpt(terminal_) != 0)
      throw std::runtime_error("no terminal");
    slave = open(ptsname(terminal_), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (write(terminal_, options_.typed.data(), options_.typed.size()) < 0)
      throw std::runtime_error("nothing can be typed");
  }
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no process");
  if (pid_ == 0) BecomeCommand(slave);
  if (slave >= 0) close(slave);
}

Command::~Command() {
  if (pid_ > 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  if (terminal_ >= 0) close(terminal_);
  std::filesystem::remove_all(output_folder_);
}

void Command::BecomeCommand(int terminal) {
  Redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
  Redirect(STDOUT_FILENO, output_folder_ + "/out", O_WRONLY | O_CREAT);
  Redirect(STDERR_FILENO, output_folder_ + "/err", O_WRONLY | O_CREAT);
  if (terminal >= 0 && (dup2(terminal, STDIN_FILENO) < 0 || dup2(terminal, STDERR_FILENO) < 0))
    _exit(kCannotRun);
  int unread[2];
  if (options_.closed_output &&
      (pipe(unread) != 0 || dup2(unread[1], STDOUT_FILENO) < 0 || close(unread[0]) != 0)) {
    _exit(kCannotRun);
  }
  if (!options_.folder.empty() && chdir(options_.folder.c_str()) != 0) _exit(kCannotRun);
  if (options_.unprivileged && geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0))
    _exit(kCannotRun);
  std::vector<char*> arguments;
  for (std::string& argument : arguments_) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  execv(arguments[0], arguments.data());
  _exit(kCannotRun);
}

void Command::Signal(int number) const {
  kill(pid_, number);
}

void Command::ReadTerminal() {
  pollfd ready = {terminal_, POLLIN, 0};
  char buffer[4096];
  while (terminal_ >= 0 && poll(&ready, 1, 0) > 0) {
    const ssize_t count = read(terminal_, buffer, sizeof buffer);
    if (count <= 0) return;
    shown_.append(buffer, static_cast<std::size_t>(count));
  }
}

bool Command::HasEnded() {
  ReadTerminal();
  if (waitpid(pid_, &status_, WNOHANG) != pid_) return false;
  ReadTerminal();
  pid_ = -1;
  return true;
}

CommandResult Command::Wait() {
  const auto end = std::chrono::steady_clock::now() + kLongestRun;
  while (!HasEnded()) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("the command does not end");
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  const int code = WIFEXITED(status_) ? WEXITSTATUS(status_) : -WTERMSIG(status_);
  return {code, ReadOutput("out"), ReadOutput("err") + shown_};
}

std::string Command::ReadOutput(const char* name) const {
  std::ifstream stream(output_folder_ + "/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

CommandResult RunCommand(std::vector<std::string> arguments, CommandOptions options) {
  return Command(std::move(arguments), std::move(options)).Wait();
}

}  // namespace excelexp::test
