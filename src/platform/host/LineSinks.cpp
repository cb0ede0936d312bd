#include "platform/host/LineSinks.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace excelexp {

void LogDigest::WriteLine(std::string_view line) {
  if (line.empty()) return;
  if (!errors_.empty() || line.starts_with("Error")) {
    errors_.emplace_back(line);
  } else if (line.starts_with("Warning") && known_.emplace(line).second) {
    warnings_.emplace_back(line);
  }
}

namespace {

constexpr std::size_t kBufferBytes = 64 << 10;  // a month-end writes twenty megabytes of log

/// A log of an earlier run keeps the mode that it has when it is opened. Terminals and pipes keep theirs.
void CloseToOthers(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) fchmod(descriptor, 0600);
}

}  // namespace

FileLineSink::FileLineSink(const std::string& file) : file_(file), stream_(nullptr) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (descriptor >= 0) CloseToOthers(descriptor);
  if (descriptor >= 0) stream_ = ::fdopen(descriptor, "w");
  if (stream_ != nullptr) std::setvbuf(stream_, nullptr, _IONBF, 0);
  if (stream_ == nullptr) {
    const int reason = errno;
    if (descriptor >= 0) ::close(descriptor);
    throw std::system_error(reason, std::generic_category(), "cannot write the log " + file);
  }
  lines_.reserve(kBufferBytes);
}

FileLineSink::~FileLineSink() {
  WriteOut();
  std::fclose(stream_);
}

void FileLineSink::WriteLine(std::string_view line) {
  if (lines_.size() + line.size() >= kBufferBytes) WriteOut();
  lines_.append(line).push_back('\n');
}

void FileLineSink::WriteOut() {
  std::fwrite(lines_.data(), 1, lines_.size(), stream_);
  lines_.clear();
}

void FileLineSink::Flush() {
  WriteOut();
  if (std::ferror(stream_) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot write the log " + file_);
  }
}

}  // namespace excelexp
