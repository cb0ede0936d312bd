#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/formula/Expression.h"

namespace excelexp::formula {

/// The text of a formula and where it names cells, so that the same can be said of other cells.
class FormulaText {
 public:
  /// A text that names sheets is taken as it is.
  explicit FormulaText(std::string text);

  /// The text with its references written as distances from a cell (row and column from 1), so that "=A1+B1"
  /// in C1 and "=A2+B2" in C2 have one text: formulas of the same relative text parse to the same expression,
  /// moved. Nothing for a text taken as it is, or that is so long that hardly another one equals it.
  std::optional<std::string> RelativeTo(int row, int column) const;

  /// Whether its references are written as the application writes them ("$B$2", "A1:C3"), so that the text
  /// moves with them.
  bool IsMovable() const { return movable_; }
  /// Whether they stay on the sheet, too.
  bool CanMove(const Moves& moves) const;
  /// Whether `text` is this one, moved; false for one that is not movable.
  bool Equals(std::string_view text, const Moves& moves) const;
  /// The text with its references moved, which must stay on the sheet; as it is when it is not movable.
  std::string Moved(const Moves& moves) const;

 private:
  struct Place {
    std::size_t begin;
    std::size_t end;
    ReferredCells cells;
  };

  std::string text_;
  std::vector<Place> places_;
  bool as_it_is_;
  bool movable_;
};

}  // namespace excelexp::formula
