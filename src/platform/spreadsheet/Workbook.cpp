#include "platform/spreadsheet/Workbook.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <deque>
#include <functional>

#include "platform/spreadsheet/InternPool.h"

namespace excelexp {
namespace {

struct TextHash {
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

struct FormatHash {
  std::size_t operator()(const CellFormat& format) const {
    const std::size_t flags = static_cast<std::size_t>(format.bold) | format.italic << 1 |
                              format.strikethrough << 2 | format.superscript << 3 | format.subscript << 4 |
                              format.word_wrap << 5 | format.centred << 6;
    std::size_t hash = std::hash<std::string>{}(format.font_name);
    for (const std::size_t part :
         {std::hash<std::string>{}(format.number_format), std::hash<double>{}(format.font_size),
          static_cast<std::size_t>(format.font_colour), static_cast<std::size_t>(format.underline), flags}) {
      hash = std::rotl(hash, 11) * 0x9E3779B97F4A7C15U + part;
    }
    return hash ^ hash >> 29;
  }
};

/// Takes one character from the front; a byte that begins no valid character is one beyond all characters.
gunichar TakeCharacter(std::string_view& text) {
  constexpr gunichar kBeyond = 0x110000;
  const gunichar character = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
  const bool valid = character < kBeyond;
  const gunichar taken = valid ? character : kBeyond + static_cast<unsigned char>(text.front());
  text.remove_prefix(valid ? static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr)) : 1);
  return taken;
}

}  // namespace

std::string_view ErrorText(ErrorCode code) {
  static constexpr std::array<std::string_view, 7> kTexts = {"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                                             "#NAME?", "#NUM!",   "#N/A"};
  return kTexts[static_cast<std::size_t>(code)];
}

bool SameSheetName(std::string_view a, std::string_view b) {
  if (a == b) return true;
  while (!a.empty() && !b.empty()) {
    const gunichar left = TakeCharacter(a);
    const gunichar right = TakeCharacter(b);
    if (left != right &&
        g_unichar_tolower(g_unichar_toupper(left)) != g_unichar_tolower(g_unichar_toupper(right)))
      return false;
  }
  return a.empty() && b.empty();
}

const Cell* Sheet::Find(int row, int column) const {
  if (row < 1 || row > LastRow() || column < 1) return nullptr;
  const std::vector<Cell>& cells = Row(row);
  return static_cast<std::size_t>(column) <= cells.size() ? &cells[static_cast<std::size_t>(column - 1)]
                                                          : nullptr;
}

void Sheet::GrowRow(std::size_t row_index, std::size_t columns) {
  if (row_index >= rows_.size()) rows_.resize(row_index + 1);
  std::vector<Cell>& cells = rows_[row_index];
  // A row most often ends where the row above ends: reserving that much leaves no slack.
  if (cells.capacity() == 0 && row_index > 0) cells.reserve(std::max(columns, rows_[row_index - 1].size()));
  cells.resize(columns);
  last_column_ = std::max(last_column_, static_cast<int>(columns));
}

void Sheet::AddMerge(const CellRange& range) {
  const auto index = static_cast<std::uint32_t>(merges_.size());
  merges_.push_back(range);
  const auto last_row = static_cast<std::size_t>(range.last_row);
  if (merges_by_row_.size() < last_row) merges_by_row_.resize(last_row);
  for (auto row = static_cast<std::size_t>(range.first_row); row <= last_row; ++row) {
    merges_by_row_[row - 1].push_back(index);
  }
}

std::optional<std::size_t> Sheet::FirstOverlap(const CellRange& range, std::size_t before) const {
  std::optional<std::size_t> first;
  const auto last_row = std::min(static_cast<std::size_t>(range.last_row), merges_by_row_.size());
  for (auto row = static_cast<std::size_t>(range.first_row); row <= last_row; ++row) {
    for (const std::uint32_t index : merges_by_row_[row - 1]) {
      const CellRange& merge = merges_[index];
      if (index >= before || merge.first_col > range.last_col || merge.last_col < range.first_col) continue;
      first = std::min<std::size_t>(first.value_or(index), index);
    }
  }
  return first;
}

void Sheet::Sizes::Set(int number, double size) {
  if (number > Last()) sizes_.resize(static_cast<std::size_t>(number), -1.0);
  sizes_[Index(number)] = size;
}

struct Workbook::Pools {
  InternPool<std::string, TextHash> texts;
  InternPool<CellFormat, FormatHash> formats;
  std::deque<Formula> formulas;
};

Workbook::Workbook() : pools_(std::make_unique<Pools>()) {
  InternFormat(CellFormat());
}

Workbook::~Workbook() = default;

Sheet* Workbook::FindSheet(std::string_view name) const {
  // Everything is printed sheet by sheet, so the sheet asked for last is most often the one asked for next.
  if (last_found_ < sheets_.size() && sheets_[last_found_]->Name() == name) return sheets_[last_found_].get();
  for (std::size_t i = 0; i < sheets_.size(); ++i) {
    if (!SameSheetName(sheets_[i]->Name(), name)) continue;
    last_found_ = i;
    return sheets_[i].get();
  }
  return nullptr;
}

std::uint32_t Workbook::InternText(std::string_view text) {
  return pools_->texts.Intern(text);
}
const std::string& Workbook::Text(std::uint32_t index) const {
  return pools_->texts[index];
}
std::size_t Workbook::TextCount() const {
  return pools_->texts.Size();
}

FormatId Workbook::InternFormat(const CellFormat& format) {
  return pools_->formats.Intern(format);
}
const CellFormat& Workbook::Format(FormatId id) const {
  return pools_->formats[id];
}
std::size_t Workbook::FormatCount() const {
  return pools_->formats.Size();
}

std::uint32_t Workbook::AddFormula(Formula formula) {
  pools_->formulas.push_back(std::move(formula));
  return static_cast<std::uint32_t>(pools_->formulas.size() - 1);
}

Formula& Workbook::FormulaAt(std::uint32_t index) {
  return pools_->formulas[index];
}
const Formula& Workbook::FormulaAt(std::uint32_t index) const {
  return pools_->formulas[index];
}
std::size_t Workbook::FormulaCount() const {
  return pools_->formulas.size();
}

}  // namespace excelexp
