#pragma once

#include <string>

#include "platform/host/HostServices.h"

namespace excelexp {

/// Shows a run as one line of text: a bar, the share done, the worksheet, entity n of m, the time left.
/// The bar never moves back, though a grouped worksheet counts the entities of each group anew.
class ProgressLine {
 public:
  /// `seconds` since the run began; `width` in columns, of which no more are used. Control characters of a
  /// worksheet name do not survive.
  std::string Text(const Progress& progress, double seconds, int width);

 private:
  double share_ = 0.0;
};

/// "0:42", "12:05", "1:02:03".
std::string DurationText(double seconds);

/// A text for a terminal: UTF-8, every control character a blank.
std::string TerminalText(std::string_view text);

}  // namespace excelexp
