// What the row matrices say when a query fails, a definition is missing or a colour scheme cannot be found.

#include "layouts/BExcelExpEngPayReconRpt.h"
#include "layouts/BExcelExpEngStatisticsRpt.h"
#include "layouts/matrix_reports.h"
#include "support/failures.h"

namespace excelexp {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// One thing that goes wrong: a failing statement (the nth that contains the part), or rows that are changed.
struct Fault {
  std::string expected;  ///< without the class, whose name stands in front
  std::string part = "";
  int nth = 1;
  std::string change = "";
};

const std::string kRecords =
    "FROM AnlysItemRecord JOIN AnlysDispSection JOIN AnlysItemSetup                 WHERE AnlysProjectId";
const std::string kSchemes = "SELECT * FROM ColourScheme JOIN ColourCodeMapping";

/// The faults that all three meet in the same way.
std::vector<Fault> CommonFaults() {
  return {
      {"::ExecuteOperation Error: Error in getting Financial Report Information.",
       "SELECT * FROM FinancialRpt WHERE", 2},
      {"::ExecuteOperation Error: Error in AnlysItemRecQry Query.", kRecords},
      {"::ExecuteOperation Error: Error in FinanceColItemQry Query.", "FinColIsRptMainInfo = 0"},
      {"::ExecuteOperation Error: Error in FinanceRowItemQry Query.", "FROM FinanceRowItem"},
      {"::ExecuteOperation Error: Error in AllFormulaQry Query", "SELECT DISTINCT AnlysItem1Id"},
      {"::PrintRowFinancialData Error: Unable to get Analysis Item Details.", "FROM AnItemLookup"},
      {"::PrintRowFinancialData Error: Empty Analysis Item Details.", "", 1, "DELETE FROM AnItemLookup"},
      {"::PrintColFinancialData Error: Unable to locate Colour Scheme Record.", "", 1,
       "UPDATE FinanceColItem SET ColourSchemeId = 'none' WHERE FinColItemOrder = 2"},
      {"::PrintRowFinancialData Error: Unable to locate Colour Scheme Record.", "", 1,
       "UPDATE FinanceRowItem SET ColourSchemeId = 'none'"},
  };
}

std::string Report(const std::string& layout) {
  return MatrixPayroll() + FinancialItemSql({.layout = layout}) + PeriodRangeSql(2024, 2, 2024, 3) +
         ChosenPeriodSql(2024, 2) + ChosenPeriodSql(2024, 3) + EmployeeColumn(2, "EmployeeId", "No.") +
         AllAllowanceRows(1) + BasicRow(2);
}

std::string Statuses() {
  return ColumnItemSql({.order = 11, .item = "AnlysMapField", .component = "Normal_1", .title = "Now"});
}

/// Each fault fails the run, with the message between two empty lines of the internal log.
void ExpectFaults(const std::string& report, const std::string& class_name,
                  const std::vector<Fault>& faults) {
  for (const Fault& fault : faults) {
    SCOPED_TRACE(class_name + fault.expected);
    Scenario scenario(report);
    if (!fault.change.empty()) scenario.Execute("PRAGMA foreign_keys = OFF;\n" + fault.change + ";\n");
    if (!fault.part.empty()) scenario.FailStatement(fault.part, fault.nth);
    const ScenarioRun run = scenario.Run("S");
    EXPECT_EQ(run.result, 0);
    std::string log;
    for (const std::string& line : run.internal_log) log += line + "\n";
    EXPECT_THAT(log, HasSubstr("\n\n" + class_name + fault.expected + "\n\n"));
  }
}

TEST(MatrixFailures, Statistics) {
  const std::string report = Report("Statistics");
  const std::string name = "BExcelExpEngStatisticsRpt";
  ExpectFaults(report, name, CommonFaults());
  ExpectFaults(report, name,
               {{"::ExecuteOperation Error: Error in ExcelRptLayoutQry Query.", "FROM ExcelWSItemRptLayout"},
                {"::PrintColFinancialData Error: Error in ColourSchemeQry Query.", kSchemes},
                {"::PrintRowFinancialData Error: Error in ColourSchemeQry Query.", "'Own'", 1,
                 OwnSchemeSql("FinanceRowItem")},
                {"::PrintPayPeriodInfo Error: Unable to get Analysis Project Details.",
                 "SELECT * FROM AnlysProject WHERE", 2}});
  ExpectFaults(report + "DELETE FROM ExcelWSItemRptLayout;\n", name,
               {{"::ExecuteOperation Error: Error in ExcelRptLayoutQry Query.", "AS WSRptLayoutYear"}});
}

TEST(MatrixFailures, Variance) {
  const std::string report = Report("Variance");
  ExpectFaults(report, "BExcelExpEngVarianceRpt", CommonFaults());
  ExpectFaults(report, "BExcelExpEngVarianceRpt",
               {{"::ExecuteOperation Error: Error in ExcelRptLayoutQry Query.", "FROM ExcelWSItemRptLayout"},
                {"::PrintColFinancialData Error: Error in ColourSchemeQry Query.", kSchemes},
                {"::PrintRowFinancialData Error: Error in ColourSchemeQry Query.", "'Own'", 1,
                 OwnSchemeSql("FinanceRowItem")}});
  ExpectFaults(report, "ExcelExpEngVarianceRpt",
               {{" Error: Unable to get Analysis Project Details.", "SELECT * FROM AnlysProject WHERE", 2}});
}

TEST(MatrixFailures, PayRecon) {
  const std::string report = Report("PayReconciliation") + Statuses();
  const std::string name = "BExcelExpEngPayReconRpt";
  ExpectFaults(report, name, CommonFaults());
  ExpectFaults(
      report, name,
      {{"::ExecuteOperation Error: Error in ExcelRptLayoutQry Query.",
        "SELECT * FROM ExcelWSItemRptOpts WHERE WkSheet"},
       {"::ExecuteOperation Error: Error in FinanceColItemStatusQry Query.", "(FinColItem LIKE"},
       {"::ExecuteOperation Error: Error in ColourSchemeQry Query.", kSchemes},
       {"::PrintColFinancialData Error: Error in ColourSchemeQry Query.", "'Own'", 1,
        EmployeeColumn(3, "EmployeeName", "Name") + OwnSchemeSql("FinanceColItem", "FinColItemOrder = 3")},
       {"::PrintColStatusFinancialData Error: Error in ColourSchemeQry Query.", "'Own'", 1,
        OwnSchemeSql("FinanceColItem", "FinColItemOrder = 11")},
       {"::PrintRowFinancialData Error: Error in ColourSchemeQry Query.", "'Own'", 1,
        OwnSchemeSql("FinanceRowItem")},
       {"::ExecuteOperation Error: Empty ColourSchemeQry Recordset.", "", 1, "DELETE FROM ColourScheme"}});
  ExpectFaults(report, "ExcelExpEngPayReconRpt",
               {{" Error: Unable to get Analysis Project Details.", "SELECT * FROM AnlysProject WHERE", 2}});
}

/// A layout alone, as a frame runs it for employee 1, on whatever records the database holds.
struct Alone {
  Alone() {
    core.SetDatabaseName("varndb");
    core.SetQueryViewTable(&view);
    core.SetInternalMemo(&internal_log);
    core.SetLogMemo(&user_log);
    core.SetExcelAPI(&api);
    core.SetExcelWorkbook(api.CreateWorkbook(1));
    core.SetExcelWorksheetName("Sheet1");
    core.SetExcelWkSheetRptSumLvl("SumLevelEmpee");
    core.SetExcelWkSheetTitleColourSchemeId("Title");
    core.SetExcelWSItemSysId(101);
    core.SetExcelWSItemRptId("R1");
    core.SetExcelWSItemOrdering(1);
    core.SetStartPrintedRow(7);
    core.ExecuteEmpCoyBasisSQL("SELECT '1' AS Basis1Id, '' AS Basis2Id, '' AS Basis3Id FROM DUMMY");
    core.ExecuteCurEmpCoyBasisSQL("SELECT * FROM Employee WHERE EmployeeSysId = 1");
  }

  FixedViewTable view{"10.1.2.3", "ViewEmployee"};
  MemoryLineSink internal_log;
  MemoryLineSink user_log;
  BExcelAPI api;
  BExcelExpEngCore core;
};

TEST(MatrixFailures, NoPeriodInTheDataAndNoOptions) {
  const std::string no_choice = "DELETE FROM ExcelWSItemRptLayout; DELETE FROM ExcelWSItemRptOpts;\n";
  {
    Scenario scenario(Report("Statistics") + no_choice);
    Alone alone;
    EXPECT_FALSE(BExcelExpEngStatisticsRpt(&alone.core).ExecuteOperation());
    EXPECT_THAT(
        alone.internal_log.Lines(),
        Contains("BExcelExpEngStatisticsRpt::ExecuteOperation Error: Empty ExcelRptLayoutQry RecordSet."));
  }
  Scenario scenario(Report("PayReconciliation") + no_choice);
  Alone alone;
  EXPECT_TRUE(BExcelExpEngPayReconRpt(&alone.core).ExecuteOperation());
  EXPECT_THAT(
      alone.user_log.Lines(),
      ElementsAre("", "Warning: The pay periods to be printed for the PayRecon report is not selected.", ""));
  EXPECT_EQ(alone.core.LastPrintedRow, 1);
}

// Bank rows are found by payment category, or, where a country takes part, by their lookup id.
TEST(MatrixFailures, BankRecordsAreLocatedByCategoryOrLookUp) {
  Scenario scenario(MatrixPayroll() + FinancialItemSql({.layout = "Statistics"}) +
                    AnalysisRow(1, "BankRecord", "Cheque1", "BankPaymentAmt", "Cheque") +
                    "INSERT INTO AnlysItemRecord (AnlysProjectId, AnlysIPAddress, AnlysItemRecYear, "
                    "AnlysPayRecBasis, Basis1Id, AnlysDispSectionId, AnlysItem1Id, AnlysItem5Id, "
                    "AnlysLookUpId, SysAttributeCountry) VALUES ('R1', '10.1.2.3_1', 2024, 'Normal', '1', "
                    "'BankRecord', 'BR01', 'ByCheque_1', 'BankPaymentAmt', 'SG');\n");
  Alone alone;
  BExcelExpEngStatisticsRpt layout(&alone.core);
  ASSERT_TRUE(layout.ExecuteOperation());
  EXPECT_TRUE(layout.AnlysItemRecLocate(2024, 0, 0, "Normal", "ByCheque_1", "BankRecord"));
  EXPECT_FALSE(layout.AnlysItemRecLocate(2024, 0, 0, "Normal", "BR01", "BankRecord"));
  EXPECT_TRUE(layout.AnlysItemRecLocateCSS(2024, 0, 0, "Normal", "whatever", "BankRecord", "SG"));
  EXPECT_FALSE(layout.AnlysItemRecLocateCSS(2024, 0, 0, "Normal", "whatever", "BankRecord", "MY"));
}

}  // namespace
}  // namespace excelexp
