#include "cli/Console.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "cli/Process.h"
#include "platform/host/ProgressLine.h"

namespace excelexp::cli {
namespace {

constexpr int kLookForSignalsMs = 200;

bool transient_shown = false;

/// False, with errno, when not everything was written.
bool WriteAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

void ShowLine(std::string_view text) {
  ShowTransient("");
  WriteAll(STDERR_FILENO, TerminalText(text) + "\n");
}

void ShowError(std::string_view text) {
  ShowLine("excelexp: " + std::string(text));
}

void ShowTransient(std::string_view text) {
  if (text.empty() && !transient_shown) return;
  // Back to the first column; what a longer line left behind is erased (ECMA-48, EL).
  WriteAll(STDERR_FILENO, "\r" + std::string(text) + "\x1B[K");
  transient_shown = !text.empty();
}

bool Print(std::string_view text) {
  if (WriteAll(STDOUT_FILENO, text) || errno == EPIPE) return true;
  ShowError("standard output cannot be written: " + std::generic_category().message(errno));
  return false;
}

bool Ask(std::string_view question, std::string& answer) {
  ShowTransient("");
  WriteAll(STDERR_FILENO, TerminalText(question));
  answer.clear();
  while (!Interrupted()) {
    // A signal that comes between the look at it and the read would not end the read.
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    if (poll(&input, 1, kLookForSignalsMs) <= 0) continue;
    char c = 0;
    const ssize_t count = read(STDIN_FILENO, &c, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0 && answer.empty()) break;
    if (count <= 0 || c == '\n') return true;
    answer += c;
  }
  WriteAll(STDERR_FILENO, "\n");
  return false;
}

bool InputIsTerminal() {
  return isatty(STDIN_FILENO) == 1;
}

bool ErrorIsTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

int TerminalWidth() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace excelexp::cli
