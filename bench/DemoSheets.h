#pragma once

#include <string>
#include <vector>

namespace excelexp {

/// The names of the demo's worksheets, of all its spreadsheets. The first is the breakdown by company and
/// department.
std::vector<std::string> DemoSheetNames();

/// Writes a demo database (seed 1) in which each worksheet is a spreadsheet of its own, of the same name.
/// Throws what WriteDemoDatabase throws.
void WriteDemoSheets(const std::string& file, int employees);

}  // namespace excelexp
