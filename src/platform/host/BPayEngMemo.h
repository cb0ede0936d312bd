#pragma once

#include <string_view>

namespace excelexp {

/// One of the two logs: takes whole lines, without line ends.
class LineSink {
 public:
  virtual ~LineSink() = default;
  virtual void WriteLine(std::string_view line) = 0;
};

/// The log writer: the user's log and the internal, technical one. A sink that is not attached takes nothing.
/// The sinks belong to the host and outlive the writer.
class BPayEngMemo {
 public:
  void SetLogMemo(LineSink* sink) { log_memo_ = sink; }
  void SetInternalMemo(LineSink* sink) { internal_memo_ = sink; }

  /// Appends one line to both logs.
  void WriteAllMemo(std::string_view text);
  /// Appends one line to the internal log only.
  void WriteInternalMemo(std::string_view text);

 private:
  LineSink* log_memo_ = nullptr;
  LineSink* internal_memo_ = nullptr;
};

}  // namespace excelexp
