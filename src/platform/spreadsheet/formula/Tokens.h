#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/spreadsheet/formula/Expression.h"

namespace excelexp::formula {

/// What the tokens of a formula refer to by number; the .xls writer keeps the records behind the numbers.
class TokenContext {
 public:
  enum class NameKind : std::uint8_t {
    /// A defined name, such as FitFormula makes. One that nobody defined is stored as a hidden name whose
    /// formula is the error #NAME?.
    kDefined,
    /// A function that the format has no number for ("_xlfn.IFERROR"), or that nobody knows: a hidden name
    /// marked
    /// as function and macro (NAME flags 0x000B) whose formula is the error #NAME? (1C 1D).
    kFunction,
  };
  struct ExternalName {
    std::uint16_t sheets;  ///< 0-based EXTERNSHEET entry of the add-in link (SUPBOOK with the content 01 3A)
    std::uint16_t name;    ///< 1-based EXTERNNAME of that link
  };

  virtual ~TokenContext() = default;
  /// The 0-based EXTERNSHEET entry for one sheet of this workbook, or for several (`last_sheet` not ""). May
  /// throw SpreadsheetError for a sheet that does not exist.
  virtual std::uint16_t Sheets(const std::string& sheet, const std::string& last_sheet) = 0;
  /// The 1-based number of the NAME record.
  virtual std::uint16_t Name(const std::string& name, NameKind kind) = 0;
  /// The external name of a function of the analysis add-in, such as EDATE.
  virtual ExternalName AddInFunction(const std::string& name) = 0;
};

/// Where a formula stands: it decides the operand class of the whole.
enum class FormulaPlace : std::uint8_t {
  kCell,
  kName,  ///< a defined name; every reference must be absolute and name its sheet
};

/// The largest formula that the application takes from .xls, in the measure of TokenSize
/// ([MS-XLS] 2.5.198.104, ACTUAL_EXPRESSION_SIZE).
inline constexpr std::size_t kMaxTokenSize = 1800;

/// Where tokens tell which cells a reference means.
struct CellsPlace {
  std::size_t place;
  const Reference* reference;
};

/// The tokens of an expression that formulas share, each with its references moved: encoded once, and for
/// each formula copied with other cells.
class TokenTemplate {
 public:
  /// Throws SpreadsheetError as EncodeTokens does, but for cells. The expression outlives the object.
  TokenTemplate(const Expression& expression, TokenContext& context, FormulaPlace place);

  /// Throws SpreadsheetError for cells that .xls does not hold, or that lie before the first.
  std::vector<std::uint8_t> Tokens(const Moves& moves) const;
  /// Throws what Tokens would throw.
  void Check(const Moves& moves) const;

 private:
  std::vector<std::uint8_t> bytes_;
  std::vector<CellsPlace> cells_;
};

/// The parsed expression (rgce) of a BIFF8 formula, without its length field. Throws SpreadsheetError for
/// what .xls does not hold: cells beyond 65,536 rows or 256 columns, calls with more than 30 arguments, more
/// than kMaxTokenSize; FitFormula makes such formulas fit where that is possible.
std::vector<std::uint8_t> EncodeTokens(const Expression& expression, TokenContext& context,
                                       FormulaPlace place = FormulaPlace::kCell);

/// The size that counts against kMaxTokenSize. It is larger than the bytes in the file: references weigh what
/// they weigh in the application's memory.
std::size_t TokenSize(const Node& node);

}  // namespace excelexp::formula
