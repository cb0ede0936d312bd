#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/BPayEngMemo.h"

namespace excelexp {

/// A log in memory.
class MemoryLineSink final : public LineSink {
 public:
  void WriteLine(std::string_view line) override { lines_.emplace_back(line); }
  const std::vector<std::string>& Lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

/// A log in a file: written anew, buffered, readable by its owner only because it names employees.
class FileLineSink final : public LineSink {
 public:
  /// Throws std::system_error, naming the file, when it cannot be opened.
  explicit FileLineSink(const std::string& file);
  ~FileLineSink() override;
  FileLineSink(const FileLineSink&) = delete;
  FileLineSink& operator=(const FileLineSink&) = delete;

  void WriteLine(std::string_view line) override;
  /// Throws std::system_error, naming the file, when something could not be written.
  void Flush();

 private:
  std::string file_;
  std::FILE* stream_;
};

}  // namespace excelexp
