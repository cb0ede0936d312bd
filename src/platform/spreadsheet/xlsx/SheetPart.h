#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/spreadsheet/Workbook.h"
#include "platform/spreadsheet/formula/FitFormula.h"

namespace excelexp {
class FormatCensus;
}

namespace excelexp::xlsx {

class Package;
class SharedStrings;

/// What the sheets of a file share.
struct SheetContext {
  const Workbook& workbook;
  Package& package;
  SharedStrings& strings;
  const FormatCensus& formats;              ///< of every cell
  std::vector<formula::HiddenName>& names;  ///< grows by those that divided formulas need
};

/// Adds the part of the worksheet with that number, counted from 1.
void WriteSheet(SheetContext& context, std::size_t number);

/// The part's name below "xl/".
std::string SheetPartName(std::size_t number);

}  // namespace excelexp::xlsx
