#pragma once

#include <string_view>

namespace excelexp {

/// Why the application would refuse a number format, as the end of a sentence; nullptr for one that it takes.
/// A file with a format that the application refuses is opened for repair. Checks the frame of the code
/// (sections, quotes, brackets, escapes), not the order of its placeholders.
const char* NumberFormatProblem(std::string_view code);

}  // namespace excelexp
