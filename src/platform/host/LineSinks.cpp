#include "platform/host/LineSinks.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace excelexp {

FileLineSink::FileLineSink(const std::string& file) : file_(file), stream_(nullptr) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (descriptor >= 0) stream_ = ::fdopen(descriptor, "w");
  if (stream_ == nullptr) {
    const int reason = errno;
    if (descriptor >= 0) ::close(descriptor);
    throw std::system_error(reason, std::generic_category(), "cannot write the log " + file);
  }
}

FileLineSink::~FileLineSink() {
  std::fclose(stream_);
}

void FileLineSink::WriteLine(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stream_);
  std::fputc('\n', stream_);
}

void FileLineSink::Flush() {
  if (std::fflush(stream_) != 0 || std::ferror(stream_) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot write the log " + file_);
  }
}

}  // namespace excelexp
