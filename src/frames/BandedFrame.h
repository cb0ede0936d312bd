#pragma once

#include <optional>
#include <string>
#include <vector>

#include "frames/FrameTotals.h"
#include "frames/FrameTraits.h"
#include "frames/GrpItem.h"
#include "frames/ReportFrame.h"
#include "services/DefinitionMemory.h"

namespace excelexp {

/// The spine of the report frames: walks the entities of a worksheet and gives each one a band of rows, in
/// which every worksheet item is printed side by side by its layout; group by group when the first item's
/// report is grouped; totals at the end. Grouping, sorting and main-information definitions are always those
/// of the first item's report.
class BandedFrame : public ReportFrame {
 public:
  /// Everything handed in outlives the frame.
  BandedFrame(BExcelExpEngCore* core, std::vector<WkSheetItem>& items, const FrameTraits& traits);

  bool ExecuteOperation() override;

 protected:
  // What the members supply. Each logs its own failure.

  /// Once, before anything is asked for.
  virtual bool PrepareEntities() { return true; }
  /// The statement of the entity list, confined to the current group when the report is grouped.
  virtual bool EntityListSql(std::string& sql) = 0;
  /// The statement of the group list, one row per group.
  virtual bool GroupListSql(std::string& sql) = 0;
  /// The statement of the current entity's record.
  virtual bool EntitySql(std::string& sql) = 0;
  /// Names the current entity in both logs.
  virtual bool LogEntity() = 0;

  /// Writes `operation`'s error entry and returns false.
  bool Fail(std::string_view operation, std::string_view text);
  OperationName Where(std::string_view operation) const;
  const std::string& FirstReportId() const { return items_.front().WkSheetItemRptId; }
  bool Grouped() const { return grouped_; }

  BExcelExpEngCore* core_;
  std::vector<WkSheetItem>& items_;
  const FrameTraits& traits_;

  std::string sort_select_;
  std::string sort_names_;
  std::string group_select_;
  std::string group_names_;
  std::string group_condition_;  ///< of the current group

 private:
  bool CheckForRptGrouping();
  bool PrintGroupingRpt();
  bool GetGroups();
  void ReadGroupLevels();
  bool PrintGroup();
  bool PrintRptGroupingInfo();
  bool PrintGroupLevel(int row);
  bool CloseGroup();
  bool CloseLevels(const std::vector<bool>& changed);
  bool FindChangedLevels(std::vector<bool>& changed);
  bool PrintNonGroupingRpt();
  bool GetEntities();
  bool GetIndividualEmpCoyBasisInfo();
  bool PrintBand();
  bool PrintEmpCoyBasisInfo(int band_row);
  bool PrintMainInfoColumn(int band_row);
  bool PrintItem(WkSheetItem& item);
  bool PrintFinancialRpt(const std::string& report_id);
  /// nullptr for a report that no layout of the frame prints; nullopt when it cannot be told, which is
  /// logged.
  std::optional<const LayoutRow*> FinancialLayoutOf(const std::string& report_id);
  bool PrintByLayout(const LayoutRow& layout);
  void WriteBanner(const std::string_view (&titles)[2]);
  void AppendFieldLists(const Query& rows, std::string_view table, std::string_view field,
                        std::string& select, std::string& names);

  Query ExcelRptGroupingQry;
  Query ExcelRptGrpInfoQry;
  Query ExcelRptSortingQry;
  Query ExcelRptSummLvlItemQry;
  Query ColourSchemeQry;
  Remembered<const LayoutRow*> financial_layouts_;  // by report
  CellPrinter cells_;
  FrameTotals totals_;

  std::vector<GrpItem> groups_;  ///< empty for an ungrouped report
  std::string previous_group_values_;
  bool grouped_ = false;
  int current_col_ = 1;
  int first_data_row_ = 1;                                      ///< of the entity list printed last
  std::shared_ptr<std::vector<KnownColumnItem>> main_columns_;  // of the rows of ExcelRptSummLvlItemQry
};

}  // namespace excelexp
