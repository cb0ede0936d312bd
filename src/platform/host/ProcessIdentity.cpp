#include "platform/host/ProcessIdentity.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>

namespace excelexp {
namespace {

constexpr std::size_t kShortBootId = 8;  // hexadecimal digits

std::string ReadAll(const std::string& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// FNV-1a, 32 bits (its parameters: draft-eastlake-fnv, section 5).
std::uint32_t Hash(std::string_view text) {
  std::uint32_t hash = 0x811C9DC5;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x01000193;
  return hash;
}

template <typename Number>
std::optional<Number> ParseHex(std::string_view text) {
  Number number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (result.ec != std::errc{} || result.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

std::uint32_t Machine() {
  std::array<char, 256> name{};
  gethostname(name.data(), name.size() - 1);
  return Hash(std::string(name.data()) + "\n" + ReadAll("/etc/machine-id"));
}

std::uint32_t Boot() {
  const std::string id = ReadAll("/proc/sys/kernel/random/boot_id");
  return ParseHex<std::uint32_t>(std::string_view(id).substr(0, kShortBootId)).value_or(0);
}

/// The namespace's number is the inode that its file shows (namespaces(7)).
std::uint32_t PidNamespace() {
  struct stat status {};
  return stat("/proc/self/ns/pid", &status) == 0 ? static_cast<std::uint32_t>(status.st_ino) : 0;
}

struct ProcessState {
  char state = '?';
  std::uint64_t start_time = 0;
};

/// Field 3 (state) and field 22 (start time) of proc(5)'s stat file. The name in field 2 may hold blanks and
/// parentheses, so that counting begins behind the last closing one.
std::optional<ProcessState> ReadState(std::uint32_t pid) {
  const std::string stat = ReadAll("/proc/" + std::to_string(pid) + "/stat");
  const std::size_t name_end = stat.rfind(')');
  if (name_end == std::string::npos) return std::nullopt;
  std::istringstream fields(stat.substr(name_end + 1));
  ProcessState process;
  fields >> process.state;
  std::string skipped;
  for (int field = 4; field < 22; ++field) fields >> skipped;
  fields >> process.start_time;
  if (!fields) return std::nullopt;
  return process;
}

bool IsEndedState(char state) {
  return state == 'Z' || state == 'X' || state == 'x';
}

}  // namespace

ProcessIdentity CurrentProcess() {
  ProcessIdentity self;
  self.machine = Machine();
  self.boot = Boot();
  self.pid_namespace = PidNamespace();
  self.pid = static_cast<std::uint32_t>(getpid());
  if (const auto state = ReadState(self.pid)) self.start_time = state->start_time;
  return self;
}

std::string ToText(const ProcessIdentity& process) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::hex << process.machine << '-' << process.boot << '-' << process.pid_namespace << '-'
       << process.pid << '-' << process.start_time;
  return text.str();
}

std::optional<ProcessIdentity> ParseProcessIdentity(std::string_view text) {
  std::array<std::uint64_t, 5> numbers{};
  std::string_view rest = text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const bool last = i + 1 == numbers.size();
    const std::size_t end = last ? rest.size() : rest.find('-');
    if (end == std::string_view::npos) return std::nullopt;
    const auto number = ParseHex<std::uint64_t>(rest.substr(0, end));
    if (!number || (!last && *number > std::numeric_limits<std::uint32_t>::max())) return std::nullopt;
    numbers[i] = *number;
    rest.remove_prefix(last ? end : end + 1);
  }
  const ProcessIdentity process = {
      static_cast<std::uint32_t>(numbers[0]), static_cast<std::uint32_t>(numbers[1]),
      static_cast<std::uint32_t>(numbers[2]), static_cast<std::uint32_t>(numbers[3]), numbers[4]};
  if (ToText(process) != text) return std::nullopt;
  return process;
}

bool HasEnded(const ProcessIdentity& process) {
  const ProcessIdentity self = CurrentProcess();
  if (process.machine != self.machine || process.boot == 0 || self.boot == 0) return false;
  if (process.boot != self.boot) return true;
  if (process.pid_namespace != self.pid_namespace || self.pid_namespace == 0) return false;
  if (process.pid == 0 || process.pid > std::numeric_limits<std::int32_t>::max()) return false;
  // Signal 0 sees processes that a /proc mounted with hidepid does not show.
  if (kill(static_cast<pid_t>(process.pid), 0) < 0 && errno == ESRCH) return true;
  const auto state = ReadState(process.pid);
  if (!state || process.start_time == 0) return false;
  return state->start_time != process.start_time || IsEndedState(state->state);
}

}  // namespace excelexp
