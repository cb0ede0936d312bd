#include "dataprep/BExcelExpEngFinRptInfo.h"

#include "platform/database/DatabaseRegistry.h"
#include "platform/database/ResultSet.h"
#include "support/people.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char kItems[] = R"(
INSERT INTO ExcelWSItemRptOpts (WkSheetItemSysId, WSItemFromYear, WSItemToYear, WSItemFromMthPeriod,
                                WSItemToMthPeriod, WSItemFromSubPeriod, WSItemToSubPeriod)
  VALUES (7, 2024, 2025, 6, 7, 0, 4), (8, 0, 0, 0, 0, 0, 0);
)";

/// Answers with a number and makes no records.
class FakeAnalysis final : public BAnalysisRptEng {
 public:
  explicit FakeAnalysis(int result) : result_(result) {}
  void SetQueryViewTable(const BQueryViewTable* view_table) override {
    EXPECT_EQ(view_table->sGetViewTableName(), "ViewEmployee");
    has_view_ = true;
  }
  int ExecuteOperation() override {
    EXPECT_TRUE(has_view_);
    return result_;
  }
  void DeleteOperation() override { ADD_FAILURE(); }

 private:
  int result_;
  bool has_view_ = false;
};

class FinancialPreparation : public testing::Test {
 protected:
  FinancialPreparation() { scenario_.Attach(core_, user_log_, internal_log_); }
  ~FinancialPreparation() override { EXPECT_THAT(user_log_.Lines(), IsEmpty()); }

  int Prepare(const std::string& report, int item = 7, int ordering = 3) {
    core_.SetExcelWSItemRptId(report);
    core_.SetExcelWSItemSysId(item);
    core_.SetExcelWSItemOrdering(ordering);
    return BExcelExpEngFinRptInfo(&core_).ExecuteOperation();
  }
  /// A further report with a project of its own; `figures` are rows of three basis ids.
  void AddReport(const std::string& id, const std::string& level, const std::string& figures) {
    scenario_.Execute("CREATE VIEW " + id +
                      "Figures AS SELECT 2024 AS AnlysItemRecYear, 6 AS AnlysItemRecPeriodMonth, "
                      "0 AS AnlysItemRecSubPeriod, column1 AS Basis1Id, column2 AS Basis2Id, "
                      "column3 AS Basis3Id FROM (VALUES " +
                      figures + ") WHERE column1 <> '';" +
                      "INSERT INTO AnlysProject (AnlysProjectId, AnlysSetupId, SummaryLevel) VALUES ('" + id +
                      "', '" + id + "Figures', '" + level + "');" +
                      "INSERT INTO FinancialRpt (FinancialRptId, FinancialAnalysProjId, LayoutSchemeId, "
                      "FinancialHasGrandTot, FinancialHasTotEmpCt) VALUES ('" +
                      id + "', '" + id + "', 'BreakdownList', 2, 3)");
  }
  int RecordsUnder(const std::string& key) {
    return DatabaseRegistry::Find(kPayrollDatabaseName)
        ->Select("SELECT * FROM AnlysItemRecord WHERE AnlysIPAddress = '" + key + "'")
        ->RowCount();
  }
  std::vector<std::string> Errors() const {
    std::vector<std::string> errors;
    for (const std::string& line : internal_log_.Lines()) {
      if (line.find("Error") != std::string::npos) errors.push_back(line);
    }
    return errors;
  }
  void Answer(int result) {
    scenario_.Host().make_analysis = [result](const AnlysProjectStructure&) {
      return std::make_unique<FakeAnalysis>(result);
    };
  }

  Scenario scenario_{PeopleSql() + kItems};
  MemoryLineSink user_log_;
  MemoryLineSink internal_log_;
  BExcelExpEngCore core_;
};

TEST_F(FinancialPreparation, TheAnalysisEngineIsAskedForWhatTheDefinitionSays) {
  scenario_.Execute(
      "UPDATE AnlysProject SET AnlysProjectDesc = 'D', CycleMethod = 'M', CycleSubGroupBy = 'SG', "
      "IsSystemProject = 1, Basis1 = 'B1', Basis2 = 'B2', Basis3 = 'B3', AnlysProjectType = 'T'");
  EXPECT_EQ(Prepare("Pay"), 1);
  ASSERT_EQ(scenario_.Host().requests.size(), 1u);
  EXPECT_THAT(scenario_.Host().request_databases, ElementsAre("varndb"));
  const AnlysProjectStructure& request = scenario_.Host().requests[0];
  EXPECT_THAT(
      (std::vector<std::string>{request.AnlysIPAddress, request.AnlysProjectId, request.AnlysSetupId,
                                request.AnlysProjectDesc, request.CycleMethod, request.CycleGroupBy,
                                request.CycleSubGroupBy, request.Basis1, request.Basis2, request.Basis3,
                                request.AnlysProjectType, request.SummaryLevel, request.AnlysProjectSubType}),
      ElementsAre("10.1.2.3_3", "Pay", "Figures", "D", "M", "PeriodGrpPd", "SG", "B1", "B2", "B3", "T",
                  "SumLevelEmpee", "ProjSubTypePayRec"));
  EXPECT_THAT((std::vector<int>{request.IsSystemProject, request.WSItemFromYear, request.WSItemToYear,
                                request.WSItemFromMthPeriod, request.WSItemToMthPeriod,
                                request.WSItemFromSubPeriod, request.WSItemToSubPeriod}),
              ElementsAre(1, 2024, 2025, 6, 7, 0, 4));
  EXPECT_EQ(request.AsOfDate, DateTime{});
}

TEST_F(FinancialPreparation, TheAsOfDateIsADayOfTheCalendarOrAFailure) {
  const struct {
    const char* cycle_method;
    const char* day;  ///< year, month, day
    int result;
    DateTime as_of;
  } cases[] = {{"CycMtdLveAsOfDate", "2004, 2, 29", 1, EncodeDate(2004, 2, 29)},
               {"CycMtdLveAsOfDate", "2023, 2, 29", -1, {}},
               {"CycMtdLveAsOfDate", "0, 0, 0", -1, {}},
               {"cycmtdlveasofdate", "2004, 2, 29", 1, {}}};
  Answer(1);
  for (const auto& each : cases) {
    SCOPED_TRACE(each.day);
    core_.SetFirstWkSheetItem(false);
    scenario_.Host().requests.clear();
    scenario_.Execute(std::string("UPDATE AnlysProject SET CycleMethod = '") + each.cycle_method +
                      "'; UPDATE ExcelWSItemRptOpts SET (WSItemFromYear, WSItemFromMthPeriod, "
                      "WSItemFromSubPeriod) = (" +
                      each.day +
                      "); DELETE FROM AnlysItemRecord; INSERT INTO AnlysItemRecord (AnlysProjectId, "
                      "AnlysIPAddress, Basis1Id) VALUES ('Pay', '10.1.2.3_3', '1')");
    EXPECT_EQ(Prepare("Pay"), each.result);
    ASSERT_EQ(scenario_.Host().requests.size(), each.result == 1 ? 1u : 0u);
    if (each.result == 1) {
      EXPECT_EQ(scenario_.Host().requests[0].AsOfDate, each.as_of);
    }
  }
  EXPECT_THAT(
      Errors(),
      ElementsAre(
          "BExcelExpEngFinRptInfo::ExecuteOperation Error: There is no as-of date with year 2023, month 2 "
          "and day 29.",
          "BExcelExpEngFinRptInfo::ExecuteOperation Error: There is no as-of date with year 0, month 0 and "
          "day 0."));
}

TEST_F(FinancialPreparation, MovementProjectsAnswerTheOtherWayRound) {
  const std::string error =
      "BExcelExpEngFinRptInfo::ExecuteProcAnalysProject Error: Error in processing Analysis Project";
  const struct {
    const char* sub_type;
    int answer;
    int result;
    std::string entry;
  } cases[] = {{"ProjSubTypeMovement", 0, 0, ""},
               {"ProjSubTypeMovement", -1, -1, error},
               {"ProjSubTypeMovement", 4, -1, error + " for EmployeeSysId : 4 EmployeeId : E04"},
               {"ProjSubTypeMovement", 99, -1, error + " for EmployeeSysId : 99 EmployeeId : "},
               {"ProjSubTypePayRec", 0, -1, error},
               {"ProjSubTypePayRec", 1, 0, ""},
               {"ProjSubTypePayRec", -1, 0, ""}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.sub_type + std::to_string(each.answer));
    scenario_.Execute(std::string("UPDATE AnlysProject SET AnlysProjectSubType = '") + each.sub_type + "'");
    Answer(each.answer);
    const std::size_t errors = Errors().size();
    EXPECT_EQ(Prepare("Pay"), each.result);
    ASSERT_EQ(Errors().size(), errors + (each.entry.empty() ? 0 : 1));
    if (each.entry.empty()) continue;
    const std::vector<std::string>& lines = internal_log_.Lines();
    EXPECT_EQ(lines[lines.size() - 2], each.entry);
    EXPECT_EQ(lines[lines.size() - 1], "");
  }
}

TEST_F(FinancialPreparation, ADefinitionThatCannotBeReadIsAFailure) {
  const struct {
    const char* change;
    const char* entry;
  } cases[] = {
      {"DELETE FROM ExcelWSItemRptOpts", "Empty AnalyProjProcessQry Recordset."},
      {"ALTER TABLE ExcelWSItemRptOpts RENAME TO Gone1", "Error in AnalyProjProcessQry Query."},
      {"PRAGMA foreign_keys = OFF; DELETE FROM AnlysProject", "Empty AnalyProjDetailsQry Recordset."},
      {"ALTER TABLE AnlysProject RENAME TO Gone2", "Error in AnalyProjDetailsQry Query."},
      {"PRAGMA foreign_keys = OFF; DELETE FROM FinancialRpt", "Empty FinancialRptDetailsQry Recordset."},
      {"ALTER TABLE FinancialRpt RENAME TO Gone3", "Error in FinancialRptDetailsQry Query."},
  };
  for (const auto& each : cases) {
    scenario_.Execute(each.change);
    EXPECT_EQ(Prepare("Pay"), -1);
    const std::vector<std::string> lines(internal_log_.Lines().end() - 3, internal_log_.Lines().end());
    EXPECT_THAT(
        lines,
        ElementsAre("", std::string("BExcelExpEngFinRptInfo::ExecuteOperation Error: ") + each.entry, ""));
  }
  EXPECT_EQ(internal_log_.Lines().size(), 3 * std::size(cases));
  EXPECT_THAT(scenario_.Host().requests, IsEmpty());
}

TEST_F(FinancialPreparation, AHostWithoutAnAnalysisEngineIsAFailure) {
  scenario_.Host().make_analysis = [](const AnlysProjectStructure&) { return nullptr; };
  EXPECT_EQ(Prepare("Pay"), -1);
  EXPECT_THAT(Errors(), ElementsAre("BExcelExpEngFinRptInfo::ExecuteProcAnalysProject Error: The "
                                    "host has no analysis report engine."));
}

TEST_F(FinancialPreparation, TheFirstReportWithDataConfinesTheLaterOnes) {
  AddReport("None", "SumLevelEmpee", "('', '', '')");
  AddReport("Shares", "SumLevelEmpee", "('4', '', ''), ('2', '', '')");
  AddReport("Apart", "SumLevelEmpee", "('2', '', '')");
  EXPECT_EQ(Prepare("None", 8, 1), 0);
  EXPECT_FALSE(core_.FirstWkSheetItem);
  EXPECT_EQ(Prepare("Pay", 8, 2), 1);
  EXPECT_TRUE(core_.FirstWkSheetItem);
  EXPECT_EQ(core_.FirstWSItemAnalysProj, "Pay");
  EXPECT_EQ(core_.FirstWkSheetItemSQL,
            "(SELECT DISTINCT Basis1Id FROM AnlysItemRecord WHERE AnlysProjectId = 'Pay'" +
                std::string(20, ' ') + "AND AnlysIPAddress = '10.1.2.3_2')");
  EXPECT_EQ(Prepare("Shares", 8, 3), 1);
  EXPECT_EQ(Prepare("Apart", 8, 4), 0);
  EXPECT_EQ(core_.FirstWSItemAnalysProj, "Pay");
  EXPECT_EQ(core_.FirstWSItemHasGrandTot, 0);

  core_.SetFirstWkSheetItem(false);
  EXPECT_EQ(Prepare("Shares", 8, 3), 1);
  EXPECT_EQ(core_.FirstWSItemHasGrandTot, 2);
  EXPECT_EQ(core_.FirstWSItemHasTotEmpCt, 3);
  EXPECT_EQ(Prepare("Apart", 8, 4), 1);
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(FinancialPreparation, AtBasisLevelWholeCombinationsAreKept) {
  AddReport("First", "SumLevelBasis", "('A', 'x', '1'), ('B', 'y', '2')");
  AddReport("Same", "SumLevelBasis", "('B', 'y', '2')");
  AddReport("Crossed", "SumLevelBasis", "('A', 'y', '2'), ('A', 'x', '2')");
  AddReport("Company", "SumLevelCompany", "('001', '', '')");
  AddReport("Other", "SumLevelElse", "('001', 'z', '')");
  EXPECT_EQ(Prepare("First", 8, 1), 1);
  EXPECT_EQ(Prepare("Same", 8, 2), 1);
  EXPECT_EQ(Prepare("Crossed", 8, 3), 0);
  for (const std::string first : {"Company", "Other"}) {
    core_.SetFirstWkSheetItem(false);
    EXPECT_EQ(Prepare(first, 8, 1), 1);
    EXPECT_EQ(Prepare("Other", 8, 2), 1);
    EXPECT_EQ(Prepare("First", 8, 3), 0);
  }
  EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(FinancialPreparation, ItemsOfOneProjectHaveDataKeysOfTheirOwn) {
  scenario_.Execute("INSERT INTO Figures (AnlysItemRecYear, Basis1Id, AnlysAmount1) VALUES (2023, '2', 1)");
  EXPECT_EQ(Prepare("Pay", 7, 1), 1);  // 2024 alone
  EXPECT_EQ(Prepare("Pay", 8, 2), 1);  // all periods
  EXPECT_EQ(RecordsUnder("10.1.2.3_1"), 2);
  EXPECT_EQ(RecordsUnder("10.1.2.3_2"), 3);
}

}  // namespace
}  // namespace excelexp
