#include "services/BExcelExpEngFieldType.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/host/CommonLibrary.h"
#include "platform/host/Format.h"

namespace excelexp {
namespace {

/// What a cell shows for a code of a coded column.
struct CodeWord {
  std::string_view column_type;
  std::string_view field;  ///< "" is every field of the type without rows of its own
  std::string_view code;   ///< "" is every other code
  std::string_view word;
};

constexpr std::array<CodeWord, 18> kCodeWords = {{
    {"char", "Gender", "1", "Male"},
    {"char", "Gender", "0", "Female"},
    {"char", "Gender", "", ""},
    {"integer", "CareerCurrent", "0", "No"},
    {"integer", "CareerCurrent", "", "Yes"},
    {"integer", "SponsorType", "0", "Percentage"},
    {"integer", "SponsorType", "1", "Amount"},
    {"integer", "SponsorType", "", ""},
    {"integer", "GovGrantType", "0", "Percentage"},
    {"integer", "GovGrantType", "1", "Amount"},
    {"integer", "GovGrantType", "", ""},
    {"smallint", "CPFMAWOption", "-1", "No MAW Projection"},
    {"smallint", "CPFMAWOption", "0", "Maximum Additional Wage (MAW) Limit"},
    {"smallint", "CPFMAWOption", "1", "Ordinary Wage Projection"},
    {"smallint", "CPFMAWOption", "", ""},
    {"smallint", "", "1", "Yes"},
    {"smallint", "", "0", "No"},
    {"smallint", "", "", ""},
}};

/// nullptr for a field that shows its value as it is.
const CodeWord* FindWord(std::string_view column_type, std::string_view field, std::string_view code) {
  const auto* known = std::find_if(kCodeWords.begin(), kCodeWords.end(), [&](const CodeWord& row) {
    return row.column_type == column_type && (row.field == field || row.field.empty());
  });
  if (known == kCodeWords.end()) return nullptr;
  return std::find_if(known, kCodeWords.end(), [&](const CodeWord& row) {
    return row.field == known->field && (row.code == code || row.code.empty());
  });
}

}  // namespace

int BExcelExpEngFieldType::Output(const std::string& cell_name, const std::string& column_type,
                                  const std::string& field_name, const Query* source, int row, int column) {
  written_ = false;
  try {
    OutputValue(cell_name, column_type, field_name, source->FieldByName(field_name), row, column);
    return 1;
  } catch (...) {
    return 0;
  }
}

void BExcelExpEngFieldType::OutputValue(const std::string& cell_name, const std::string& column_type,
                                        const std::string& field_name, const Field& field, int row,
                                        int column) {
  if (column_type == "char") {
    std::string text = field.AsString();
    const CodeWord* word = FindWord(column_type, field_name, text);
    WriteText(row, column, word != nullptr ? std::string(word->word) : text);
    NoteWritten("'", std::move(text), field_name);
  } else if (column_type == "integer" || column_type == "smallint") {
    const int number = field.AsInteger();
    std::string text = std::to_string(number);
    const CodeWord* word = FindWord(column_type, field_name, text);
    word != nullptr ? WriteText(row, column, std::string(word->word)) : WriteNumber(row, column, number);
    NoteWritten("", std::move(text), field_name);
  } else if (column_type == "double" || column_type == "decimal") {
    const double number = field.AsFloat();
    WriteNumber(row, column, number);
    core_->ExcelAPI->NumberFormatOnRange(core_->ExcelWorkbook, core_->ExcelWorksheetName, cell_name,
                                         core_->NumberFormat);
    NoteWritten("", number, field_name);
  } else if (column_type == "date") {
    std::string date = FormatDateTime("dd/mm/yyyy", field.AsDateTime());
    WriteText(row, column, FGetInValidDate(date));
    NoteWritten("'", std::move(date), field_name);
  } else if (column_type == "time") {
    std::string time = FormatDateTime("hh:nn:ss", field.AsDateTime());
    WriteText(row, column, time);
    NoteWritten("'", std::move(time), field_name);
  } else if (column_type == "timestamp") {
    const DateTime moment = field.AsDateTime();
    std::string text = FormatDateTime("dd/mm/yyyy hh:nn:ss", moment);
    WriteText(row, column, IsDateNull(moment) ? "" : text);
    NoteWritten("'", std::move(text), field_name);
  }
}

int BExcelExpEngFieldType::OutputBlank(const std::string& cell_name, const std::string& column_type, int row,
                                       int column, bool zero_fill) {
  const bool amount = column_type == "double" || column_type == "decimal";
  amount&& zero_fill ? WriteNumber(row, column, 0.0) : WriteText(row, column, "");
  if (amount) {
    core_->ExcelAPI->NumberFormatOnRange(core_->ExcelWorkbook, core_->ExcelWorksheetName, cell_name,
                                         core_->NumberFormat);
  }
  written_ = false;
  return 1;
}

std::string BExcelExpEngFieldType::TimeStampDisplayFormat(DateTime value) const {
  const CivilTime civil = DecodeDateTime(value);
  const bool midnight = civil.hour == 0 && civil.minute == 0 && civil.second == 0 && civil.millisecond == 0;
  return midnight ? "dd/mm/yyyy" : "dd/mm/yyyy hh:nn:ss";
}

void BExcelExpEngFieldType::NoteWritten(std::string_view quote, std::variant<std::string, double> value,
                                        const std::string& field_name) {
  written_ = true;
  written_quote_ = quote;
  written_value_ = std::move(value);
  written_field_ = field_name;
}

std::string BExcelExpEngFieldType::GetSelectList() const {
  if (!written_) return "";
  const double* const amount = std::get_if<double>(&written_value_);
  const std::string value =
      amount != nullptr ? FormatFloat("#0.00;-#0.00", *amount) : std::get<std::string>(written_value_);
  return Joined({written_quote_, value, written_quote_, " AS ", written_field_});
}

void BExcelExpEngFieldType::WriteText(int row, int column, const std::string& text) {
  core_->ExcelAPI->WriteTableCellText(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column, text);
}

void BExcelExpEngFieldType::WriteNumber(int row, int column, double number) {
  core_->ExcelAPI->WriteTableCellNumber(core_->ExcelWorkbook, core_->ExcelWorksheetName, row, column, number);
}

}  // namespace excelexp
