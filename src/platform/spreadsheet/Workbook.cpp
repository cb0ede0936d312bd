#include "platform/spreadsheet/Workbook.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <deque>
#include <functional>

#include "platform/spreadsheet/FormatChange.h"
#include "platform/spreadsheet/InternPool.h"
#include "platform/spreadsheet/Utf8.h"
#include "platform/spreadsheet/formula/SharedFormulas.h"

namespace excelexp {
namespace {

gunichar Folded(char32_t character) {
  return g_unichar_tolower(g_unichar_toupper(character));
}

}  // namespace

std::size_t TextHash::operator()(std::string_view text) const {
  return std::hash<std::string_view>{}(text);
}

std::size_t CellFormatHash::operator()(const CellFormat& format) const {
  const std::size_t flags = static_cast<std::size_t>(format.bold) | format.italic << 1 |
                            format.strikethrough << 2 | format.superscript << 3 | format.subscript << 4 |
                            format.word_wrap << 5 | format.centred << 6;
  std::size_t hash = TextHash{}(format.font_name);
  for (const std::size_t part :
       {TextHash{}(format.number_format), std::hash<double>{}(format.font_size),
        static_cast<std::size_t>(format.font_colour), static_cast<std::size_t>(format.underline), flags}) {
    hash = std::rotl(hash, 11) * 0x9E3779B97F4A7C15U + part;
  }
  return hash ^ hash >> 29;
}

bool IsUnderline(Underline kind) {
  constexpr std::array kKinds = {Underline::kNone, Underline::kSingle, Underline::kDouble,
                                 Underline::kSingleAccounting, Underline::kDoubleAccounting};
  return std::find(kKinds.begin(), kKinds.end(), kind) != kKinds.end();
}

std::string_view ErrorText(ErrorCode code) {
  static constexpr std::array<std::string_view, 7> kTexts = {"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                                             "#NAME?", "#NUM!",   "#N/A"};
  return kTexts[static_cast<std::size_t>(code)];
}

bool SameSheetName(std::string_view a, std::string_view b) {
  if (a == b) return true;
  while (!a.empty() && !b.empty()) {
    const char32_t left = DecodeUtf8(a);
    const char32_t right = DecodeUtf8(b);
    if (left != right && Folded(left) != Folded(right)) return false;
  }
  return a.empty() && b.empty();
}

Formula::Formula(std::shared_ptr<const formula::FormulaSource> said, formula::Moves moved)
    : source(std::move(said)), moves(moved) {}

Formula::Formula(std::string text, std::shared_ptr<const formula::Expression> expression, FormulaResult shown)
    : source(std::make_shared<formula::FormulaSource>(
          formula::FormulaSource{std::move(expression), formula::FormulaText(std::move(text))})),
      result(std::move(shown)) {}

std::string Formula::Text() const {
  return source->text.Moved(moves);
}

const std::shared_ptr<const formula::Expression>& Formula::SharedExpression() const {
  return source->expression;
}

const Cell* Sheet::Find(int row, int column) const {
  if (row < 1 || row > LastRow() || column < 1) return nullptr;
  const std::vector<Cell>& cells = Row(row);
  return static_cast<std::size_t>(column) <= cells.size() ? &cells[static_cast<std::size_t>(column - 1)]
                                                          : nullptr;
}

/// How many cells to make room for in a row that has to hold `columns`. A row most often ends where the row
/// above or the longest one ends; else room is doubled, since cells come one by one.
std::size_t Sheet::RoomFor(std::size_t columns, std::size_t row_index) const {
  constexpr std::size_t kLeast = 4;
  const std::size_t doubled = std::max({columns, 2 * rows_[row_index].capacity(), kLeast});
  const auto longest = static_cast<std::size_t>(last_column_);
  const std::size_t above = row_index > 0 ? rows_[row_index - 1].capacity() : 0;
  if (columns <= above) return std::min(above, std::max(longest, doubled));
  return columns <= longest ? std::min(longest, doubled) : doubled;
}

void Sheet::GrowRow(std::size_t row_index, std::size_t columns) {
  if (row_index >= rows_.size()) rows_.resize(row_index + 1);
  std::vector<Cell>& cells = rows_[row_index];
  if (columns > cells.capacity()) cells.reserve(RoomFor(columns, row_index));
  while (cells.size() < columns) cells.emplace_back();  // mostly one
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

/// What a change made of a format, in the slot of its hash until another one takes the slot.
struct Transition {
  static constexpr std::size_t kSlots = 1024;  ///< 24 KB; a report uses some dozens

  FormatChange change;
  FormatId from = UINT32_MAX;
  FormatId to = 0;
};

struct Workbook::Pools {
  InternPool<std::string, TextHash> texts;
  InternPool<std::string, TextHash> names;
  std::uint32_t last_name = 0;
  std::array<Transition, Transition::kSlots> transitions;
  InternPool<CellFormat, CellFormatHash> formats;
  std::deque<std::vector<FormatChange>> changes;
  std::deque<Formula> formulas;
  formula::SharedFormulas shared_formulas;
};

Workbook::Workbook() : pools_(std::make_unique<Pools>()) {
  InternFormat(CellFormat());
}

Workbook::~Workbook() = default;

Sheet* Workbook::SearchSheet(std::string_view name) const {
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

FormatId Workbook::ChangedFormat(FormatId from, const FormatChange& change) {
  Transition& known = pools_->transitions[(change.Hash() + from * 31U) % Transition::kSlots];
  if (known.from != from || known.change != change) {
    CellFormat format = Format(from);
    change.Apply(format, *this);
    known = {change, from, InternFormat(format)};
  }
  return known.to;
}

std::uint32_t Workbook::InternName(std::string_view name) {
  // Cell after cell gets the same number format.
  if (pools_->last_name < pools_->names.Size() && pools_->names[pools_->last_name] == name)
    return pools_->last_name;
  return pools_->last_name = pools_->names.Intern(name);
}
const std::string& Workbook::Name(std::uint32_t index) const {
  return pools_->names[index];
}

std::uint32_t Workbook::AddChanges(std::vector<FormatChange> changes) {
  pools_->changes.push_back(std::move(changes));
  return static_cast<std::uint32_t>(pools_->changes.size() - 1);
}
const std::vector<FormatChange>& Workbook::Changes(std::uint32_t index) const {
  return pools_->changes[index];
}

Formula Workbook::MakeFormula(std::string_view text, int row, int column) {
  return pools_->shared_formulas.Make(text, row, column);
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
