#pragma once

#include <string>

namespace excelexp {

/// The mini payroll (employees 1 to 5, who are the persons 11 to 15) with what information reports show
/// beside: a person 16 who is no employee, family members, races; and the pay report 'Pay' about employees 1
/// and 4.
std::string PeopleSql();

/// An information report as an item of worksheet 1.
struct InformationItem {
  std::string id = "I1";
  int ordering = 1;
  std::string type = "Employee";  ///< ExcelEmpRpt
  std::string filter = "";        ///< "" is a report without filter
  int employees_only = 1;
  int employee_count = 0;
};
std::string InformationItemSql(const InformationItem& item);

/// The report 'Pay' as an item of worksheet 1.
std::string PayItemSql(int ordering);

/// A column; of type "BlankItem" when it has no attribute.
struct InformationColumn {
  int order = 1;
  std::string table = "Employee";
  std::string attribute = "";
  std::string title = "";
  int main_info = 0;
  std::string report = "I1";
};
std::string InformationColumnSql(const InformationColumn& column);

std::string InformationSortSql(int order, const std::string& table, const std::string& attribute,
                               const std::string& report = "I1");
std::string InformationGroupSql(int order, const std::string& table, const std::string& attribute,
                                const std::string& title, int employee_count,
                                const std::string& report = "I1");

}  // namespace excelexp
