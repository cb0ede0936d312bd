#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp::formula {

/// A formula that does not parse. `position` counts characters of the formula text from 1.
class ParseError : public std::runtime_error {
 public:
  ParseError(const std::string& message, int position) : std::runtime_error(message), position_(position) {}
  int Position() const { return position_; }

 private:
  int position_;
};

enum class NodeType : std::uint8_t {
  kNumber,
  kText,
  kBoolean,
  kError,
  kMissing,  ///< an argument left out, as the second of IF(A1,,2)
  kReference,
  kName,  ///< a name that is neither a reference nor a function: shows #NAME?
  kUnary,
  kBinary,
  kCall,
  kParentheses,
};

enum class Operator : std::uint8_t {
  kAdd,
  kSubtract,
  kMultiply,
  kDivide,
  kPower,
  kConcatenate,
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kRange,         ///< A1:B2 with computed ends
  kUnion,         ///< (A1,B2)
  kIntersection,  ///< A1 B2
  kPlus,
  kMinus,
  kPercent,  ///< unary
};

/// Trees are no higher, so whoever walks one may recurse. The application allows 64 calls inside each other;
/// what counts here are long chains such as A1+A2+A3 ...
inline constexpr int kMaxHeight = 1024;

/// A cell or a block. Rows and columns are 1-based. Whole columns have the rows 1
/// to Workbook::kMaxRows, both absolute; whole rows likewise.
struct ReferredCells {
  CellRange range;
  bool row_absolute[2] = {false, false};  ///< first, last
  bool column_absolute[2] = {false, false};
  bool single = true;  ///< A1 rather than A1:B2
};

struct Reference : ReferredCells {
  std::string sheet;       ///< "" is the sheet the formula stands on
  std::string last_sheet;  ///< for Sheet1:Sheet3!A1; else ""
};

struct FunctionInfo;

struct Node {
  NodeType type = NodeType::kMissing;
  std::uint16_t height = 1;      ///< levels of the tree from here down, at most kMaxHeight
  Operator op = Operator::kAdd;  ///< kUnary, kBinary
  double number = 0.0;           ///< kNumber; 0 or 1 for kBoolean
  ErrorCode error = ErrorCode::kNull;
  std::string text;                        ///< kText; kName and kCall: the name in capitals
  const FunctionInfo* function = nullptr;  ///< kCall: nullptr for one that the application does not know
  Reference reference;
  std::vector<std::unique_ptr<Node>> children;
};

/// A parsed formula. Immutable.
class Expression {
 public:
  explicit Expression(std::unique_ptr<Node> root) : root_(std::move(root)) {}
  const Node& Root() const { return *root_; }

 private:
  std::unique_ptr<Node> root_;
};

/// A copy of a tree.
std::unique_ptr<Node> Clone(const Node& node);
/// A node over `children`. Throws std::length_error beyond kMaxHeight.
std::unique_ptr<Node> MakeNode(NodeType type, std::vector<std::unique_ptr<Node>> children);
/// A call of the function with that name, in capitals.
std::unique_ptr<Node> MakeCall(std::string_view function, std::vector<std::unique_ptr<Node>> arguments);
/// A defined name, in capitals.
std::unique_ptr<Node> MakeName(std::string_view name);

/// Parses a formula in A1 notation with commas between arguments; a leading "=" is optional. Blanks may stand
/// anywhere, function names have any case. Throws ParseError with the position and one sentence for a text
/// that is no formula, calls a known function with too few or too many arguments (one that takes any number
/// is left to FitFormula) or nests deeper than 256 levels.
std::shared_ptr<const Expression> Parse(std::string_view text);

/// How functions that later versions of the application added are written.
enum class NameStyle : std::uint8_t {
  kShown,   ///< as people write them
  kStored,  ///< with the prefix "_xlfn." that .xlsx files want for some of them
};

/// Writes the expression as text without the leading "=".
std::string Print(const Expression& expression, NameStyle style = NameStyle::kShown);
std::string Print(const Node& node, NameStyle style = NameStyle::kShown);

/// A copy whose relative references are moved by that many rows and columns; a reference that would leave the
/// sheet becomes #REF!.
std::shared_ptr<const Expression> Moved(const Expression& expression, int rows, int columns);

/// Moves what is relative; false when it would leave the sheet.
bool Move(ReferredCells& cells, const Moves& moves);

/// The formula's own expression: the shared one, or a moved copy of it.
std::shared_ptr<const Expression> ExpressionOf(const Formula& formula);

}  // namespace excelexp::formula
