// The services that turn definitions into SQL and formulas, and the record lookup.

#include "platform/database/DatabaseError.h"
#include "platform/database/DatabaseRegistry.h"
#include "services/AnalysisRecordLookup.h"
#include "services/BExcelExpEngCalcFields.h"
#include "services/BExcelExpEngDecodeFormula.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

TEST(CalcFields, SelectNameTypeAndCondition) {
  Scenario scenario;
  struct Row {
    std::string table;
    std::string attribute;
    int by_employee;
    std::string value;
    std::string select;
    std::string name;
    std::string type;
    std::string condition;
  };
  const std::string code = "FGetCodeDescription(Employee.EmployeeSysId, '";
  const std::string person_code = "FGetCodeDescriptionByPersonal(Personal.PersonalSysId, '";
  const std::string years = "ROUND(CAST(MONTHS(Employee.HireDate, NOW())AS Double)/12 + PreviousSvcYear, 2)";
  const std::string due = "FGetConfirmationDue(Employee.EmployeeSysId)";
  const std::vector<Row> rows = {
      {"Employee", "DepartmentDesc", 1, "'Women''s'", code + "DepartmentDesc') AS DepartmentDesc",
       "DepartmentDesc", "char", code + "DepartmentDesc') = 'Women''s'"},
      {"Personal", "PerRaceDesc", 1, "'x'", code + "PerRaceDesc') AS PerRaceDesc", "PerRaceDesc", "char",
       code + "PerRaceDesc') = 'x'"},
      {"Personal", "PerRaceDesc", 0, "'x'", person_code + "PerRaceDesc') AS PerRaceDesc", "PerRaceDesc",
       "char", person_code + "PerRaceDesc') = 'x'"},
      {"Employee", "ConfirmDueDate", 0, "'2024-02-29'", due + " AS ConfirmDueDate", "ConfirmDueDate", "date",
       due + " = '2024-02-29'"},
      {"Employee", "ConfirmDueDate", 1, "NULL", due + " AS ConfirmDueDate", "ConfirmDueDate", "date",
       due + " IS NULL"},
      {"Employee", "ServiceYears", 1, "2.5", years + " AS ServiceYears", "ServiceYears", "double",
       years + " = 2.5"},
      {"Employee", "IsShiftWorker", 1, "'No'",
       "(CASE WHEN FGetEmployeeKeyShiftTeam(Employee.EmployeeSysId) IS NULL THEN 'No' ELSE 'Yes' END) AS "
       "IsShiftWorker",
       "IsShiftWorker", "char",
       "(CASE WHEN FGetEmployeeKeyShiftTeam(Employee.EmployeeSysId) IS NULL THEN 'No' ELSE 'Yes' END) = "
       "'No'"},
      {"Personal", "ConfirmDueDate", 1, "1", "Personal.ConfirmDueDate", "Personal.ConfirmDueDate", "", ""},
      {"Employee", "HireDate", 1, "'2004-02-29'", "Employee.HireDate", "Employee.HireDate", "date",
       "Employee.HireDate = '2004-02-29'"},
      {"Employee", "RecordUpdated", 1, "'2004-02-29 10:11:12'", "Employee.RecordUpdated",
       "Employee.RecordUpdated", "timestamp", "Employee.RecordUpdated = '2004-02-29'"},
      {"Employee", "WorkStartTime", 1, "'08:30:00'", "Employee.WorkStartTime", "Employee.WorkStartTime",
       "time", "Employee.WorkStartTime = '08:30:00'"},
      {"Employee", "CPFMAWOption", 1, "-1", "Employee.CPFMAWOption", "Employee.CPFMAWOption", "smallint",
       "Employee.CPFMAWOption = -1"},
      {"Employee", "BasicRate", 1, "1234.5", "Employee.BasicRate", "Employee.BasicRate", "decimal",
       "Employee.BasicRate = 1234.5"},
      {"Dummy_BasisTotalWage", "X", 1, "'A'", "Dummy_BasisTotalWage.X", "Dummy_BasisTotalWage.X", "char",
       "Dummy_BasisTotalWage.X= 'A'"},
      {"Dummy_BasisTotalWage", "X", 0, "'A'", "Dummy_BasisTotalWage.X", "Dummy_BasisTotalWage.X", "", ""},
      {"LeaveRecordSum", "Y", 1, "0.5", "LeaveRecordSum.Y", "LeaveRecordSum.Y", "double",
       "LeaveRecordSum.Y = 0.5"}};
  for (const Row& row : rows) {
    BExcelExpEngCalcFields fields;
    Query value("varndb");
    value.SetSql("SELECT " + row.value + " AS " + row.attribute);
    value.Open();
    fields.Search(row.table, row.attribute, row.by_employee, &value);
    EXPECT_EQ(fields.GetSelectList(), row.select);
    EXPECT_EQ(fields.GetFieldName(), row.name);
    EXPECT_EQ(fields.GetFieldType(), row.type) << row.attribute;
    EXPECT_EQ(fields.GetCondition(), row.condition);
  }
}

TEST(CalcFields, ASearchWithoutValuesKeepsTheConditionAndAMissingValueRaises) {
  Scenario scenario;
  BExcelExpEngCalcFields fields;
  Query value("varndb");
  value.SetSql("SELECT 'x' AS DepartmentDesc");
  value.Open();
  fields.Search("Employee", "DepartmentDesc", 1, &value);
  const std::string condition = fields.GetCondition();
  fields.Search("Employee", "SectionDesc", 1, nullptr);
  EXPECT_EQ(fields.GetCondition(), condition);
  EXPECT_THROW(fields.Search("Employee", "SectionDesc", 1, &value), DatabaseError);
}

TEST(CalcFields, TheWholeSelectListRunsForEmployeesAndPersons) {
  Scenario scenario(MiniPayrollSql() +
                    "INSERT INTO Personal (PersonalSysId, PersonalName) VALUES (99, 'Not Employed');");
  BExcelExpEngCalcFields fields;
  for (const auto& [by_employee, from] : std::map<int, std::string>{
           {1, "Employee Join Personal WHERE EmployeeSysId = 1"},
           {0, "Personal LEFT OUTER JOIN Employee WHERE Personal.PersonalSysId = 99"}}) {
    Query row("varndb");
    row.SetSql("SELECT *, " + fields.GetAllSelectList(by_employee) + " FROM " + from);
    row.Open();
    ASSERT_EQ(row.RowCount(), 1);
    EXPECT_EQ(row.FieldByName("DepartmentDesc").AsString(), by_employee != 0 ? "Sales" : "");
    EXPECT_EQ(row.FieldByName("EmployeeId").IsNull(), by_employee == 0);
    EXPECT_EQ(row.FieldByName("ServiceYears").IsNull(), by_employee == 0);
  }
}

/// A report R1 of columns 2, 4 ("<ALL>" allowances), 6 and rows 1, 3 ("<ALL>" allowances), 5, printed from C7
/// on.
class DecodeFormula : public testing::Test {
 protected:
  DecodeFormula()
      : scenario(MiniPayrollSql() + SpreadsheetSql("S", "SumLevelEmpee") + FinancialItemSql({}) +
                 ColumnItemSql({.order = 2, .type = "BlankItem"}) +
                 ColumnItemSql({.order = 4, .item = "<ALL>", .grouping = "Allowance"}) +
                 ColumnItemSql({.order = 6, .type = "BlankItem"}) +
                 "INSERT INTO FinanceRowItem (FinRowItemSysId, FinancialRptId, FinRowItemOrder, "
                 "FinRowItemType, FinRowItem, "
                 "FinRowGrouping) VALUES (1, 'R1', 1, 'BlankItem', '', ''), (2, 'R1', 3, 'AnlysItem', "
                 "'<ALL>', 'Allowance'), "
                 "(3, 'R1', 5, 'BlankItem', '', '');"
                 "INSERT INTO AnlysItemRecord (AnlysProjectId, AnlysIPAddress, AnlysDispSectionId, "
                 "AnlysItem1Id) VALUES "
                 "('other', 'x', 'Allowance', 'A'), ('other', 'x', 'Allowance', 'B'), ('other', 'y', "
                 "'Allowance', 'C');") {
    core.SetDatabaseName("varndb");
    core.SetInternalMemo(&log);
    core.SetExcelWSItemRptId("R1");
    core.SetStartPrintedCol(3);
    core.SetStartPrintedRow(7);
  }
  std::string Columns(const std::string& formula) {
    return decoder.DecodeColExcelFormula(formula, all, cell, 12);
  }
  std::string Rows(const std::string& formula) {
    return decoder.DecodeRowExcelFormula(formula, all, cell, 4);
  }

  Scenario scenario;
  BExcelExpEngCore core;
  MemoryLineSink log;
  BExcelExpEngDecodeFormula decoder{&core};
  Query all{"varndb"};
  std::string cell;
};

TEST_F(DecodeFormula, ReferencesBecomeCells) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"=1+2", "=1+2"},
      {"=<Item#2>+<Item#6>", "=C12+G12"},
      {"=<Item#2><Item#4>", "=C12F12"},
      {"=<xxxxx4>", "=F12"},
      {"=<Item#99>", "=G12"},
      {"=IF(<Item#2><<Item#6>,1,0)", "=IF(C12<G12,1,0)"},
      {"=IF(<Item#2>><Item#6>,1,0)", "=IF(C12>G12,1,0)"},
      {"=IF(<Item#2><=5,<Item#6>>=5)", "=IF(C12<=5,G12>=5)"},
      {"=IF(<Item#2><><Item#6>,1)", "=IF(C12<>G12,1)"},
      {"=A1<5", "=A1<5"},
      {"=\"<Item#\"&A1", "=\"<Item#\"&A1"},
      {"=<Item#>+<Item2", "=<Item#>+<Item2"},
      {"", ""}};
  for (const auto& [stored, decoded] : rows) EXPECT_EQ(Columns(stored), decoded);
  EXPECT_EQ(Rows("=<Item#1>-<Item#3>/<Item#5>"), "=D7-D10/D11");
  EXPECT_EQ(decoder.DecodeRptTotalExcelFormula("<Col12>:<Col20>, <Col27>:<Col31>", cell, 2),
            "B12:B20, B27:B31");
  // The next worksheet has other data: nobody says that the database changed.
  DatabaseRegistry::Find("varndb")->HoldRows(
      {.table = "AnlysItemRecord",
       .key = {{"AnlysProjectId", "P"}, {"AnlysIPAddress", "z"}},
       .order = {"Basis1Id"},
       .select = "SELECT 'Allowance' AS AnlysDispSectionId, 'A' AS AnlysItem1Id"});
  EXPECT_EQ(Columns("=<Item#6>"), "=E12");
  core.SetExcelWSItemRptId("R2");
  EXPECT_EQ(Columns("=<Item#6>"), "");
}

TEST_F(DecodeFormula, WhatFailsGivesAnEmptyFormulaAndAnEntry) {
  const std::string where = "BExcelExpEngDecodeFormula::DecodeExcelFormula Error: ";
  struct Row {
    std::string change;
    std::string failing;
    std::string message;
    bool rows;
  };
  const std::vector<Row> rows = {
      {"", "FROM FinanceColItem", "Unable to get Finance Column Items", false},
      {"", "FROM FinanceRowItem", "Unable to get Finance Row Items", true},
      {"", "FROM AnlysItemRecord JOIN", "Error in AllFormulaQry Query", false},
      {"DELETE FROM AnlysItemRecord;", "no such text", "Empty AllFormulaQry Recordset", true},
      {"DELETE FROM FinanceColItem;", "no such text", "Empty Finance Column Items", false},
      {"DELETE FROM FinanceRowItem;", "no such text", "Empty Finance Row Items", true}};
  for (const Row& row : rows) {
    if (!row.change.empty()) scenario.Execute(row.change);
    scenario.FailStatement(row.failing);
    EXPECT_EQ(row.rows ? Rows("=<Item#5>") : Columns("=<Item#6>"), "");
    EXPECT_EQ(log.Lines().end()[-2], where + row.message);
  }
}

TEST(RecordLookup, EveryFormAndKeyList) {
  Scenario scenario(
      "INSERT INTO AnlysItemRecord (AnlysProjectId, AnlysIPAddress, AnlysItemRecYear, "
      "AnlysItemRecPeriodMonth, "
      "AnlysItemRecSubPeriod, AnlysPayRecBasis, Basis1Id, Basis2Id, Basis3Id, AnlysDispSectionId, "
      "AnlysItem1Id, "
      "AnlysItem5Id, AnlysLookUpId, SysAttributeCountry, AnlysAmount1) VALUES "
      "('P', 'K', 2024, 1, 0, 'Normal', '1', 'a', 'b', 'PayElement', 'BASIC', '', '', 'SG', 1),"
      "('P', 'K', 2024, 1, 0, 'Normal', '1', 'b', 'c', 'PayElement', 'BASIC', '', '', 'MY', 2),"
      "('P', 'K', 2024, 1, 0, 'Bonus', '2', 'a', 'b', 'PayElement', 'BASIC', '', '', 'SG', 3),"
      "('P', 'K', 2024, 1, 0, 'Normal', '1', '', '', 'BankRecord', '0071', 'ByCash_1', 'BankPaymentAmt', "
      "'SG', 4);");
  BExcelExpEngCore core;
  Query records("varndb");
  records.SetSql(
      "SELECT * FROM AnlysItemRecord JOIN AnlysDispSection JOIN AnlysItemSetup ORDER BY AnlysAmount1");
  records.Open();
  const auto amount = [&records](bool found) {
    return found ? records.FieldByName("AnlysAmount1").AsInteger() : 0;
  };
  const PeriodKey normal{2024, 1, 0, "Normal"};
  const AnalysisRecordLookup lookup(&core, &records);
  const AnalysisRecordLookup by_look_up(&core, &records, {.plain_bank = BankKey::kLookUp});
  const AnalysisRecordLookup no_rule(&core, &records, {.plain_bank = BankKey::kNone});
  const AnalysisRecordLookup movement(&core, &records,
                                      {.has_pay_record_basis = false, .plain_bank = BankKey::kLookUp});

  EXPECT_EQ(amount(lookup.Locate(normal, "BASIC", "PayElement", "PayElement")),
            1);  // the first in result order
  EXPECT_EQ(amount(lookup.Locate(normal, "basic", "PayElement", "PayElement")), 0);
  EXPECT_EQ(amount(lookup.Locate({2024, 1, 0, "Bonus"}, "BASIC", "PayElement", "PayElement")), 3);
  EXPECT_EQ(amount(lookup.Locate({2024, 1, 0, "None"}, "BASIC", "PayElement", "PayElement")), 0);
  EXPECT_EQ(amount(movement.Locate({2024, 1, 0, "None"}, "BASIC", "PayElement", "PayElement")), 1);
  EXPECT_EQ(amount(lookup.Locate(normal, "ByCash_1", "BankRecord", "BankRecord")), 4);
  EXPECT_EQ(amount(lookup.Locate(normal, "0071", "BankRecord", "BankRecord")), 0);
  EXPECT_EQ(amount(by_look_up.Locate(normal, "whatever", "BankRecord", "BankRecord")), 4);
  EXPECT_EQ(amount(no_rule.Locate(normal, "0071", "BankRecord", "BankRecord")), 4);
  EXPECT_EQ(amount(lookup.LocateCSS(normal, "BASIC", "PayElement", "MY", "PayElement")), 2);
  EXPECT_EQ(amount(lookup.LocateCSS(normal, "whatever", "BankRecord", "SG", "BankRecord")), 4);
  EXPECT_EQ(amount(lookup.LocateCSS(normal, "whatever", "BankRecord", "MY", "BankRecord")), 0);

  core.SetExcelWkSheetRptSumLvl("SumLevelEmpee");
  EXPECT_EQ(amount(lookup.LocateBasisCSS(normal, "b", "c", "BASIC", "PayElement", "SG")), 0);
  EXPECT_EQ(amount(lookup.LocateBasis(normal, "b", "c", "BASIC", "PayElement")), 2);
  core.SetExcelWkSheetRptSumLvl("SumLevelCompany");
  EXPECT_EQ(amount(lookup.LocateBasis(normal, "1", "b", "BASIC", "PayElement")), 2);
  EXPECT_EQ(amount(movement.LocateBasis(normal, "2", "a", "BASIC", "PayElement")), 3);

  records.Last();
  EXPECT_FALSE(lookup.Locate(normal, "NONE", "PayElement", "PayElement"));
  EXPECT_EQ(amount(true), 4);  // a lookup that finds nothing stays where it was
}

}  // namespace
}  // namespace excelexp
