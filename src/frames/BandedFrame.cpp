#include "frames/BandedFrame.h"

#include "engine/DefinitionTables.h"
#include "platform/database/SqlText.h"
#include "platform/host/Format.h"
#include "services/BExcelExpEngCalcFields.h"
#include "services/FieldColumns.h"

namespace excelexp {

BandedFrame::BandedFrame(BExcelExpEngCore* core, std::vector<WkSheetItem>& items, const FrameTraits& traits)
    : core_(core),
      items_(items),
      traits_(traits),
      cells_(core, &ColourSchemeQry),
      totals_(core, traits, items) {
  const std::string database = traits.database.empty() ? core->DatabaseName : std::string(traits.database);
  for (Query* query : {&ExcelRptGroupingQry, &ExcelRptGrpInfoQry, &ExcelRptSortingQry,
                       &ExcelRptSummLvlItemQry, &ColourSchemeQry}) {
    query->SetDatabaseName(database);
  }
}

bool BandedFrame::ExecuteOperation() {
  core_->WriteBanner(Memo::kAll, {"    EXCEL WORKSHEET ITEMS PRINTING PROCESS      "});
  if (!PrepareEntities()) return false;
  grouped_ = CheckForRptGrouping();
  const bool printed = grouped_ ? PrintGroupingRpt() : PrintNonGroupingRpt();
  core_->WriteAllMemo(printed ? "Financial/Employee Report is successfully exported to Excel."
                              : "Error in printing Financial/Employee Report.");
  core_->WriteAllMemo("");
  if (!printed) return false;
  if (core_->FirstWSItemHasGrandTot == 0 && core_->FirstWSItemHasTotEmpCt == 0) return true;
  if (totals_.PrintRptGrandTotalEmpCt(groups_, first_data_row_)) return true;
  core_->WriteUserEntry("Error in printing Report Grand Total and Total Employees.");
  return false;
}

bool BandedFrame::CheckForRptGrouping() {
  core_->WriteBanner(Memo::kInternal, {"        REPORT GROUPING CHECKING PROCESS        "});
  const DefinitionNames& names = traits_.names;
  return core_->ExecuteSQL("SELECT * FROM " + std::string(names.group_table) + " WHERE " +
                           std::string(names.report_key) + " = " + SqlText(FirstReportId())) &&
         !core_->SQLQry->IsEmpty();
}

bool BandedFrame::GetEntities() {
  WriteBanner(traits_.entities_banner);
  const DefinitionNames& names = traits_.names;
  if (!core_->OpenOrLog(ExcelRptSortingQry,
                        "SELECT * FROM " + std::string(names.sort_table) + " WHERE " +
                            std::string(names.report_key) + " = " + SqlText(FirstReportId()) +
                            std::string(37, ' ') + "ORDER BY " + std::string(names.sort_order),
                        Where(traits_.entities_operation), "ExcelRptSortingQry", Rows::kOptional)) {
    return false;
  }
  sort_select_.clear();
  sort_names_.clear();
  for (ExcelRptSortingQry.First(); !ExcelRptSortingQry.Eof(); ExcelRptSortingQry.Next()) {
    AppendFieldLists(ExcelRptSortingQry, names.sort_field_table, names.sort_field, sort_select_, sort_names_);
  }
  group_condition_.clear();
  if (grouped_) {
    for (ExcelRptGroupingQry.First(); !ExcelRptGroupingQry.Eof(); ExcelRptGroupingQry.Next()) {
      core_->CalcFields->Search(ExcelRptGroupingQry.FieldByName(names.group_field_table).AsString(),
                                ExcelRptGroupingQry.FieldByName(names.group_field).AsString(),
                                traits_.by_employee, &ExcelRptGrpInfoQry);
      group_condition_ += (group_condition_.empty() ? "" : " AND ") + core_->CalcFields->GetCondition();
    }
  }
  std::string sql;
  if (!EntityListSql(sql)) return false;
  if (!core_->ExecuteEmpCoyBasisSQL(sql)) {
    return Fail(traits_.entities_operation, "Error in getting " + std::string(traits_.entities_name));
  }
  return !core_->EmpCoyBasisQry->IsEmpty() ||
         Fail(traits_.entities_operation, "Empty " + std::string(traits_.entities_name));
}

void BandedFrame::AppendFieldLists(const Query& rows, std::string_view table, std::string_view field,
                                   std::string& select, std::string& names) {
  core_->CalcFields->Search(rows.FieldByName(table).AsString(), rows.FieldByName(field).AsString(),
                            traits_.by_employee, nullptr);
  select += (select.empty() ? "" : ", ") + core_->CalcFields->GetSelectList();
  names += (names.empty() ? "" : ", ") + core_->CalcFields->GetFieldName();
}

bool BandedFrame::GetIndividualEmpCoyBasisInfo() {
  constexpr std::string_view kOperation = "GetIndividualEmpCoyBasisInfo";
  core_->WriteBanner(Memo::kInternal, {"        INDIVIDUAL EMPLOYEE/COMPANY/BASIS       ",
                                       "            INFORMATION PROCESSING              "});
  std::string sql;
  if (!EntitySql(sql)) return false;
  if (!core_->ExecuteCurEmpCoyBasisSQL(sql))
    return Fail(kOperation, "Error in ExcelRptEmpCoyBasisQry Query.");
  return !core_->CurEmpCoyBasisQry->IsEmpty() || Fail(kOperation, "Empty ExcelRptEmpCoyBasisQry Recordset.");
}

bool BandedFrame::PrintNonGroupingRpt() {
  core_->WriteBanner(Memo::kAll, {"      REPORT INFORMATION PRINTING PROCESS       "});
  if (!GetEntities()) return false;
  const DefinitionNames& names = traits_.names;
  if (!core_->OpenOrLog(ExcelRptSummLvlItemQry,
                        "SELECT * FROM " + std::string(names.column_table) + " WHERE " +
                            std::string(names.report_key) + " = " + SqlText(FirstReportId()) +
                            std::string(11, ' ') + "AND " + std::string(names.column_is_main_info) +
                            " = 1 ORDER BY " + std::string(names.column_order),
                        Where("PrintNonGroupingRpt"), "ExcelRptSummLvlItemQry", Rows::kOptional)) {
    return false;
  }
  main_columns_ = FieldColumns(core_, ExcelRptSummLvlItemQry, names.columns, traits_.by_employee);
  Query& entities = *core_->EmpCoyBasisQry;
  int entity = 0;
  for (entities.First(); !entities.Eof(); entities.Next()) {
    core_->ReportProgress(++entity, entities.RowCount());
    if (!GetIndividualEmpCoyBasisInfo()) {
      return Fail("PrintNonGroupingRpt", "Error in getting individual Employee/Company/Basis Information.");
    }
    if (!LogEntity() || !PrintBand()) return false;
  }
  return true;
}

bool BandedFrame::PrintBand() {
  const bool has_main_info = !ExcelRptSummLvlItemQry.IsEmpty();
  const bool first_entity = core_->EmpCoyBasisQry->Bof();
  const int band_row = core_->LastPrintedRow + (first_entity ? traits_.first_band_gap : 1);
  if (first_entity) first_data_row_ = band_row;
  current_col_ = has_main_info ? 1 : 2;
  core_->SetStartPrintedRow(band_row);
  core_->SetLastPrintedCol(current_col_);
  if (has_main_info && !PrintEmpCoyBasisInfo(band_row)) return false;
  for (WkSheetItem& item : items_) {
    core_->FirstEntity = first_entity || item.FirstEntity;
    core_->SetExcelWSItemSysId(item.WkSheetItemSysId);
    core_->SetExcelWSItemRptId(item.WkSheetItemRptId);
    core_->SetExcelWSItemOrdering(item.WkSheetItemOrdering);
    core_->SetStartPrintedCol(core_->LastPrintedCol);
    item.FirstCol = core_->LastPrintedCol;
    if (!PrintItem(item)) return false;
    item.LastCol = core_->LastPrintedCol - 1;
    item.FirstEntity = core_->FirstEntity;
  }
  return true;
}

bool BandedFrame::PrintEmpCoyBasisInfo(int band_row) {
  core_->WriteBanner(Memo::kInternal, {"    PRINT INDIVIDUAL EMPLOYEE/COMPANY/BASIS     ",
                                       "            INFORMATION PROCESSING              "});
  for (ExcelRptSummLvlItemQry.First(); !ExcelRptSummLvlItemQry.Eof(); ExcelRptSummLvlItemQry.Next()) {
    if (!PrintMainInfoColumn(band_row)) return false;
    ++current_col_;
  }
  core_->SetLastPrintedCol(current_col_);
  if (band_row > core_->LastPrintedRow) core_->SetLastPrintedRow(band_row);
  return true;
}

bool BandedFrame::PrintMainInfoColumn(int band_row) {
  KnownColumnItem& column = (*main_columns_)[static_cast<std::size_t>(ExcelRptSummLvlItemQry.RowIndex())];
  const OperationName where = Where("PrintEmpCoyBasisInfo");
  if (!cells_.OpenSchemes(column, where)) return false;
  if (core_->EmpCoyBasisQry->Bof() && !cells_.WriteTitle(band_row - 1, current_col_, column.title, where)) {
    return false;
  }
  cells_.WriteField(column.field_type, column.component, *core_->CurEmpCoyBasisQry, band_row, current_col_);
  return cells_.Format(column, band_row, current_col_, where);
}

bool BandedFrame::PrintItem(WkSheetItem& item) {
  if (item.WkSheetItemRptType == report_type::kFinancial && !traits_.layouts.empty()) {
    return PrintFinancialRpt(item.WkSheetItemRptId);
  }
  for (const LayoutRow& layout : traits_.item_layouts) {
    if (layout.scheme == item.WkSheetItemRptType) return PrintByLayout(layout);
  }
  return true;
}

bool BandedFrame::PrintFinancialRpt(const std::string& report_id) {
  core_->WriteBanner(Memo::kInternal, {"     FINANCIAL REPORT PRINTING PROCESSING       "});
  const LayoutRow* const* known = financial_layouts_.Find(report_id);
  if (known == nullptr) {
    const std::optional<const LayoutRow*> layout = FinancialLayoutOf(report_id);
    if (!layout) return false;
    known = &financial_layouts_.Keep(report_id, *layout);
  }
  return *known == nullptr || PrintByLayout(**known);
}

std::optional<const LayoutRow*> BandedFrame::FinancialLayoutOf(const std::string& report_id) {
  static const std::string gap(10, ' ');
  if (!core_->ExecuteSQL(
          Joined({"SELECT LayoutSchemeId, CycleMethod  FROM", gap, "FinancialRpt JOIN AnlysProject ON", gap,
                  "FinancialRpt.FinancialAnalysProjId = AnlysProject.AnlysProjectId", gap,
                  "WHERE FinancialRptId = ", SqlText(report_id)}))) {
    Fail("PrintFinancialRpt", "Error in getting the financial report layout scheme.");
    return std::nullopt;
  }
  if (core_->SQLQry->IsEmpty()) {
    Fail("PrintFinancialRpt", "Empty financial report layout scheme information.");
    return std::nullopt;
  }
  const std::string scheme = core_->SQLQry->FieldByName("LayoutSchemeId").AsString();
  const std::string cycle_method = core_->SQLQry->FieldByName("CycleMethod").AsString();
  for (const LayoutRow& layout : traits_.layouts) {
    if (layout.scheme == scheme && Fits(layout.as_of, cycle_method)) return &layout;
  }
  return nullptr;
}

bool BandedFrame::PrintByLayout(const LayoutRow& layout) {
  core_->WriteBanner(Memo::kInternal, {layout.banner});
  if (layout.make(core_)->ExecuteOperation()) return true;
  core_->WriteInternalMemo(Where(layout.operation).Text() + " Error: Error in printing " +
                           std::string(layout.report));
  core_->WriteInternalMemo("");
  return false;
}

bool BandedFrame::Fail(std::string_view operation, std::string_view text) {
  core_->WriteErrorEntry(Where(operation).Text() + " Error: " + std::string(text));
  return false;
}

OperationName BandedFrame::Where(std::string_view operation) const {
  return {traits_.class_name, operation};
}

void BandedFrame::WriteBanner(const std::string_view (&titles)[2]) {
  titles[1].empty() ? core_->WriteBanner(Memo::kInternal, {titles[0]})
                    : core_->WriteBanner(Memo::kInternal, {titles[0], titles[1]});
}

}  // namespace excelexp
