#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "engine/BExcelExpEngCore.h"
#include "engine/WkSheetItem.h"
#include "platform/analysis/AnlysProjectStructure.h"

namespace excelexp {

/// Handles the items of one worksheet in two passes: prepares the data of every item, then hands all items
/// with data to the report frame of the first one's type. Afterwards the analysis records made for the items
/// are deleted.
class BExcelExpEngProcWksheetItem {
 public:
  explicit BExcelExpEngProcWksheetItem(BExcelExpEngCore* core);

  /// Both passes and the clean-up; 1 or 0.
  int ExecuteOperation();
  /// The first pass: fills the items with data; 1 or 0.
  int ProcessWksheetItems();

  /// Each prepares the current item: -1 failure, 0 no data, 1 data, 2 data about persons.
  int ExecuteProcFinancialRptInfo();
  int ExecuteProcEmployeeRptInfo();

  /// Each prints all items through one report frame; 1 or 0.
  int ExecutePrintFirstFinRpt();
  int ExecutePrintFirstEmpRpt();
  int ExecutePrintFirstPerRpt();

  void ExecuteDeleteAnlysProject();

  void SetExcelWSItemSysId(int id) { core_->SetExcelWSItemSysId(id); }
  void SetExcelWSItemReportId(const std::string& id) { core_->SetExcelWSItemRptId(id); }
  void SetExcelWSItemOrdering(int ordering) { core_->SetExcelWSItemOrdering(ordering); }
  void SetFirstWkSheetItem(bool first) { core_->SetFirstWkSheetItem(first); }

 private:
  void TakeCurrentItem();
  bool RecordResult(int result);
  int PrintThroughFrame(std::string_view report_type, std::string_view operation);
  void DeleteAnalysisData();

  BExcelExpEngCore* core_;
  std::unique_ptr<AnlysProjectStructure> DeleteProjectRequest;
  Query ExcelWorksheetItemQry;
  std::vector<WkSheetItem> WkSheetItems;
};

}  // namespace excelexp
