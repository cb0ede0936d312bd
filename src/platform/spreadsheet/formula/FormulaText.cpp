#include "platform/spreadsheet/formula/FormulaText.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/spreadsheet/formula/Lexis.h"
#include "platform/spreadsheet/formula/ReferenceReader.h"

namespace excelexp::formula {
namespace {

constexpr std::size_t kLongest = 512;
// A text with a relative one names no sheet, so that it has none of its own.
constexpr char kReferenceMark = '\'';

/// A reference as text, whose longest is "$XFD$1048576:$XFD$1048576".
class ReferenceText {
 public:
  std::string_view View() const { return {buffer_, static_cast<std::size_t>(end_ - buffer_)}; }
  void Put(char c) { *end_++ = c; }
  void PutNumber(int number) { end_ = std::to_chars(end_, buffer_ + sizeof buffer_, number).ptr; }
  void PutLetters(int column) { end_ = WriteColumnLetters(end_, column); }

 private:
  char buffer_[64];
  char* end_ = buffer_;
};

void PutDistance(ReferenceText& text, int position, bool absolute, int base) {
  text.Put(absolute ? '$' : 'r');
  text.PutNumber(absolute ? position : position - base);
}

ReferenceText Distances(const ReferredCells& cells, int row, int column) {
  ReferenceText text;
  text.Put(kReferenceMark);
  text.Put(cells.single ? '1' : '2');
  PutDistance(text, cells.range.first_row, cells.row_absolute[0], row);
  PutDistance(text, cells.range.first_col, cells.column_absolute[0], column);
  if (!cells.single) {
    PutDistance(text, cells.range.last_row, cells.row_absolute[1], row);
    PutDistance(text, cells.range.last_col, cells.column_absolute[1], column);
  }
  return text;
}

void PutCell(ReferenceText& text, int row, bool row_absolute, int column, bool column_absolute) {
  if (column_absolute) text.Put('$');
  text.PutLetters(column);
  if (row_absolute) text.Put('$');
  text.PutNumber(row);
}

/// The reference as the application writes it, but for whole rows and columns.
ReferenceText Written(const ReferredCells& cells) {
  ReferenceText text;
  PutCell(text, cells.range.first_row, cells.row_absolute[0], cells.range.first_col,
          cells.column_absolute[0]);
  if (!cells.single) {
    text.Put(':');
    PutCell(text, cells.range.last_row, cells.row_absolute[1], cells.range.last_col,
            cells.column_absolute[1]);
  }
  return text;
}

std::size_t EndOfWord(std::string_view formula, std::size_t at) {
  while (at < formula.size() && IsWordCharacter(formula[at])) ++at;
  return at;
}

std::size_t EndOfText(std::string_view formula, std::size_t at) {
  return std::min(formula.find('"', at + 1), formula.size() - 1) + 1;
}

/// Calls use(begin, end, cells) for every reference of the formula.
template <typename Use>
void ForEachReference(std::string_view formula, Use use) {
  for (std::size_t at = 0; at < formula.size();) {
    const char first = formula[at];
    if (!IsWordCharacter(first) && first != '$') {
      at = first == '"' ? EndOfText(formula, at) : at + 1;
      continue;
    }
    const std::size_t end = EndOfWord(formula, at);
    const bool is_call = end < formula.size() && formula[end] == '(';
    const std::optional<ReadReference> read = is_call ? std::nullopt : ReadCells(formula.substr(at));
    if (read) use(at, at + read->length, read->reference);
    at = read ? at + read->length : std::max(end, at + 1);
  }
}

}  // namespace

FormulaText::FormulaText(std::string text)
    : text_(std::move(text)),
      as_it_is_(text_.find_first_of("!'") != std::string::npos),
      movable_(!as_it_is_) {
  if (as_it_is_) return;
  const std::string_view formula = text_;
  ForEachReference(formula, [&](std::size_t begin, std::size_t end, const ReferredCells& cells) {
    places_.push_back({begin, end, cells});
    movable_ = movable_ && Written(cells).View() == formula.substr(begin, end - begin);
  });
}

std::optional<std::string> FormulaText::RelativeTo(int row, int column) const {
  if (as_it_is_ || text_.size() > kLongest) return std::nullopt;
  std::string relative;
  relative.reserve(text_.size() + 32);
  std::size_t copied = 0;
  for (const Place& place : places_) {
    relative.append(text_, copied, place.begin - copied).append(Distances(place.cells, row, column).View());
    copied = place.end;
  }
  return relative.append(text_, copied);
}

bool FormulaText::CanMove(const Moves& moves) const {
  return movable_ && std::all_of(places_.begin(), places_.end(), [&moves](const Place& place) {
           ReferredCells cells = place.cells;
           return Move(cells, moves);
         });
}

bool FormulaText::Equals(std::string_view text, const Moves& moves) const {
  if (!movable_) return false;
  const std::string_view mine = text_;
  const auto take = [&text](std::string_view part) {
    const bool starts = text.starts_with(part);
    if (starts) text.remove_prefix(part.size());
    return starts;
  };
  std::size_t compared = 0;
  for (const Place& place : places_) {
    if (!take(mine.substr(compared, place.begin - compared))) return false;
    ReferredCells cells = place.cells;
    if (!Move(cells, moves) || !take(Written(cells).View())) return false;
    compared = place.end;
  }
  return text == mine.substr(compared);
}

std::string FormulaText::Moved(const Moves& moves) const {
  if (!movable_ || !moves.Any()) return text_;
  std::string moved;
  std::size_t copied = 0;
  for (const Place& place : places_) {
    ReferredCells cells = place.cells;
    Move(cells, moves);
    moved.append(text_, copied, place.begin - copied).append(Written(cells).View());
    copied = place.end;
  }
  return moved.append(text_, copied);
}

}  // namespace excelexp::formula
