#include "dataprep/BExcelExpEngFinRptInfo.h"

#include <stdexcept>

#include "engine/DefinitionTables.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqlText.h"

namespace excelexp {
namespace {

constexpr std::string_view kExecute = "BExcelExpEngFinRptInfo::ExecuteOperation";
constexpr std::string_view kRunProject = "BExcelExpEngFinRptInfo::ExecuteProcAnalysProject";

}  // namespace

BExcelExpEngFinRptInfo::BExcelExpEngFinRptInfo(BExcelExpEngCore* core)
    : core_(core),
      FinancialRptDetailsQry(core->DatabaseName),
      AnalyProjDetailsQry(core->DatabaseName),
      AnalyProjProcessQry(core->DatabaseName) {}

int BExcelExpEngFinRptInfo::ExecuteOperation() {
  if (!ReadDefinitions()) return -1;
  FillRequest();
  if (request_.CycleMethod == kCycleAsOfDate && !FillAsOfDate()) return -1;
  if (!ExecuteProcAnalysProject()) return -1;
  return CheckFinancialRptData();
}

bool BExcelExpEngFinRptInfo::ReadDefinitions() {
  return core_->OpenOrLog(FinancialRptDetailsQry,
                          "SELECT * FROM FinancialRpt WHERE" + std::string(41, ' ') +
                              "FinancialRptId = " + SqlText(core_->ExcelWSItemRptId),
                          kExecute, "FinancialRptDetailsQry", Rows::kRequired) &&
         core_->OpenOrLog(AnalyProjDetailsQry,
                          "SELECT * FROM AnlysProject WHERE" + std::string(38, ' ') + "AnlysProjectId = " +
                              SqlText(FinancialRptDetailsQry.FieldByName("FinancialAnalysProjId").AsString()),
                          kExecute, "AnalyProjDetailsQry", Rows::kRequired) &&
         core_->OpenOrLog(AnalyProjProcessQry,
                          "SELECT * FROM ExcelWSItemRptOpts WHERE" + std::string(38, ' ') +
                              "WkSheetItemSysId = " + std::to_string(core_->ExcelWSItemSysId),
                          kExecute, "AnalyProjProcessQry", Rows::kRequired);
}

void BExcelExpEngFinRptInfo::FillRequest() {
  const auto text = [this](std::string_view name) {
    return AnalyProjDetailsQry.FieldByName(name).AsString();
  };
  const auto number = [this](std::string_view name) {
    return AnalyProjProcessQry.FieldByName(name).AsInteger();
  };
  request_.AnlysIPAddress = core_->DataKey(core_->ExcelWSItemOrdering);
  request_.AnlysProjectId = text("AnlysProjectId");
  request_.AnlysSetupId = text("AnlysSetupId");
  request_.AnlysProjectDesc = text("AnlysProjectDesc");
  request_.CycleMethod = text("CycleMethod");
  request_.CycleGroupBy = text("CycleGroupBy");
  request_.CycleSubGroupBy = text("CycleSubGroupBy");
  request_.IsSystemProject = AnalyProjDetailsQry.FieldByName("IsSystemProject").AsInteger();
  request_.Basis1 = text("Basis1");
  request_.Basis2 = text("Basis2");
  request_.Basis3 = text("Basis3");
  request_.AnlysProjectType = text("AnlysProjectType");
  request_.SummaryLevel = text("SummaryLevel");
  request_.AnlysProjectSubType = text("AnlysProjectSubType");
  request_.WSItemFromYear = number("WSItemFromYear");
  request_.WSItemToYear = number("WSItemToYear");
  request_.WSItemFromMthPeriod = number("WSItemFromMthPeriod");
  request_.WSItemToMthPeriod = number("WSItemToMthPeriod");
  request_.WSItemFromSubPeriod = number("WSItemFromSubPeriod");
  request_.WSItemToSubPeriod = number("WSItemToSubPeriod");
}

bool BExcelExpEngFinRptInfo::FillAsOfDate() {
  try {
    request_.AsOfDate =
        EncodeDate(request_.WSItemFromYear, request_.WSItemFromMthPeriod, request_.WSItemFromSubPeriod);
    return true;
  } catch (const std::invalid_argument&) {
    core_->WriteErrorEntry(std::string(kExecute) + " Error: There is no as-of date with year " +
                           std::to_string(request_.WSItemFromYear) + ", month " +
                           std::to_string(request_.WSItemFromMthPeriod) + " and day " +
                           std::to_string(request_.WSItemFromSubPeriod) + ".");
    return false;
  }
}

bool BExcelExpEngFinRptInfo::ExecuteProcAnalysProject() {
  core_->WriteBanner(Memo::kInternal, {"           ANALYSIS PROJECT PROCESSING          "});
  const auto analysis = core_->Host == nullptr ? nullptr
                                               : core_->Host->CreateAnalysisRptEng(
                                                     request_, std::string(kPayrollDatabaseName), false);
  if (analysis == nullptr) {
    core_->WriteErrorEntry(std::string(kRunProject) + " Error: The host has no analysis report engine.");
    return false;
  }
  analysis->SetQueryViewTable(core_->QueryViewTable);
  const int result = analysis->ExecuteOperation();
  // A host's own analysis engine may have written through another connection.
  DatabaseRegistry::NoteWrite();
  return JudgeResult(result);
}

bool BExcelExpEngFinRptInfo::JudgeResult(int result) {
  const bool movement = request_.AnlysProjectSubType == project_sub_type::kMovement;
  if (movement ? result == 0 : result != 0) return true;
  std::string message = std::string(kRunProject) + " Error: Error in processing Analysis Project";
  if (movement && result != -1) {
    const std::string employee = std::to_string(result);
    const bool found = core_->ExecuteSQL("SELECT FGetEmployeeId(" + employee + ") as EmployeeId") &&
                       !core_->SQLQry->IsEmpty();
    message += " for EmployeeSysId : " + employee +
               " EmployeeId : " + (found ? core_->SQLQry->FieldByName("EmployeeId").AsString() : "");
  }
  core_->WriteInternalMemo(message);
  core_->WriteInternalMemo("");
  return false;
}

int BExcelExpEngFinRptInfo::CheckFinancialRptData() {
  core_->WriteBanner(Memo::kInternal, {"      FINANCIAL RPT DATA CHECK PROCESSING       "});
  const std::string project = FinancialRptDetailsQry.FieldByName("FinancialAnalysProjId").AsString();
  const std::string key = core_->DataKey(core_->ExcelWSItemOrdering);
  const std::string data = "SELECT * FROM AnlysItemRecord WHERE AnlysProjectId = " + SqlText(project) +
                           std::string(14, ' ') + "AND AnlysIPAddress = " + SqlText(key);
  if (const int found = core_->FindsRows(data); found != 1) return found;
  if (core_->FirstWkSheetItem)
    return core_->FindsRows(data + " AND Basis1Id IN " + core_->FirstWkSheetItemSQL);
  SetFirstWkSheetItem(true);
  SetFirstWSItemAnalysProj(project);
  SetFirstWSItemHasGrandTot(FinancialRptDetailsQry.FieldByName("FinancialHasGrandTot").AsInteger());
  SetFirstWSItemHasTotEmpCt(FinancialRptDetailsQry.FieldByName("FinancialHasTotEmpCt").AsInteger());
  SetRestriction(project, key);
  return 1;
}

/// The restriction follows "Basis1Id IN". At basis level its inner selects refer to the row that is tested,
/// so that whole combinations of ids are kept. A summary level that is none of the known ones keeps its first
/// id, like an employee.
void BExcelExpEngFinRptInfo::SetRestriction(const std::string& project, const std::string& key) {
  static const std::string gap(20, ' ');
  if (request_.SummaryLevel != summary_level::kBasis) {
    SetFirstWkSheetItemSQL("(SELECT DISTINCT Basis1Id FROM AnlysItemRecord WHERE AnlysProjectId = " +
                           SqlText(project) + gap + "AND AnlysIPAddress = " + SqlText(key) + ")");
    core_->SetFirstWkSheetItemIdSQL(core_->FirstWkSheetItemSQL);
    return;
  }
  const auto ids = [&](const std::string& basis) {
    return "(SELECT DISTINCT " + basis +
           " FROM AnlysItemRecord AR WHERE AR.AnlysProjectId = " + SqlText(project) + gap +
           "AND AR.AnlysIPAddress = " + SqlText(key);
  };
  core_->SetFirstWkSheetItemIdSQL(ids("Basis1Id") + ")");
  SetFirstWkSheetItemSQL(
      core_->FirstWkSheetItemIdSQL + " AND Basis2Id IN" + gap + ids("Basis2Id") + gap +
      "AND AR.Basis1Id = AnlysItemRecord.Basis1Id) AND Basis3Id IN" + gap + ids("Basis3Id") + gap +
      "AND AR.Basis1Id = AnlysItemRecord.Basis1Id AND AR.Basis2Id = AnlysItemRecord.Basis2Id)");
}

}  // namespace excelexp
