#include "platform/spreadsheet/FormatCensus.h"

#include <array>

namespace excelexp {
namespace {

struct BuiltIn {
  std::string_view code;
  int number;
};

// [MS-XLS] 2.4.126 and ECMA-376 Part 1, 18.8.30: the numbers whose codes do not vary with the language.
constexpr std::array<BuiltIn, 11> kBuiltIns = {{{"General", 0},
                                                {"0", 1},
                                                {"0.00", 2},
                                                {"#,##0", 3},
                                                {"#,##0.00", 4},
                                                {"0%", 9},
                                                {"0.00%", 10},
                                                {"0.00E+00", 11},
                                                {"# ?/?", 12},
                                                {"# ?\?/?\?", 13},
                                                {"@", 49}}};

CellFormat FontOf(CellFormat format) {
  const CellFormat plain;
  format.number_format = plain.number_format;
  format.word_wrap = plain.word_wrap;
  format.centred = plain.centred;
  return format;
}

}  // namespace

std::optional<int> BuiltInNumberFormat(std::string_view code) {
  for (const BuiltIn& known : kBuiltIns) {
    if (known.code == code) return known.number;
  }
  return std::nullopt;
}

FormatCensus::FormatCensus(const Workbook& workbook)
    : workbook_(workbook), index_(workbook.FormatCount(), kUnused) {
  CellFormat font = FontOf(workbook.Format(0));
  for (const bool italic : {false, true}) {
    for (const bool bold : {false, true}) {
      font.bold = bold;
      font.italic = italic;
      fonts_.Intern(font);
    }
  }
  Add(0);
}

void FormatCensus::AddNew(FormatId id) {
  index_[id] = static_cast<std::uint32_t>(entries_.size());
  const CellFormat& format = workbook_.Format(id);
  const std::optional<int> built_in = BuiltInNumberFormat(format.number_format);
  const int number =
      built_in ? *built_in : kFirstCustom + static_cast<int>(number_formats_.Intern(format.number_format));
  entries_.push_back({id, fonts_.Intern(FontOf(format)), number});
}

void FormatCensus::AddAll() {
  for (const auto& sheet : workbook_.Sheets()) {
    for (int row = 1; row <= sheet->LastRow(); ++row) {
      for (const Cell& cell : sheet->Row(row)) Add(cell.format);
    }
  }
}

}  // namespace excelexp
