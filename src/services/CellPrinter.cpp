#include "services/CellPrinter.h"

#include <array>

#include "platform/database/SqlText.h"
#include "platform/host/CommonLibrary.h"
#include "platform/host/Format.h"

namespace excelexp {

CellPrinter::CellPrinter(BExcelExpEngCore* core, Query* colour_scheme_query)
    : core_(core),
      colour_scheme_query_(colour_scheme_query),
      colour_scheme_(core, colour_scheme_query),
      field_type_(core) {}

bool CellPrinter::OpenSchemes(std::span<const std::string> ids, const OperationName& where) {
  static const std::string gap(37, ' ');
  std::string question = colour_scheme_query_->DatabaseName();
  for (const std::string& id : ids) question.append(1, '\n').append(id);
  if (Recall(question)) return true;
  std::string list;
  for (const std::string& id : ids) list += (list.empty() ? "" : "," + gap) + SqlText(id);
  return Choose(
      question,
      "SELECT * FROM ColourScheme JOIN ColourCodeMapping WHERE" + gap + "ColourSchemeId IN (" + list + ")",
      where);
}

bool CellPrinter::OpenSchemes(const std::string& item_scheme, const OperationName& where) {
  const std::array<std::string, 2> ids = {item_scheme, core_->ExcelWkSheetTitleColourSchemeId};
  return OpenSchemes(ids, where);
}

bool CellPrinter::OpenSchemes(KnownColumnItem& item, const OperationName& where) {
  if (item.schemes == nullptr) {
    if (!OpenSchemes(item.scheme, where)) return false;
    item.schemes = chosen_;
  }
  chosen_ = item.schemes;
  return true;
}

bool CellPrinter::OpenTitleScheme(const OperationName& where) {
  const std::string& title = core_->ExcelWkSheetTitleColourSchemeId;
  const std::string question = colour_scheme_query_->DatabaseName() + "\ttitle\n" + title;
  if (Recall(question)) return true;
  return Choose(question,
                "SELECT * FROM ColourScheme JOIN ColourCodeMapping" + std::string(34, ' ') +
                    "WHERE ColourSchemeId = " + SqlText(title),
                where);
}

bool CellPrinter::Recall(const std::string& question) {
  const auto* known = core_->Memory->scheme_sets.Find(question);
  if (known != nullptr) chosen_ = *known;
  return known != nullptr;
}

bool CellPrinter::Choose(const std::string& question, std::string sql, const OperationName& where) {
  if (!core_->OpenOrLog(*colour_scheme_query_, sql, where, "ColourSchemeQry", Rows::kRequired)) return false;
  chosen_ =
      core_->Memory->scheme_sets.Keep(question, std::make_shared<SchemeSet>(SchemeSet{std::move(sql), {}}));
  return true;
}

bool CellPrinter::Format(const std::string& scheme_id, int row, int column, const OperationName& where) {
  if (ApplyKnown(scheme_id, row, column)) return true;
  if (!OpenChosen(where)) return false;
  if (colour_scheme_.ColourSchRecLocate(scheme_id)) return FormatByRow(scheme_id, row, column);
  if (!where.IsEmpty()) {
    core_->WriteErrorEntry(where.Text() + " Error: Unable to locate Colour Scheme Record.");
  }
  return false;
}

bool CellPrinter::Format(KnownColumnItem& item, int row, int column, const OperationName& where) {
  if (item.style) {
    core_->ExcelAPI->ApplyStyle(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column, *item.style);
    return true;
  }
  if (!Format(item.scheme, row, column, where)) return false;
  if (const PreparedStyle* const style = chosen_->Find(item.scheme)) item.style = *style;
  return true;
}

bool CellPrinter::FormatAsTitle(int row, int column, const OperationName& where) {
  return Format(core_->ExcelWkSheetTitleColourSchemeId, row, column, where);
}

bool CellPrinter::FormatAsFirst(int row, int column, const OperationName& where) {
  static const std::string first = "\n";  // no scheme has that id
  if (ApplyKnown(first, row, column)) return true;
  if (!OpenChosen(where)) return false;
  colour_scheme_query_->First();
  return FormatByRow(first, row, column);
}

bool CellPrinter::ApplyKnown(const std::string& scheme_id, int row, int column) {
  const PreparedStyle* const style = chosen_->Find(scheme_id);
  if (style == nullptr) return false;
  core_->ExcelAPI->ApplyStyle(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column, *style);
  return true;
}

/// The rows of the chosen schemes, which a printer of an earlier entity may have read.
bool CellPrinter::OpenChosen(const OperationName& where) {
  if (colour_scheme_query_->IsOpen() && colour_scheme_query_->Sql() == chosen_->sql) return true;
  return core_->OpenOrLog(*colour_scheme_query_, chosen_->sql, where, "ColourSchemeQry", Rows::kRequired);
}

/// The first cell of a style gets it operation by operation, each with its own check.
bool CellPrinter::FormatByRow(const std::string& scheme_id, int row, int column) {
  if (colour_scheme_.FormatExcelCell(GetCellName(row, column)) == 0) return false;
  chosen_->styles.emplace_back(
      scheme_id, core_->ExcelAPI->PrepareStyle(core_->ExcelWorkbook, *colour_scheme_.StyleOfRow()));
  return true;
}

void CellPrinter::RequireColumn(int column) const {
  if (column > kLastNamedColumn) {
    throw SpreadsheetError("worksheet '" + core_->ExcelWorksheetName +
                           "': the reports side by side need more than " + std::to_string(kLastNamedColumn) +
                           " columns");
  }
}

void CellPrinter::WriteText(int row, int column, const std::string& text) {
  RequireColumn(column);
  core_->ExcelAPI->WriteTableCellText(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column, text);
}

void CellPrinter::WriteNumber(int row, int column, double number) {
  RequireColumn(column);
  core_->ExcelAPI->WriteTableCellNumber(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column, number);
}

void CellPrinter::WriteAmount(int row, int column, double amount) {
  RequireColumn(column);
  core_->ExcelAPI->WriteTableCellAmount(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column, amount,
                                        core_->NumberFormat);
}

void CellPrinter::WriteAmountFormat(int row, int column) {
  core_->ExcelAPI->NumberFormatOnCell(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column,
                                      core_->NumberFormat);
}

void CellPrinter::WriteIntegerFormat(int row, int column, const ValueStyle& style) {
  if (style.integer_format.empty()) return;
  core_->ExcelAPI->NumberFormatOnCell(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column,
                                      std::string(style.integer_format));
}

void CellPrinter::WriteFormula(int row, int column, const std::string& formula) {
  if (formula.empty()) {
    WriteText(row, column, "");
    return;
  }
  core_->ExcelAPI->FormulaOnRange(core_->ExcelWorkbook, core_->ExcelWorksheetName, GetCellName(row, column),
                                  formula);
}

void CellPrinter::RepeatFormula(int row, int column) {
  core_->ExcelAPI->FillRight(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column);
}

bool CellPrinter::WriteTitle(int row, int column, const std::string& text, const OperationName& where) {
  WriteText(row, column, text);
  return FormatAsTitle(row, column, where);
}

void CellPrinter::Merge(int first_row, int first_column, int last_row, int last_column) {
  core_->ExcelAPI->MergeRangeCells(
      core_->ExcelWorkbook, core_->ExcelWorksheetName,
      GetCellName(first_row, first_column) + ":" + GetCellName(last_row, last_column), false, true);
}

void CellPrinter::WriteAnalysisValue(const Query& records, const std::string& column, std::string_view type,
                                     int row, int col, const ValueStyle& style) {
  const Field field = records.FieldByName(column);
  if (type == "char") {
    WriteText(row, col, field.AsString());
  } else if (type == "integer" || type == "smallint") {
    WriteNumber(row, col, field.AsInteger());
    WriteIntegerFormat(row, col, style);
  } else if (type == "double" || type == "decimal") {
    WriteAmount(row, col, field.AsFloat());
  } else if (type == "date") {
    WriteText(row, col, FGetInValidDate(FormatDateTime("dd/mm/yyyy", field.AsDateTime())));
  } else if (type == "time") {
    WriteText(row, col, FormatDateTime("hh:nn:ss", field.AsDateTime()));
  } else if (type == "timestamp") {
    const DateTime moment = field.AsDateTime();
    const std::string pattern =
        style.short_midnight ? field_type_.TimeStampDisplayFormat(moment) : "dd/mm/yyyy hh:nn:ss";
    WriteText(row, col, IsDateNull(moment) ? "" : FormatDateTime(pattern, moment));
  }
}

void CellPrinter::WriteField(const std::string& type, const std::string& field, const Query& source, int row,
                             int column) {
  RequireColumn(column);
  const std::string cell = GetCellName(row, column);
  if (field_type_.Output(cell, type, field, &source, row, column) != 0) return;
  core_->WriteUserEntry("Warning: " + field + " cannot be shown in cell " + cell + " of worksheet " +
                        core_->ExcelWorksheetName + ".");
}

}  // namespace excelexp
