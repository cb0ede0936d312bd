#include "platform/spreadsheet/formula/ReferenceReader.h"

#include <utility>

#include "platform/spreadsheet/formula/Lexis.h"

namespace excelexp::formula {
namespace {

/// One end of a reference: a column, a row or both.
struct End {
  int row = 0;     ///< 0 for an end without a row
  int column = 0;  ///< 0 for an end without a column
  bool row_absolute = false;
  bool column_absolute = false;

  bool SameKind(const End& other) const {
    return (row == 0) == (other.row == 0) && (column == 0) == (other.column == 0);
  }
};

/// A cursor that gives up by staying at an earlier place.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  std::size_t Place() const { return at_; }
  void Return(std::size_t place) { at_ = place; }
  char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  bool Take(char c) {
    if (Peek() != c) return false;
    ++at_;
    return true;
  }
  void SkipBlanks() {
    while (IsBlank(Peek())) ++at_;
  }

  bool TakeEnd(End& end) {
    const bool first_dollar = Take('$');
    if (TakeColumn(end)) {
      end.column_absolute = first_dollar;
      const std::size_t before_row = at_;
      end.row_absolute = Take('$');
      if (!TakeRow(end)) {
        at_ = before_row;
        end.row_absolute = false;
      }
    } else {
      end.row_absolute = first_dollar;
      if (!TakeRow(end)) return false;
    }
    // A word goes on, or it is a call or a sheet: no reference.
    return !IsWordCharacter(Peek()) && Peek() != '(' && Peek() != '!';
  }

  /// A sheet name without quotes.
  bool TakeWord(std::string& word) {
    const std::size_t start = at_;
    while (IsWordCharacter(Peek()) && Peek() != '?' && Peek() != '\\') ++at_;
    word = text_.substr(start, at_ - start);
    return at_ > start;
  }

  /// One or two sheet names between quotes.
  bool TakeQuoted(Reference& reference) {
    std::string* name = &reference.sheet;
    while (at_ < text_.size()) {
      const char c = text_[at_++];
      if (c == '\'' && !Take('\'')) return !name->empty();
      if (c == ':' && name == &reference.sheet) {
        name = &reference.last_sheet;
      } else {
        *name += c;
      }
    }
    return false;
  }

 private:
  bool TakeColumn(End& end) {
    const std::size_t start = at_;
    while (IsAsciiLetter(Peek()) && at_ - start < 4) {
      end.column = end.column * 26 + (text_[at_++] & ~0x20) - 'A' + 1;
    }
    if (at_ > start && at_ - start < 4 && end.column <= Workbook::kMaxColumns) return true;
    end.column = 0;
    at_ = start;
    return false;
  }

  bool TakeRow(End& end) {
    if (Peek() < '1' || Peek() > '9') return false;
    for (end.row = 0; IsDigit(Peek()) && end.row <= Workbook::kMaxRows; ++at_) {
      end.row = end.row * 10 + (text_[at_] - '0');
    }
    return end.row <= Workbook::kMaxRows;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

void SetAxis(int first, int last, bool first_absolute, bool last_absolute, int& low, int& high,
             bool (&absolute)[2]) {
  const bool ordered = first <= last;
  low = ordered ? first : last;
  high = ordered ? last : first;
  absolute[0] = ordered ? first_absolute : last_absolute;
  absolute[1] = ordered ? last_absolute : first_absolute;
}

Reference Between(const End& first, const End& last) {
  Reference reference;
  CellRange& range = reference.range;
  SetAxis(first.row, last.row, first.row_absolute, last.row_absolute, range.first_row, range.last_row,
          reference.row_absolute);
  SetAxis(first.column, last.column, first.column_absolute, last.column_absolute, range.first_col,
          range.last_col, reference.column_absolute);
  if (first.row == 0)
    SetAxis(1, Workbook::kMaxRows, true, true, range.first_row, range.last_row, reference.row_absolute);
  if (first.column == 0) {
    SetAxis(1, Workbook::kMaxColumns, true, true, range.first_col, range.last_col, reference.column_absolute);
  }
  return reference;
}

}  // namespace

std::optional<ReadReference> ReadCells(std::string_view text) {
  Reader reader(text);
  End first;
  if (!reader.TakeEnd(first)) return std::nullopt;
  const bool is_cell = first.row != 0 && first.column != 0;
  const std::size_t first_length = reader.Place();
  reader.SkipBlanks();
  End last;
  if (reader.Take(':')) {
    reader.SkipBlanks();
    if (reader.TakeEnd(last) && last.SameKind(first)) {
      ReadReference read{Between(first, last), reader.Place()};
      read.reference.single = false;
      return read;
    }
  }
  if (!is_cell) return std::nullopt;
  return ReadReference{Between(first, first), first_length};
}

std::optional<ReadReference> ReadSheetPrefix(std::string_view text) {
  Reader reader(text);
  ReadReference read;
  if (reader.Take('\'')) {
    if (!reader.TakeQuoted(read.reference)) return std::nullopt;
  } else {
    if (!reader.TakeWord(read.reference.sheet)) return std::nullopt;
    if (reader.Take(':') && !reader.TakeWord(read.reference.last_sheet)) return std::nullopt;
  }
  if (!reader.Take('!')) return std::nullopt;
  read.length = reader.Place();
  return read;
}

}  // namespace excelexp::formula
