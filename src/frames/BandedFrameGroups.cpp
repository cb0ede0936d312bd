// The grouped walk of BandedFrame: groups, their headings, and the totals due where a group ends.

#include <algorithm>

#include "frames/BandedFrame.h"
#include "platform/database/SqlText.h"
#include "platform/host/Format.h"
#include "services/BExcelExpEngCalcFields.h"

namespace excelexp {
namespace {

/// A grouping value as a literal that the database reads back as the same value.
std::string ExactLiteral(const std::string& type, const Field& field) {
  if (field.IsNull()) return "NULL";
  if (type == "integer" || type == "smallint") return std::to_string(field.AsInteger());
  if (type == "double" || type == "decimal") return FloatToText(field.AsFloat());
  return SqlText(field.AsString());
}

bool SameValue(const std::string& type, const Field& previous, const Field& next) {
  if (previous.IsNull() || next.IsNull()) return previous.IsNull() == next.IsNull();
  if (type == "char") return previous.AsString() == next.AsString();
  if (type == "integer" || type == "smallint") return previous.AsInteger() == next.AsInteger();
  if (type == "double" || type == "decimal") return previous.AsFloat() == next.AsFloat();
  if (type == "date" || type == "time" || type == "timestamp")
    return previous.AsDateTime() == next.AsDateTime();
  return true;
}

}  // namespace

bool BandedFrame::GetGroups() {
  WriteBanner(traits_.groups_banner);
  const DefinitionNames& names = traits_.names;
  const OperationName where = Where(traits_.groups_operation);
  if (!core_->OpenOrLog(ExcelRptGroupingQry,
                        "SELECT * FROM " + std::string(names.group_table) + " WHERE " +
                            std::string(names.report_key) + " = " + SqlText(FirstReportId()) +
                            std::string(38, ' ') + "ORDER BY " + std::string(names.group_order),
                        where, "ExcelRptGroupingQry", Rows::kRequired)) {
    return false;
  }
  group_select_.clear();
  group_names_.clear();
  for (ExcelRptGroupingQry.First(); !ExcelRptGroupingQry.Eof(); ExcelRptGroupingQry.Next()) {
    AppendFieldLists(ExcelRptGroupingQry, names.group_field_table, names.group_field, group_select_,
                     group_names_);
  }
  ReadGroupLevels();
  std::string sql;
  return GroupListSql(sql) &&
         core_->OpenOrLog(ExcelRptGrpInfoQry, sql, where, "ExcelRptGrpInfoQry", Rows::kRequired);
}

void BandedFrame::ReadGroupLevels() {
  const DefinitionNames& names = traits_.names;
  const auto number = [this](std::string_view name) {
    return name.empty() ? 0 : ExcelRptGroupingQry.FieldByName(name).AsInteger();
  };
  groups_.clear();
  for (ExcelRptGroupingQry.Last(); !ExcelRptGroupingQry.Bof(); ExcelRptGroupingQry.Prior()) {
    GrpItem& level = groups_.emplace_back();
    level.FinGrpItemSysId = number(names.group_sys_id);
    level.FinGrpItemOrder = number(names.group_order);
    if (!names.group_level_title.empty()) {
      level.FinGrpItemTitle = ExcelRptGroupingQry.FieldByName(names.group_level_title).AsString();
    }
    level.FinGrpHasSubTotal = number(names.group_has_sub_total);
    level.FinGrpHasEmpCount = number(names.group_has_emp_count);
  }
  groups_.emplace_back();  // the report as a whole
}

bool BandedFrame::PrintGroupingRpt() {
  core_->WriteBanner(Memo::kInternal, {"        GROUPING REPORT PRINTING PROCESS        "});
  if (!GetGroups()) return false;
  for (ExcelRptGrpInfoQry.First(); !ExcelRptGrpInfoQry.Eof();) {
    if (!PrintGroup()) return false;
    ExcelRptGrpInfoQry.Next();
    if (!CloseGroup()) return false;
  }
  return true;
}

bool BandedFrame::PrintGroup() {
  current_col_ = 1;
  core_->SetLastPrintedCol(1);
  core_->SetLastPrintedRow(core_->LastPrintedRow + 1);
  return PrintRptGroupingInfo() && PrintNonGroupingRpt();
}

bool BandedFrame::PrintRptGroupingInfo() {
  core_->WriteBanner(Memo::kAll, {"  REPORT GROUPING INFORMATION PRINT PROCESSING  "});
  int row = core_->LastPrintedRow + 1;
  previous_group_values_.clear();
  for (ExcelRptGroupingQry.First(); !ExcelRptGroupingQry.Eof(); ExcelRptGroupingQry.Next()) {
    if (!PrintGroupLevel(row)) return false;
    ++row;
  }
  core_->SetLastPrintedCol(current_col_);
  core_->SetLastPrintedRow(row);
  return true;
}

bool BandedFrame::PrintGroupLevel(int row) {
  const DefinitionNames& names = traits_.names;
  const auto text = [this](std::string_view name) {
    return ExcelRptGroupingQry.FieldByName(name).AsString();
  };
  const OperationName where = Where("PrintRptGroupingInfo");
  const std::string scheme = text("ColourSchemeId");
  if (!cells_.OpenSchemes(scheme, where)) return false;
  if (!cells_.WriteTitle(row, current_col_, text(names.group_title), where)) return false;

  const int value_col = current_col_ + 1;
  const std::string field = text(names.group_field);
  core_->CalcFields->Search(text(names.group_field_table), field, traits_.by_employee, nullptr);
  const std::string type = core_->CalcFields->GetFieldType();
  cells_.WriteField(type, field, ExcelRptGrpInfoQry, row, value_col);
  previous_group_values_ += (previous_group_values_.empty() ? "" : ", ") +
                            ExactLiteral(type, ExcelRptGrpInfoQry.FieldByName(field)) + " AS " + field;
  return cells_.Format(scheme, row, value_col, where);
}

bool BandedFrame::CloseGroup() {
  const std::string range =
      "<Col" + std::to_string(first_data_row_) + ">:<Col" + std::to_string(core_->LastPrintedRow) + ">";
  for (GrpItem& level : groups_) {
    level.GrpRowRanges += (level.GrpRowRanges.empty() ? "" : ", ") + range;
    level.GrpEmpCount += core_->EmpCoyBasisQry->RowCount();
  }
  std::vector<bool> changed(groups_.size() - 1, true);
  if (!ExcelRptGrpInfoQry.Eof() && !FindChangedLevels(changed)) return false;
  if (!CloseLevels(changed)) return false;
  for (GrpItem& level : groups_) level.GrpBreakPrinted = false;
  return true;
}

/// Marks the levels (innermost first, as in groups_) that end with the group just printed: those whose value
/// changes and, because their groups lie inside, all levels within the outermost of these.
bool BandedFrame::FindChangedLevels(std::vector<bool>& changed) {
  Query PrevGrpInfoQry(ExcelRptGrpInfoQry.DatabaseName());
  const std::string prefix = Where("PrintGroupingRpt").Text() + " Error: ";
  try {
    PrevGrpInfoQry.SetSql("SELECT " + previous_group_values_ + " FROM DUMMY");
    PrevGrpInfoQry.Open();
  } catch (...) {
    core_->WriteErrorEntry(prefix + "Error in PrevGrpInfoQry query.");
    return false;
  }
  if (PrevGrpInfoQry.IsEmpty()) {
    core_->WriteErrorEntry(prefix + "Empty PrevGrpInfoQry Recordset.");
    return false;
  }
  std::size_t level = 0;
  std::size_t outermost = 0;  // one past it
  for (ExcelRptGroupingQry.Last(); !ExcelRptGroupingQry.Bof(); ExcelRptGroupingQry.Prior()) {
    const std::string field = ExcelRptGroupingQry.FieldByName(traits_.names.group_field).AsString();
    core_->CalcFields->Search(ExcelRptGroupingQry.FieldByName(traits_.names.group_field_table).AsString(),
                              field, traits_.by_employee, nullptr);
    ++level;
    if (!SameValue(core_->CalcFields->GetFieldType(), PrevGrpInfoQry.FieldByName(field),
                   ExcelRptGrpInfoQry.FieldByName(field))) {
      outermost = level;
    }
  }
  for (std::size_t i = 0; i < changed.size(); ++i) changed[i] = i < outermost;
  return true;
}

bool BandedFrame::CloseLevels(const std::vector<bool>& changed) {
  std::size_t level = 0;
  for (ExcelRptGroupingQry.Last(); !ExcelRptGroupingQry.Bof(); ExcelRptGroupingQry.Prior(), ++level) {
    const GrpItem& group = groups_[level];
    if (!changed[level] || (group.FinGrpHasSubTotal == 0 && group.FinGrpHasEmpCount == 0)) continue;
    if (!totals_.PrintGrpSubTotalEmpCt(group.FinGrpItemOrder, groups_, first_data_row_)) {
      core_->WriteUserEntry("Error in printing Group Sub Total and Total Employees");
      return false;
    }
  }
  return true;
}

}  // namespace excelexp
