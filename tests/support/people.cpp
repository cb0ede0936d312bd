#include "support/people.h"

#include "platform/database/SqlText.h"
#include "support/mini_payroll.h"

namespace excelexp {
namespace {

/// An insert whose key is one more than the highest.
std::string Insert(const std::string& table, const std::string& key, const std::string& columns,
                   const std::string& values) {
  return "INSERT INTO " + table + " (" + key + ", " + columns + ") SELECT COALESCE(MAX(" + key +
         "), 0) + 1, " + values + " FROM " + table + ";\n";
}

std::string Texts(std::initializer_list<std::string> texts) {
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "" : ", ") + SqlText(text);
  return list;
}

}  // namespace

std::string PeopleSql() {
  return MiniPayrollSql() + R"(
INSERT INTO Race VALUES ('R1', 'First');
INSERT INTO Personal (PersonalSysId, PersonalName, IdentityNo, Gender) VALUES (16, 'Flo Gray', 'P16', '0');
UPDATE Personal SET RaceId = 'R1' WHERE PersonalSysId IN (11, 16);
UPDATE Employee SET HireDate = '2020-09-05', PreviousSvcYear = 1.5, BasicRate = 2500 WHERE EmployeeSysId = 2;
INSERT INTO Family (FamilySysId, PersonalSysId, FamilyMemberName, FamilyRelation) VALUES
  (1, 11, 'Abe', 'Son'), (2, 11, 'Amy', 'Daughter'), (3, 11, 'Ann', 'Wife'), (4, 14, 'Cleo', 'Wife');

CREATE TABLE Figures (AnlysItemRecYear integer DEFAULT 2024, AnlysItemRecPeriodMonth integer DEFAULT 6,
  AnlysItemRecSubPeriod integer DEFAULT 0, AnlysPayRecBasis varchar(40) DEFAULT 'Normal', Basis1Id varchar(40),
  AnlysDispSectionId varchar(40) DEFAULT 'PayElement', AnlysItem1Id varchar(40) DEFAULT 'BASIC',
  AnlysItemDesc varchar(40) DEFAULT 'Basic', AnlysAmount1 decimal(16, 2));
INSERT INTO Figures (Basis1Id, AnlysAmount1) VALUES ('1', 3100), ('4', 2600);
INSERT INTO AnlysProject (AnlysProjectId, AnlysSetupId, CycleGroupBy, SummaryLevel)
  VALUES ('Pay', 'Figures', 'PeriodGrpPd', 'SumLevelEmpee');
INSERT INTO FinancialRpt (FinancialRptId, FinancialAnalysProjId, LayoutSchemeId)
  VALUES ('Pay', 'Pay', 'BreakdownList');
INSERT INTO FinanceColItem (FinColItemSysId, FinancialRptId, FinColItemOrder, FinColItemType, FinColItem,
                            FinColGrouping, FinColComponent, FinColItemTitle, ColourSchemeId)
  VALUES (900, 'Pay', 1, 'AnlysItem', 'BASIC', 'PayElement', 'PayElementAmt', 'Basic', 'Body');
)";
}

std::string InformationItemSql(const InformationItem& item) {
  const std::string sys_id = std::to_string(200 + item.ordering);
  return "INSERT INTO EmployeeRpt VALUES (" + Texts({item.id, "", item.type}) + ", " +
         (item.filter.empty() ? "0" : "1") + ", " + SqlText(item.filter) + ", " +
         std::to_string(item.employees_only) + ", " + std::to_string(item.employee_count) + ");\n" +
         "INSERT INTO ExcelWkSheetItem VALUES (" + sys_id + ", 1, " + std::to_string(item.ordering) + ", " +
         Texts({"EmployeeRpt", item.id}) + ");\n";
}

std::string PayItemSql(int ordering) {
  return "INSERT INTO ExcelWkSheetItem VALUES (300, 1, " + std::to_string(ordering) +
         ", 'FinancialRpt', 'Pay');\n"
         "INSERT INTO ExcelWSItemRptOpts (WkSheetItemSysId) VALUES (300);\n";
}

std::string InformationColumnSql(const InformationColumn& column) {
  return Insert("EmpColItem", "EmpColItemSysId",
                "EmpInfoRptId, EmpColItemType, EmpColSysTableId, EmpColSysAttributeId, EmpColItemTitle, "
                "ColourSchemeId, EmpColItemOrder, EmpColIsRptMainInfo",
                Texts({column.report, column.attribute.empty() ? "BlankItem" : "", column.table,
                       column.attribute, column.title, "Body"}) +
                    ", " + std::to_string(column.order) + ", " + std::to_string(column.main_info));
}

std::string InformationSortSql(int order, const std::string& table, const std::string& attribute,
                               const std::string& report) {
  return Insert("EmpSortItem", "EmpSortItemSysId",
                "EmpInfoRptId, EmpSortSysTableId, EmpSortSysAttributeId, EmpSortItemOrder",
                Texts({report, table, attribute}) + ", " + std::to_string(order));
}

std::string InformationGroupSql(int order, const std::string& table, const std::string& attribute,
                                const std::string& title, int employee_count, const std::string& report) {
  return Insert("EmpGrpItem", "EmpGrpItemSysId",
                "EmpInfoRptId, EmpGrpSysTableId, EmpGrpSysAttributeId, EmpGrpItemTitle, ColourSchemeId, "
                "EmpGrpItemOrder, EmpGrpHasEmpCount",
                Texts({report, table, attribute, title, "Body"}) + ", " + std::to_string(order) + ", " +
                    std::to_string(employee_count));
}

}  // namespace excelexp
