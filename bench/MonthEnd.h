#pragma once

#include <string>

namespace excelexp {

// The two definitions of a month-end, one worksheet each.

/// Four columns of every employee and twelve pay items in each of three months.
inline constexpr char kFlat[] = "FLAT";
/// The same in groups of five employees, with subtotals and counts.
inline constexpr char kGrouped[] = "GROUPED";

/// Writes the demo's payroll (seed 1) of `employees` people who were all paid in the three months, with the
/// two definitions. Throws what WriteDemoDatabase throws, std::runtime_error when the demo has too few such
/// people.
void WriteMonthEnd(const std::string& file, int employees);
/// Writes the analysis records of FLAT into such a database, as an engine that stores them leaves them under
/// the address "stored".
void StoreRecords(const std::string& file);

}  // namespace excelexp
