#include <map>
#include <regex>
#include <set>

#include "demo/demo_fixture.h"
#include "platform/analysis/SetupTableAnalysisEngine.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/Query.h"
#include "platform/database/ResultSet.h"
#include "platform/database/SqliteDatabase.h"
#include "services/BExcelExpEngCalcFields.h"

namespace excelexp {
namespace {

using testing::IsEmpty;

/// The definitions of the demo, read as the engine reads them.
class DemoDefinitions : public DemoTest {
 protected:
  DemoDefinitions() {
    DatabaseRegistry::Register(std::string(kPayrollDatabaseName), OpenSqliteDatabase(File()));
  }
  ~DemoDefinitions() override { DatabaseRegistry::Remove(kPayrollDatabaseName); }

  static std::unique_ptr<Query> Open(const std::string& sql) {
    auto query = std::make_unique<Query>(std::string(kPayrollDatabaseName));
    query->SetSql(sql);
    query->Open();
    return query;
  }
};

TEST_F(DemoDefinitions, HoldEveryLayoutLevelAndPopulation) {
  EXPECT_EQ(Rows("SELECT DISTINCT LayoutSchemeId FROM FinancialRpt ORDER BY 1"),
            (std::vector<std::string>{"AccumulateList", "BreakdownList", "LeaveList", "MovementList",
                                      "PayReconciliation", "Statistics", "Variance"}));
  EXPECT_EQ(Rows("SELECT DISTINCT WkSheetRptSumLvl FROM ExcelWkSheet ORDER BY 1"),
            (std::vector<std::string>{"SumLevelBasis", "SumLevelCompany", "SumLevelEmpee"}));
  EXPECT_EQ(Rows("SELECT DISTINCT EmployeeRptHasEmpOnly FROM EmployeeRpt ORDER BY 1"),
            (std::vector<std::string>{"0", "1"}));
  EXPECT_EQ(Rows("SELECT DISTINCT AnlysProjectSubType FROM AnlysProject ORDER BY 1"),
            (std::vector<std::string>{"ProjSubTypeLveSumm", "ProjSubTypeMovement", "ProjSubTypePayRec",
                                      "ProjSubTypeTsRec", "ProjSubTypeTsSumm"}));
}

TEST_F(DemoDefinitions, EveryReferenceResolves) {
  const std::string items =
      "(SELECT FinancialRptId AS Rpt, FinColItemType AS Type, FinColItem AS Item, FinColGrouping AS "
      "Grouping, "
      "FinColComponent AS Component FROM FinanceColItem UNION ALL SELECT FinancialRptId, FinRowItemType, "
      "FinRowItem, "
      "FinRowGrouping, FinRowComponent FROM FinanceRowItem)";
  const struct {
    const char* dangling;
    std::string sql;
  } kChecks[] = {
      {"worksheet item without its report",
       "SELECT * FROM ExcelWkSheetItem WHERE WkSheetItemRptId NOT IN (SELECT FinancialRptId FROM "
       "FinancialRpt WHERE "
       "WkSheetItemRptType = 'FinancialRpt' UNION ALL SELECT EmpInfoRptId FROM EmployeeRpt WHERE "
       "WkSheetItemRptType = "
       "'EmployeeRpt')"},
      {"report that no worksheet prints",
       "SELECT FinancialRptId FROM FinancialRpt WHERE FinancialRptId NOT IN (SELECT WkSheetItemRptId FROM "
       "ExcelWkSheetItem) UNION ALL SELECT EmpInfoRptId FROM EmployeeRpt WHERE EmpInfoRptId NOT IN (SELECT "
       "WkSheetItemRptId FROM ExcelWkSheetItem)"},
      {"financial item without a period range",
       "SELECT * FROM ExcelWkSheetItem WHERE WkSheetItemRptType = 'FinancialRpt' AND WkSheetItemSysId NOT IN "
       "(SELECT "
       "WkSheetItemSysId FROM ExcelWSItemRptOpts)"},
      {"project without its setup",
       "SELECT * FROM AnlysProject WHERE AnlysSetupId NOT IN (SELECT name FROM sqlite_master WHERE type = "
       "'view')"},
      {"basis that is no keyword",
       "SELECT * FROM ExcelWkSheet, (VALUES (1), (2), (3)) WHERE CASE column1 WHEN 1 THEN WkSheetRptBasis1 "
       "WHEN 2 THEN "
       "WkSheetRptBasis2 ELSE WkSheetRptBasis3 END NOT IN (SELECT AnlysKeywordId FROM AnlysKeyword UNION ALL "
       "SELECT '')"},
      {"worksheet and project at different levels or bases",
       "SELECT * FROM ExcelWkSheet JOIN ExcelWkSheetItem USING (WkSheetSysId) JOIN FinancialRpt ON "
       "FinancialRptId = "
       "WkSheetItemRptId JOIN AnlysProject ON AnlysProjectId = FinancialAnalysProjId WHERE SummaryLevel <> "
       "WkSheetRptSumLvl OR Basis1 <> WkSheetRptBasis1 OR Basis2 <> WkSheetRptBasis2 OR Basis3 <> "
       "WkSheetRptBasis3"},
      {"keyword whose values have no name in the log",
       "SELECT * FROM AnlysKeyword WHERE NOT EXISTS (SELECT 1 FROM SystemAttribute WHERE SysTableId = "
       "AnlysKeywordRef "
       "AND SysAttributeId = AnlysKeywordTableId)"},
      {"item without a lookup", "SELECT * FROM " + items +
                                    " WHERE Type = 'AnlysItem' AND Grouping NOT IN ('BankRecord', '') AND "
                                    "NOT EXISTS (SELECT 1 FROM AnItemLookup "
                                    "WHERE AnlysItemTypeId = Grouping AND AnlysLookupId = Component)"},
      {"item that is no pay item", "SELECT * FROM " + items +
                                       " WHERE Grouping IN (SELECT PayItemKind FROM PayItem) AND Item <> "
                                       "'<ALL>' AND NOT EXISTS (SELECT 1 FROM "
                                       "PayItem WHERE PayItemKind = Grouping AND PayItemId = Item)"},
      {"lookup of a column that the record has not",
       "SELECT * FROM AnItemLookup, (VALUES (1), (2), (3)) WHERE CASE column1 WHEN 1 THEN AnlysMapField WHEN "
       "2 THEN "
       "AnlysMapFieldPrev ELSE AnlysMapFieldVar END NOT IN (SELECT name FROM "
       "pragma_table_info('AnlysItemRecord') UNION "
       "ALL SELECT '')"},
      {"setup that says something the record cannot hold",
       "SELECT Setup.name, Its.name FROM sqlite_master AS Setup JOIN pragma_table_info(Setup.name) AS Its "
       "WHERE "
       "Setup.name LIKE 'Setup%' AND Its.name NOT IN ('Kind', 'BasisSet') AND Its.name NOT IN (SELECT name "
       "FROM "
       "pragma_table_info('AnlysItemRecord'))"},
      {"colour scheme without a colour or an underline",
       "SELECT * FROM ColourScheme WHERE ColourCodeId IS NULL OR ColourCodeId NOT IN (SELECT ColourCodeId "
       "FROM "
       "ColourCodeMapping) OR ColourSchUnderline NOT IN (SELECT ExcelExpKeywordId FROM ExcelExpKeyword)"},
      {"worksheet name that a spreadsheet refuses",
       "SELECT WkSheetName FROM ExcelWkSheet WHERE length(WkSheetName) NOT BETWEEN 1 AND 31 OR WkSheetName "
       "GLOB "
       "'*[[:*?/\\]*' GROUP BY ExcelSpreadsheetId, lower(WkSheetName) UNION ALL SELECT MIN(WkSheetName) FROM "
       "ExcelWkSheet "
       "GROUP BY ExcelSpreadsheetId, lower(WkSheetName) HAVING COUNT(*) > 1"},
  };
  for (const auto& check : kChecks) EXPECT_THAT(Rows(check.sql), IsEmpty()) << check.dangling;
}

TEST_F(DemoDefinitions, FormulasNameItemsOfTheirReport) {
  std::map<std::string, std::set<int>> columns;
  const auto items = Open(
      "SELECT 'C' || FinancialRptId AS Rpt, FinColItemOrder AS Number FROM FinanceColItem WHERE "
      "FinColIsRptMainInfo = 0 UNION ALL SELECT 'R' || FinancialRptId, FinRowItemOrder FROM "
      "FinanceRowItem");
  for (items->First(); !items->Eof(); items->Next()) {
    columns[items->FieldByName("Rpt").AsString()].insert(items->FieldByName("Number").AsInteger());
  }
  const auto formulas = Open(
      "SELECT 'C' || FinancialRptId AS Rpt, FinColExcelFormula AS Formula FROM FinanceColItem "
      "WHERE FinColItemType = 'CalculatedItem' UNION ALL SELECT 'R' || FinancialRptId, "
      "FinRowExcelFormula FROM FinanceRowItem WHERE FinRowItemType = 'CalculatedItem'");
  const std::regex reference("<Item#([0-9]+)>");
  int count = 0;
  for (formulas->First(); !formulas->Eof(); formulas->Next()) {
    const std::string formula = formulas->FieldByName("Formula").AsString();
    const std::string report = formulas->FieldByName("Rpt").AsString();
    for (std::sregex_iterator it(formula.begin(), formula.end(), reference), end; it != end; ++it, ++count) {
      EXPECT_TRUE(columns[report].contains(std::stoi((*it)[1]))) << report << ": " << formula;
    }
    EXPECT_EQ(std::regex_replace(formula, reference, "").find('<'), std::string::npos) << formula;
  }
  EXPECT_GT(count, 20);
}

TEST_F(DemoDefinitions, FieldsExistAndHaveATypeThatPrints) {
  const auto fields = Open(
      "SELECT FinColGrouping AS T, FinColComponent AS A FROM FinanceColItem WHERE FinColItemType = "
      "'SummLvlItem' UNION SELECT FinGrpGrouping, FinGrpComponent FROM FinanceGrpItem UNION SELECT "
      "FinSortGrouping, FinSortComponent FROM FinanceSortItem UNION SELECT EmpColSysTableId, "
      "EmpColSysAttributeId FROM EmpColItem WHERE EmpColItemType <> 'BlankItem' UNION SELECT "
      "EmpGrpSysTableId, EmpGrpSysAttributeId FROM EmpGrpItem UNION SELECT EmpSortSysTableId, "
      "EmpSortSysAttributeId FROM EmpSortItem");
  BExcelExpEngCalcFields calc;
  for (fields->First(); !fields->Eof(); fields->Next()) {
    const std::string table = fields->FieldByName("T").AsString();
    const std::string attribute = fields->FieldByName("A").AsString();
    calc.Search(table, attribute, 1, nullptr);
    EXPECT_NE(calc.GetFieldType(), "") << table << "." << attribute;
  }
}

TEST_F(DemoDefinitions, EmployeeReportsSelectSomebody) {
  const auto reports = Open(
      "SELECT EmployeeRpt.*, ExcelEmpRpt.* FROM EmployeeRpt JOIN ExcelEmpRpt ON EmpInfoRptType = "
      "ExcelEmpRptId");
  BExcelExpEngCalcFields calc;
  for (reports->First(); !reports->Eof(); reports->Next()) {
    const auto text = [&](const char* field) { return reports->FieldByName(field).AsString(); };
    const int by_employee = reports->FieldByName("EmployeeRptHasEmpOnly").AsInteger();
    std::string select;
    const auto columns = Open("SELECT * FROM EmpColItem WHERE EmpInfoRptId = '" + text("EmpInfoRptId") +
                              "' AND EmpColItemType <> 'BlankItem'");
    for (columns->First(); !columns->Eof(); columns->Next()) {
      select += (select.empty() ? "" : ", ") +
                calc.GetSelectList(columns->FieldByName("EmpColSysTableId").AsString(),
                                   columns->FieldByName("EmpColSysAttributeId").AsString(), by_employee);
    }
    const std::string filter = text("EmployeeRptFilterCond");
    const auto rows = Open("SELECT DISTINCT " + select + " FROM " + text("ExcelEmpRptTable1") + "  " +
                           text("ExcelEmpRptTable2") + "  " + text("ExcelEmpRptTable3") + " WHERE " +
                           (filter.empty() ? "" : filter + " AND ") +
                           (by_employee != 0 ? "Employee.EmployeeSysId IN (SELECT EmployeeSysId"
                                             : "Personal.PersonalSysId IN (SELECT PersonalSysId") +
                           " FROM ViewEmployee)");
    EXPECT_GT(rows->RowCount(), 5) << text("EmpInfoRptId");
  }
}

/// The basis tables are derived tables of all rows and one row of blanks: each must have as many columns as
/// the catalogue says, none of them shared with another basis.
TEST_F(DemoDefinitions, BasisTablesTakeTheRowOfBlanks) {
  const auto keywords = Open("SELECT * FROM AnlysKeyword WHERE AnlysKeywordRef NOT LIKE 'Dummy%'");
  std::set<std::string> seen;
  for (keywords->First(); !keywords->Eof(); keywords->Next()) {
    const std::string table = keywords->FieldByName("AnlysKeywordRef").AsString();
    const int count =
        Open("SELECT Count(Column_Name) as NoOfColumn FROM SysTable Join SysColumn WHERE table_name='" +
             table + "'")
            ->FieldByName("NoOfColumn")
            .AsInteger();
    std::string blanks = "''";
    for (int column = 1; column < count; ++column) blanks += ",''";
    const auto rows =
        Open("SELECT * FROM (SELECT * FROM " + table + " UNION SELECT " + blanks + ") AS " + table +
             " WHERE " + table + "." + keywords->FieldByName("AnlysKeywordTableId").AsString() + " = ''");
    EXPECT_EQ(rows->RowCount(), 1) << table;
    for (const std::string& name : Rows("SELECT name FROM pragma_table_info('" + table + "')")) {
      EXPECT_TRUE(seen.insert(name).second) << table << "." << name;
    }
  }
}

/// Runs the analysis of every worksheet item and looks for what it is to print.
TEST_F(DemoDefinitions, EveryItemHasDataInEveryPeriodItPrints) {
  const auto items = Open(
      "SELECT * FROM ExcelWkSheetItem JOIN ExcelWSItemRptOpts USING (WkSheetItemSysId) JOIN FinancialRpt "
      "ON FinancialRptId = WkSheetItemRptId JOIN AnlysProject ON AnlysProjectId = FinancialAnalysProjId");
  const std::shared_ptr<Database> database = DatabaseRegistry::Find(kPayrollDatabaseName);
  for (items->First(); !items->Eof(); items->Next()) {
    const auto text = [&](const char* field) { return items->FieldByName(field).AsString(); };
    const auto number = [&](const char* field) { return items->FieldByName(field).AsInteger(); };
    AnlysProjectStructure request;
    request.AnlysIPAddress = "test_" + text("WkSheetItemSysId");
    request.AnlysProjectId = text("AnlysProjectId");
    request.AnlysSetupId = text("AnlysSetupId");
    request.AnlysProjectSubType = text("AnlysProjectSubType");
    request.WSItemFromYear = number("WSItemFromYear");
    request.WSItemFromMthPeriod = number("WSItemFromMthPeriod");
    request.WSItemFromSubPeriod = number("WSItemFromSubPeriod");
    request.WSItemToYear = number("WSItemToYear");
    request.WSItemToMthPeriod = number("WSItemToMthPeriod");
    request.WSItemToSubPeriod = number("WSItemToSubPeriod");
    SetupTableAnalysisEngine engine(request, database);
    engine.SetOnFailure([](const std::string& message) { ADD_FAILURE() << message; });
    engine.ExecuteOperation();
    const std::string mine = " FROM AnlysItemRecord WHERE AnlysIPAddress = '" + request.AnlysIPAddress + "'";
    EXPECT_FALSE(database->Select("SELECT 1" + mine + " LIMIT 1")->IsEmpty()) << text("WkSheetItemRptId");
    const auto missing = database->Select(
        "SELECT * FROM ExcelWSItemRptLayout WHERE WkSheetItemSysId = " + text("WkSheetItemSysId") +
        " AND NOT EXISTS (SELECT 1" + mine +
        " AND AnlysItemRecYear = WSRptLayoutYear AND AnlysItemRecPeriodMonth = WSRptLayoutMthPeriod AND "
        "AnlysItemRecSubPeriod = WSRptLayoutSubPeriod AND AnlysPayRecBasis = WSRptLayoutPayRecIdType)");
    EXPECT_TRUE(missing->IsEmpty()) << text("WkSheetItemRptId");
    engine.DeleteOperation();
  }
  // However the pay is cut, it is the same pay; and a key finds one record.
  const std::string net = "SELECT ROUND(SUM(AnlysAmount1), 2) FROM %s WHERE AnlysItem1Id = 'NetWage'";
  for (const char* setup :
       {"SetupPayByType", "SetupPayById", "SetupDepartmentPay", "SetupCostCentreAgePay"}) {
    EXPECT_EQ(Rows(std::regex_replace(net, std::regex("%s"), setup)),
              Rows("SELECT ROUND(SUM(NetWage), 2) FROM PayRecord"))
        << setup;
    EXPECT_THAT(
        Rows("SELECT 1 FROM " + std::string(setup) +
             " GROUP BY AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod, AnlysPayRecBasis, "
             "Basis1Id, AnlysDispSectionId, AnlysItem1Id, AnlysItem5Id" +
             (std::string(setup) == "SetupCostCentreAgePay" ? ", Basis2Id" : "") + " HAVING COUNT(*) > 1"),
        IsEmpty())
        << setup;
  }
  EXPECT_EQ(
      Rows("SELECT ROUND(SUM(AnlysAmount1), 2), ROUND(SUM(AnlysFAmount1), 2), ROUND(SUM(AnlysDoubleValue1), "
           "2) FROM "
           "SetupManagementRecon WHERE AnlysItem1Id = 'NetWage' AND AnlysPayRecBasis = 'Normal' AND "
           "AnlysItemRecYear = 2024 AND AnlysItemRecPeriodMonth = 4"),
      Rows("SELECT ROUND(SUM(NetWage * (PayRecPeriod = 4)), 2), ROUND(SUM(NetWage * (PayRecPeriod = 3)), 2), "
           "ROUND(SUM(NetWage * CASE PayRecPeriod WHEN 4 THEN 1 WHEN 3 THEN -1 ELSE 0 END), 2) FROM "
           "PayRecord JOIN "
           "Employee USING (EmployeeSysId) WHERE CategoryId = 'MGT' AND PayRecId = 'MONTHEND'"));
}

}  // namespace
}  // namespace excelexp
