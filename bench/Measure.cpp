#include "bench/Measure.h"

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace excelexp {
namespace {

std::int64_t StatusBytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field)) return std::strtoll(line.c_str() + field.size(), nullptr, 10) * 1024;
  }
  return -1;
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  path_ = (std::filesystem::temp_directory_path() / "excelexp-bench-XXXXXX").string();
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder '" + path_ + "'");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::int64_t PeakBytesHere(const std::function<void()>& work) {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";  // the peak starts again from here
  const std::int64_t base = StatusBytes("VmRSS:");
  work();
  return StatusBytes("VmHWM:") - base;
}

std::int64_t PeakBytes(const std::function<void()>& work) {
  int ends[2];
  if (pipe(ends) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    const std::int64_t rise = PeakBytesHere(work);
    _exit(write(ends[1], &rise, sizeof rise) == sizeof rise ? 0 : 1);
  }
  close(ends[1]);
  std::int64_t rise = -1;
  if (read(ends[0], &rise, sizeof rise) != sizeof rise) rise = -1;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return rise;
}

}  // namespace excelexp
