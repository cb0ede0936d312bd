#include "platform/spreadsheet/formula/Tokens.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/spreadsheet/SpreadsheetError.h"
#include "platform/spreadsheet/formula/FunctionTable.h"
#include "platform/spreadsheet/formula/Lexis.h"
#include "platform/spreadsheet/formula/TokenWriter.h"

namespace excelexp::formula {
namespace {

constexpr int kLastRow = 65536;
constexpr int kLastColumn = 256;
constexpr std::size_t kColumnIsRelative = 0x4000;
constexpr std::size_t kRowIsRelative = 0x8000;

std::uint8_t OperatorToken(Operator op) {
  switch (op) {
    case Operator::kAdd:
      return 0x03;
    case Operator::kSubtract:
      return 0x04;
    case Operator::kMultiply:
      return 0x05;
    case Operator::kDivide:
      return 0x06;
    case Operator::kPower:
      return 0x07;
    case Operator::kConcatenate:
      return 0x08;
    case Operator::kLess:
      return 0x09;
    case Operator::kLessEqual:
      return 0x0A;
    case Operator::kEqual:
      return 0x0B;
    case Operator::kGreaterEqual:
      return 0x0C;
    case Operator::kGreater:
      return 0x0D;
    case Operator::kNotEqual:
      return 0x0E;
    case Operator::kIntersection:
      return 0x0F;
    case Operator::kUnion:
      return 0x10;
    case Operator::kRange:
      return 0x11;
    case Operator::kPlus:
      return 0x12;
    case Operator::kMinus:
      return 0x13;
    case Operator::kPercent:
      return 0x14;
  }
  return 0;
}

bool IsReferenceOperator(Operator op) {
  return op == Operator::kIntersection || op == Operator::kUnion || op == Operator::kRange;
}

/// What a token is asked to be: the class that its place wants, and whether it stands inside something that
/// computes arrays (section 3.2 of the document named in TokenWriter.h).
struct Demand {
  OperandClass wanted = OperandClass::kValue;
  bool in_array = false;

  OperandClass ForOperand() const {
    return wanted == OperandClass::kValue && in_array ? OperandClass::kArray : wanted;
  }
  /// Operators compute values, so their operands are never references.
  Demand ForOperatorOperands() const {
    return {wanted == OperandClass::kReference ? OperandClass::kValue : wanted, in_array};
  }
};

struct CallClasses {
  OperandClass call;
  bool arguments_in_array;
};

CallClasses ClassesOfCall(OperandClass given, const Demand& demand) {
  if (demand.in_array) {
    const bool stays = given == OperandClass::kReference && demand.wanted == OperandClass::kReference;
    return {stays ? given : OperandClass::kArray, !stays};
  }
  if (demand.wanted == OperandClass::kValue) return {OperandClass::kValue, false};
  if (demand.wanted == OperandClass::kArray && given == OperandClass::kValue)
    return {OperandClass::kArray, true};
  return {given, false};
}

/// Calls that the format has no number for, and calls of functions nobody knows.
constexpr FunctionInfo kCallByName = {
    "", kCalledByName, 1, kMaxXlsArguments, OperandClass::kValue, "R", false, FunctionStorage::kSince2007};

void Put16At(std::uint8_t* place, std::size_t number) {
  place[0] = static_cast<std::uint8_t>(number & 0xFFU);
  place[1] = static_cast<std::uint8_t>(number >> 8U & 0xFFU);
}

/// The cells of a moved reference as .xls holds them.
ReferredCells StoredCells(const ReferredCells& referred, const Moves& moves) {
  ReferredCells cells = referred;
  if (moves.Any() && !Move(cells, moves))
    throw SpreadsheetError("a reference of the formula leaves the sheet");
  CellRange& range = cells.range;
  // Whole columns and rows reach as far as the format does.
  if (range.first_row == 1 && range.last_row == Workbook::kMaxRows) range.last_row = kLastRow;
  if (range.first_col == 1 && range.last_col == Workbook::kMaxColumns) range.last_col = kLastColumn;
  if (range.last_row > kLastRow || range.last_col > kLastColumn) {
    throw SpreadsheetError("the cell " + ColumnLetters(range.last_col) + std::to_string(range.last_row) +
                           " of the formula lies beyond the " + std::to_string(kLastRow) + " rows and " +
                           std::to_string(kLastColumn) + " columns of .xls");
  }
  return cells;
}

/// Writes them over the four or eight bytes kept for them.
void PutCells(const ReferredCells& cells, std::uint8_t* place) {
  const CellRange& range = cells.range;
  const auto column = [&](int end, int number) {
    return static_cast<std::size_t>(number - 1) | (cells.column_absolute[end] ? 0 : kColumnIsRelative) |
           (cells.row_absolute[end] ? 0 : kRowIsRelative);
  };
  const auto put = [&place](std::size_t number) {
    Put16At(place, number);
    place += 2;
  };
  put(static_cast<std::size_t>(range.first_row - 1));
  if (!cells.single) put(static_cast<std::size_t>(range.last_row - 1));
  put(column(0, range.first_col));
  if (!cells.single) put(column(1, range.last_col));
}

class Encoder {
 public:
  Encoder(TokenContext* context, FormulaPlace place) : context_(context), place_(place) {}

  void EncodeRoot(const Node& root) {
    if (IsVolatile(root)) out_.Put(Attribute::kVolatile);
    Encode(root, {place_ == FormulaPlace::kCell ? OperandClass::kValue : OperandClass::kReference, false});
  }

  TokenWriter& Out() { return out_; }
  std::vector<CellsPlace> TakeCells() { return std::move(cells_); }

 private:
  static bool IsVolatile(const Node& node) {
    if (node.type == NodeType::kCall) {
      if (node.function != nullptr && node.function->is_volatile) return true;
    }
    return std::any_of(node.children.begin(), node.children.end(),
                       [](const auto& child) { return IsVolatile(*child); });
  }

  void Encode(const Node& node, const Demand& demand) {
    switch (node.type) {
      case NodeType::kNumber:
        return EncodeNumber(node.number);
      case NodeType::kText:
        return EncodeText(node.text);
      case NodeType::kBoolean:
        out_.Put(PlainToken::kBoolean);
        return out_.Put8(node.number != 0.0 ? 1 : 0);
      case NodeType::kError:
        return EncodeError(node.error);
      case NodeType::kMissing:
        return out_.Put(PlainToken::kMissing);
      case NodeType::kReference:
        return EncodeReference(node.reference, demand.ForOperand());
      case NodeType::kName:
        return EncodeName(node.text, TokenContext::NameKind::kDefined, demand.ForOperand());
      case NodeType::kUnary:
        Encode(*node.children[0], demand.ForOperatorOperands());
        return out_.Put8(OperatorToken(node.op));
      case NodeType::kBinary:
        return EncodeBinary(node, demand);
      case NodeType::kCall:
        return EncodeCall(node, demand);
      case NodeType::kParentheses:
        Encode(*node.children[0], demand);
        return out_.Put(PlainToken::kParentheses);
    }
  }

  void EncodeNumber(double number) {
    if (number >= 0.0 && number <= 65535.0 && number == static_cast<double>(static_cast<int>(number))) {
      out_.Put(PlainToken::kInteger);
      return out_.Put16(static_cast<std::size_t>(number));
    }
    out_.Put(PlainToken::kNumber);
    out_.PutDouble(number);
  }

  void EncodeText(const std::string& text) {
    const std::u16string units = ToUtf16(text);
    if (units.size() > 255) throw SpreadsheetError("a text in a formula has at most 255 characters");
    const bool wide = std::any_of(units.begin(), units.end(), [](char16_t unit) { return unit > 0xFF; });
    out_.Put(PlainToken::kText);
    out_.Put8(static_cast<std::uint8_t>(units.size()));
    out_.Put8(wide ? 1 : 0);
    for (const char16_t unit : units) wide ? out_.Put16(unit) : out_.Put8(static_cast<std::uint8_t>(unit));
    out_.AddWeight(wide ? 0 : units.size());
  }

  void EncodeError(ErrorCode error) {
    static constexpr std::uint8_t kCodes[] = {0x00, 0x07, 0x0F, 0x17, 0x1D, 0x24, 0x2A};
    out_.Put(PlainToken::kError);
    out_.Put8(kCodes[static_cast<std::size_t>(error)]);
  }

  void EncodeReference(const Reference& reference, OperandClass operand_class) {
    const bool single = reference.single;
    const bool local = reference.sheet.empty();
    if (place_ == FormulaPlace::kName) CheckFixed(reference);
    if (local) {
      out_.Put(single ? Token::kCell : Token::kArea, operand_class);
    } else {
      out_.Put(single ? Token::kCellOfSheets : Token::kAreaOfSheets, operand_class);
      out_.Put16(context_ == nullptr ? 0 : context_->Sheets(reference.sheet, reference.last_sheet));
    }
    cells_.push_back({out_.Place(), &reference});
    for (int word = single ? 2 : 4; word > 0; --word) out_.Put16(0);
    // A cell weighs 7, an area 13; with sheets 9 and 15 ([MS-XLS] 2.5.198.104).
    out_.AddWeight(single ? 2 : 4);
  }

  static void CheckFixed(const Reference& reference) {
    const bool fixed = !reference.sheet.empty() && reference.row_absolute[0] && reference.row_absolute[1] &&
                       reference.column_absolute[0] && reference.column_absolute[1];
    if (!fixed) throw SpreadsheetError("a defined name needs absolute references that name their sheet");
  }

  void EncodeName(const std::string& name, TokenContext::NameKind kind, OperandClass operand_class) {
    out_.Put(Token::kName, operand_class);
    out_.Put16(context_ == nullptr ? 0 : context_->Name(name, kind));
    out_.Put16(0);
  }

  void EncodeBinary(const Node& node, const Demand& demand) {
    const bool of_references = IsReferenceOperator(node.op);
    const bool outermost = of_references && !in_reference_expression_;
    const Demand for_operands =
        of_references ? Demand{OperandClass::kReference, false} : demand.ForOperatorOperands();
    std::size_t start = 0;
    if (outermost) {
      out_.Put(Token::kReferenceExpression, demand.ForOperand());
      out_.Put16(0);
      start = out_.Place();
    }
    const bool was_inside = std::exchange(in_reference_expression_, of_references);
    Encode(*node.children[0], for_operands);
    Encode(*node.children[1], for_operands);
    in_reference_expression_ = was_inside;
    out_.Put8(OperatorToken(node.op));
    if (outermost) out_.Patch16(start - 2, out_.Place() - start);
  }

  void EncodeCall(const Node& node, const Demand& demand) {
    const FunctionInfo* found = node.function;
    const FunctionInfo& function = found == nullptr ? kCallByName : *found;
    const CallClasses classes = ClassesOfCall(function.result, demand);
    const bool was_inside = std::exchange(in_reference_expression_, false);
    const std::size_t names = PutFunctionName(node, found);
    const std::size_t count = node.children.size() + names;
    if (context_ != nullptr && count > static_cast<std::size_t>(kMaxXlsArguments)) {
      throw SpreadsheetError(".xls stores at most " +
                             std::to_string(kMaxXlsArguments - static_cast<int>(names)) + " arguments for " +
                             node.text);
    }
    const bool jumps = !classes.arguments_in_array;
    if (jumps && node.text == "IF") {
      EncodeIf(node, function, classes);
    } else if (jumps && node.text == "CHOOSE") {
      EncodeChoose(node, function, classes);
    } else {
      for (std::size_t i = 0; i < node.children.size(); ++i) EncodeArgument(node, function, classes, i);
    }
    PutFunction(function, count, classes.call);
    in_reference_expression_ = was_inside;
  }

  void EncodeArgument(const Node& node, const FunctionInfo& function, const CallClasses& classes,
                      std::size_t i) {
    Encode(*node.children[i], {function.Argument(i), classes.arguments_in_array});
  }

  /// How many operands the name takes.
  std::size_t PutFunctionName(const Node& node, const FunctionInfo* function) {
    if (function != nullptr && function->index != kCalledByName) return 0;
    if (function != nullptr && function->storage == FunctionStorage::kAddIn) {
      const TokenContext::ExternalName name =
          context_ == nullptr ? TokenContext::ExternalName{} : context_->AddInFunction(node.text);
      out_.Put(Token::kExternalName, OperandClass::kReference);
      out_.Put16(name.sheets);
      out_.Put16(name.name);
      out_.Put16(0);
    } else {
      EncodeName((function == nullptr ? "" : "_xlfn.") + node.text, TokenContext::NameKind::kFunction,
                 OperandClass::kReference);
    }
    return 1;
  }

  void PutFunction(const FunctionInfo& function, std::size_t count, OperandClass operand_class) {
    const bool fixed = function.index != kCalledByName && function.HasFixedCount();
    out_.Put(fixed ? Token::kFunction : Token::kFunctionWithCount, operand_class);
    if (!fixed) out_.Put8(static_cast<std::uint8_t>(count));
    out_.Put16(function.index);
  }

  static constexpr std::size_t kSizeOfFunctionWithCount = 4;

  /// Each branch ends with a jump behind the call; the distance is stored one too small (section 3.10).
  void PatchJumps(const std::vector<std::size_t>& jumps) {
    const std::size_t behind = out_.Place() + kSizeOfFunctionWithCount;
    for (const std::size_t place : jumps) out_.Patch16(place, behind - (place + 2) - 1);
  }

  void EncodeIf(const Node& node, const FunctionInfo& function, const CallClasses& classes) {
    EncodeArgument(node, function, classes, 0);
    const std::size_t otherwise = out_.Put(Attribute::kIf);
    std::vector<std::size_t> jumps;
    for (std::size_t i = 1; i < node.children.size(); ++i) {
      EncodeArgument(node, function, classes, i);
      jumps.push_back(out_.Put(Attribute::kGoto));
      if (i == 1) out_.Patch16(otherwise, out_.Place() - (otherwise + 2));
    }
    PatchJumps(jumps);
  }

  void EncodeChoose(const Node& node, const FunctionInfo& function, const CallClasses& classes) {
    EncodeArgument(node, function, classes, 0);
    const std::size_t choices = node.children.size() - 1;
    const std::size_t table = out_.Put(Attribute::kChoose, choices) + 2;
    for (std::size_t i = 0; i <= choices; ++i) out_.Put16(0);
    std::vector<std::size_t> jumps;
    for (std::size_t i = 1; i <= choices; ++i) {
      out_.Patch16(table + 2 * (i - 1), out_.Place() - table);
      EncodeArgument(node, function, classes, i);
      jumps.push_back(out_.Put(Attribute::kGoto));
    }
    out_.Patch16(table + 2 * choices, out_.Place() - table);
    PatchJumps(jumps);
  }

  TokenContext* context_;  ///< nullptr when only the size matters
  FormulaPlace place_;
  std::vector<CellsPlace> cells_;
  TokenWriter out_;
  bool in_reference_expression_ = false;
};

}  // namespace

TokenTemplate::TokenTemplate(const Expression& expression, TokenContext& context, FormulaPlace place) {
  Encoder encoder(&context, place);
  encoder.EncodeRoot(expression.Root());
  if (encoder.Out().Weight() > kMaxTokenSize) {
    throw SpreadsheetError("the formula is too long for .xls: " + std::to_string(encoder.Out().Weight()) +
                           " bytes of tokens, at most " + std::to_string(kMaxTokenSize));
  }
  cells_ = encoder.TakeCells();
  bytes_ = encoder.Out().Take();
}

std::vector<std::uint8_t> TokenTemplate::Tokens(const Moves& moves) const {
  std::vector<std::uint8_t> tokens = bytes_;
  for (const CellsPlace& each : cells_)
    PutCells(StoredCells(*each.reference, moves), tokens.data() + each.place);
  return tokens;
}

void TokenTemplate::Check(const Moves& moves) const {
  for (const CellsPlace& each : cells_) StoredCells(*each.reference, moves);
}

std::vector<std::uint8_t> EncodeTokens(const Expression& expression, TokenContext& context,
                                       FormulaPlace place) {
  return TokenTemplate(expression, context, place).Tokens({});
}

std::size_t TokenSize(const Node& node) {
  Encoder encoder(nullptr, FormulaPlace::kCell);
  encoder.EncodeRoot(node);
  const std::size_t size = encoder.Out().Weight();
  for (const CellsPlace& each : encoder.TakeCells()) StoredCells(*each.reference, {});
  return size;
}

}  // namespace excelexp::formula
