#pragma once

#include <string>
#include <string_view>

namespace excelexp::test {

/// A script that makes a database of the complete schema (demo/schema.sql) with these rows, in one
/// transaction: without one, every statement would wait for the disk.
std::string PayrollScript(const std::string& rows = "");

/// Rows for small definitions. Each is one or more whole statements.
std::string Spreadsheet(std::string_view id, std::string_view file_name);
std::string Worksheet(int sys_id, std::string_view spreadsheet, std::string_view name,
                      std::string_view summary_level = "SumLevelEmpee");
/// A financial item; its report, project and options are made with it. `setup` is the table or view that the
/// records come from.
std::string FinancialItem(int sys_id, int worksheet, int ordering, std::string_view report,
                          std::string_view setup);
/// A setup view of `records` records, each of another employee.
std::string SetupView(std::string_view name, int records);
/// A setup view that never ends.
std::string EndlessSetupView(std::string_view name);
/// Makes the options of one item a statement that never ends; those of every other item stay.
std::string EndlessOptions(int item_sys_id);

}  // namespace excelexp::test
