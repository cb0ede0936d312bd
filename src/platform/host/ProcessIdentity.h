#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace excelexp {

/// What tells one process from every other, also from a later one with the same number and from one on
/// another machine. 0 stands for what the system does not tell.
struct ProcessIdentity {
  std::uint32_t machine = 0;  ///< hash of the host name and the machine's id
  std::uint32_t boot = 0;     ///< beginning of the boot id
  std::uint32_t pid_namespace = 0;
  std::uint32_t pid = 0;
  std::uint64_t start_time = 0;  ///< in clock ticks after the boot

  friend bool operator==(const ProcessIdentity&, const ProcessIdentity&) = default;
};

/// The calling process.
ProcessIdentity CurrentProcess();

/// The five numbers in hexadecimal with "-" between them.
std::string ToText(const ProcessIdentity& process);
/// Nothing for a text that ToText does not give.
std::optional<ProcessIdentity> ParseProcessIdentity(std::string_view text);

/// True when the process has certainly ended: it ran on this machine before its last start, or its number is
/// free here, or a later process has the number, or only its exit status is left. False for a process that
/// lives and for every one that cannot be judged from here (another machine, another container, no /proc).
bool HasEnded(const ProcessIdentity& process);

}  // namespace excelexp
