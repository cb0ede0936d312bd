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

bool CellPrinter::OpenSchemes(std::span<const std::string> ids, std::string_view where) {
  static const std::string gap(37, ' ');
  std::string list;
  for (const std::string& id : ids) list += (list.empty() ? "" : "," + gap) + SqlText(id);
  return core_->OpenOrLog(
      *colour_scheme_query_,
      "SELECT * FROM ColourScheme JOIN ColourCodeMapping WHERE" + gap + "ColourSchemeId IN (" + list + ")",
      where, "ColourSchemeQry", Rows::kRequired);
}

bool CellPrinter::OpenSchemes(const std::string& item_scheme, std::string_view where) {
  const std::array<std::string, 2> ids = {item_scheme, core_->ExcelWkSheetTitleColourSchemeId};
  return OpenSchemes(ids, where);
}

bool CellPrinter::OpenTitleScheme(std::string_view where) {
  return core_->OpenOrLog(*colour_scheme_query_,
                          "SELECT * FROM ColourScheme JOIN ColourCodeMapping" + std::string(34, ' ') +
                              "WHERE ColourSchemeId = " + SqlText(core_->ExcelWkSheetTitleColourSchemeId),
                          where, "ColourSchemeQry", Rows::kRequired);
}

bool CellPrinter::Format(const std::string& scheme_id, const std::string& range, std::string_view where) {
  if (colour_scheme_.ColourSchRecLocate(scheme_id)) return FormatAsCurrent(range);
  if (!where.empty()) {
    core_->WriteErrorEntry(std::string(where) + " Error: Unable to locate Colour Scheme Record.");
  }
  return false;
}

bool CellPrinter::FormatAsTitle(const std::string& range, std::string_view where) {
  return Format(core_->ExcelWkSheetTitleColourSchemeId, range, where);
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

void CellPrinter::WriteNumber(int row, int column, const Variant& number) {
  RequireColumn(column);
  core_->ExcelAPI->WriteTableCell(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column, number);
}

void CellPrinter::WriteAmountFormat(const std::string& cell) {
  core_->ExcelAPI->NumberFormatOnRange(core_->ExcelWorkbook, core_->ExcelWorksheetName, cell,
                                       core_->NumberFormat);
}

void CellPrinter::WriteIntegerFormat(const std::string& cell, const ValueStyle& style) {
  if (style.integer_format.empty()) return;
  core_->ExcelAPI->NumberFormatOnRange(core_->ExcelWorkbook, core_->ExcelWorksheetName, cell,
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

bool CellPrinter::WriteTitle(int row, int column, const std::string& text, std::string_view where) {
  WriteText(row, column, text);
  return FormatAsTitle(GetCellName(row, column), where);
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
    WriteIntegerFormat(GetCellName(row, col), style);
  } else if (type == "double" || type == "decimal") {
    WriteNumber(row, col, field.AsFloat());
    WriteAmountFormat(GetCellName(row, col));
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
