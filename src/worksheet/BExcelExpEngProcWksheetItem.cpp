#include "worksheet/BExcelExpEngProcWksheetItem.h"

#include "dataprep/BExcelExpEngEmpRptInfo.h"
#include "dataprep/BExcelExpEngFinRptInfo.h"
#include "engine/DefinitionTables.h"
#include "frames/ReportFrame.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqlText.h"

namespace excelexp {
namespace {

// The messages of this class name it without "Proc".
const std::string kMessageClass = "BExcelExpEngWksheetItem::";

}  // namespace

BExcelExpEngProcWksheetItem::BExcelExpEngProcWksheetItem(BExcelExpEngCore* core)
    : core_(core), ExcelWorksheetItemQry(core->DatabaseName) {}

int BExcelExpEngProcWksheetItem::ExecuteOperation() {
  if (!core_->OpenOrLog(ExcelWorksheetItemQry,
                        "SELECT * FROM ExcelWkSheetItem" + std::string(40, ' ') + "WHERE WkSheetSysId = " +
                            std::to_string(core_->ExcelWorksheetSysId) + " ORDER BY WkSheetItemOrdering",
                        "BExcelExpEngWksheetItem::ExecuteOperation", "ExcelWorksheetItemQry",
                        Rows::kRequired)) {
    return 0;
  }
  if (ProcessWksheetItems() == 0) return 0;
  if (WkSheetItems.empty()) {
    core_->WriteUserEntry("There are no Financial/Employee Reports to be printed.");
  } else {
    core_->MultipleWkSheetItems = WkSheetItems.size() >= 2;
    const std::string& type = WkSheetItems.front().WkSheetItemRptType;
    const int printed = type == report_type::kFinancial  ? ExecutePrintFirstFinRpt()
                        : type == report_type::kEmployee ? ExecutePrintFirstEmpRpt()
                                                         : ExecutePrintFirstPerRpt();
    if (printed == 0) return 0;
  }
  DeleteAnalysisData();
  SetFirstWkSheetItem(false);
  return 1;
}

int BExcelExpEngProcWksheetItem::ProcessWksheetItems() {
  core_->WriteBanner(Memo::kAll, {"             EXCEL WORKSHEET ITEMS              ",
                                  "            INFORMATION PROCESSING              "});
  for (ExcelWorksheetItemQry.First(); !ExcelWorksheetItemQry.Eof(); ExcelWorksheetItemQry.Next()) {
    TakeCurrentItem();
    core_->WriteAllMemo("Excel Worksheet Item Order: " + std::to_string(core_->ExcelWSItemOrdering));
    const std::string type = ExcelWorksheetItemQry.FieldByName("WkSheetItemRptType").AsString();
    int result = 0;  // an item of any other type is one without data
    if (type == report_type::kFinancial) {
      core_->WriteAllMemo("Financial Report ID: " + core_->ExcelWSItemRptId);
      result = ExecuteProcFinancialRptInfo();
    } else if (type == report_type::kEmployee) {
      core_->WriteAllMemo("Employee Report ID: " + core_->ExcelWSItemRptId);
      result = ExecuteProcEmployeeRptInfo();
    }
    if (!RecordResult(result)) return 0;
  }
  ExcelWorksheetItemQry.First();
  TakeCurrentItem();
  return 1;
}

void BExcelExpEngProcWksheetItem::TakeCurrentItem() {
  SetExcelWSItemSysId(ExcelWorksheetItemQry.FieldByName("WkSheetItemSysId").AsInteger());
  SetExcelWSItemReportId(ExcelWorksheetItemQry.FieldByName("WkSheetItemRptId").AsString());
  SetExcelWSItemOrdering(ExcelWorksheetItemQry.FieldByName("WkSheetItemOrdering").AsInteger());
}

bool BExcelExpEngProcWksheetItem::RecordResult(int result) {
  const bool has_data = result == 1 || result == 2;
  if (has_data) {
    WkSheetItem item;
    item.WkSheetItemSysId = core_->ExcelWSItemSysId;
    item.WkSheetItemOrdering = core_->ExcelWSItemOrdering;
    item.WkSheetItemRptType = result == 2
                                  ? std::string(report_type::kPersonal)
                                  : ExcelWorksheetItemQry.FieldByName("WkSheetItemRptType").AsString();
    item.WkSheetItemRptId = core_->ExcelWSItemRptId;
    WkSheetItems.push_back(std::move(item));
  } else if (result == 0) {
    core_->WriteAllMemo("No Data Generated for Financial/Employee Report " + core_->ExcelWSItemRptId);
  } else {
    core_->WriteAllMemo("Error in generating data for Financial/Employee Report " + core_->ExcelWSItemRptId);
  }
  core_->WriteAllMemo("");
  return has_data || result == 0;
}

int BExcelExpEngProcWksheetItem::ExecuteProcFinancialRptInfo() {
  core_->WriteBanner(Memo::kInternal, {"        FINANCIAL REPORT INFO PROCESSING        "});
  const int result = BExcelExpEngFinRptInfo(core_).ExecuteOperation();
  if (result == -1) {
    core_->WriteInternalMemo(
        kMessageClass + "ExecuteProcFinancialRptInfo() Error: Error in processing Financial Report Data");
    core_->WriteInternalMemo("");
  }
  return result;
}

int BExcelExpEngProcWksheetItem::ExecuteProcEmployeeRptInfo() {
  core_->WriteBanner(Memo::kInternal, {"        EMPLOYEE REPORT INFO PROCESSING         "});
  const int result = BExcelExpEngEmpRptInfo(core_).ExecuteOperation();
  if (result == -1) {
    core_->WriteInternalMemo(kMessageClass +
                             "ExecuteProcEmployeeRptInfo Error: Error in processing Employee Report Data");
    core_->WriteInternalMemo("");
  }
  return result;
}

int BExcelExpEngProcWksheetItem::ExecutePrintFirstFinRpt() {
  return PrintThroughFrame(report_type::kFinancial, "ExecutePrintFirstFinRpt");
}

int BExcelExpEngProcWksheetItem::ExecutePrintFirstEmpRpt() {
  return PrintThroughFrame(report_type::kEmployee, "ExecutePrintFirstEmpRpt");
}

int BExcelExpEngProcWksheetItem::ExecutePrintFirstPerRpt() {
  return PrintThroughFrame(report_type::kPersonal, "ExecutePrintFirstPerRpt");
}

int BExcelExpEngProcWksheetItem::PrintThroughFrame(std::string_view report_type, std::string_view operation) {
  core_->WriteBanner(Memo::kInternal, {"      PRINTING EXCEL WORKSHEET ITEM PROCESS     "});
  const auto frame = MakeReportFrame(report_type, core_, WkSheetItems);
  if (frame->ExecuteOperation()) return 1;
  core_->WriteInternalMemo(kMessageClass + std::string(operation) +
                           " Error: Error in printing Excel Worksheet Items");
  core_->WriteInternalMemo("");
  return 0;
}

void BExcelExpEngProcWksheetItem::DeleteAnalysisData() {
  for (ExcelWorksheetItemQry.First(); !ExcelWorksheetItemQry.Eof(); ExcelWorksheetItemQry.Next()) {
    const std::string report = ExcelWorksheetItemQry.FieldByName("WkSheetItemRptId").AsString();
    const bool found =
        core_->ExecuteSQL("SELECT FinancialAnalysProjId FROM FinancialRpt" + std::string(28, ' ') +
                          "WHERE FinancialRptId = " + SqlText(report)) &&
        !core_->SQLQry->IsEmpty();
    DeleteProjectRequest = std::make_unique<AnlysProjectStructure>();
    if (found)
      DeleteProjectRequest->AnlysProjectId = core_->SQLQry->FieldByName("FinancialAnalysProjId").AsString();
    DeleteProjectRequest->AnlysIPAddress =
        core_->DataKey(ExcelWorksheetItemQry.FieldByName("WkSheetItemOrdering").AsInteger());
    ExecuteDeleteAnlysProject();
    DeleteProjectRequest.reset();
  }
}

void BExcelExpEngProcWksheetItem::ExecuteDeleteAnlysProject() {
  const auto analysis =
      core_->Host->CreateAnalysisRptEng(*DeleteProjectRequest, std::string(kPayrollDatabaseName), false);
  if (analysis == nullptr) return;
  analysis->SetQueryViewTable(core_->QueryViewTable);
  analysis->DeleteOperation();
}

}  // namespace excelexp
