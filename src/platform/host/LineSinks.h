#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
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

/// One log for several sinks, which stay the caller's.
class TeeLineSink final : public LineSink {
 public:
  void Add(LineSink* sink) { sinks_.push_back(sink); }
  void WriteLine(std::string_view line) override {
    for (LineSink* sink : sinks_) sink->WriteLine(line);
  }

 private:
  std::vector<LineSink*> sinks_;
};

/// Keeps of a user log what somebody who does not read it must be told: the warnings, and where the run
/// failed, what the log says from there on.
class LogDigest final : public LineSink {
 public:
  void WriteLine(std::string_view line) override;
  /// The lines that begin with "Warning", each text once, in the order of their first appearance.
  const std::vector<std::string>& Warnings() const { return warnings_; }
  /// The lines from the first one that begins with "Error", without empty ones.
  const std::vector<std::string>& Errors() const { return errors_; }

 private:
  std::vector<std::string> warnings_;
  std::vector<std::string> errors_;
  std::unordered_set<std::string> known_;
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
  void WriteOut();

  std::string file_;
  std::FILE* stream_;  ///< unbuffered: it keeps the error, the lines wait here
  std::string lines_;
};

}  // namespace excelexp
