#pragma once

#include <string>

#include "platform/spreadsheet/formula/NumberPattern.h"

namespace excelexp::formula {

/// Writes a serial day number by a section with date tokens. The last shown unit of seconds is rounded,
/// larger ones are cut. Throws FormulaError (#VALUE!) outside the calendar.
std::string DateText(const PatternSection& section, double serial);

}  // namespace excelexp::formula
