#pragma once

#include <string>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp::xls {

/// The stream "\5SummaryInformation" of a compound file: title, application and creation time. Written here
/// and not by libgsf, whose code page follows the process locale.
std::string SummaryInformation(const Workbook& workbook);

}  // namespace excelexp::xls
