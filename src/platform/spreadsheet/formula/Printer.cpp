#include <charconv>

#include "platform/spreadsheet/formula/Expression.h"
#include "platform/spreadsheet/formula/FunctionTable.h"
#include "platform/spreadsheet/formula/Lexis.h"

namespace excelexp::formula {
namespace {

std::string_view OperatorText(Operator op) {
  switch (op) {
    case Operator::kAdd:
    case Operator::kPlus:
      return "+";
    case Operator::kSubtract:
    case Operator::kMinus:
      return "-";
    case Operator::kMultiply:
      return "*";
    case Operator::kDivide:
      return "/";
    case Operator::kPower:
      return "^";
    case Operator::kConcatenate:
      return "&";
    case Operator::kEqual:
      return "=";
    case Operator::kNotEqual:
      return "<>";
    case Operator::kLess:
      return "<";
    case Operator::kLessEqual:
      return "<=";
    case Operator::kGreater:
      return ">";
    case Operator::kGreaterEqual:
      return ">=";
    case Operator::kRange:
      return ":";
    case Operator::kUnion:
      return ",";
    case Operator::kIntersection:
      return " ";
    case Operator::kPercent:
      return "%";
  }
  return "";
}

/// Words and what could be read as a cell or a constant decide whether a sheet name needs quotes; other
/// scripts get them as well, which every reader understands.
bool NeedsQuotes(std::string_view sheet) {
  bool digits = false;
  for (const char c : sheet) {
    if (!IsAsciiLetter(c) && !IsDigit(c) && c != '_') return true;
    digits = digits || IsDigit(c);
  }
  // R1C1, A1, 2024: letters with digits are quoted unless a longer word stands before them.
  if (IsDigit(sheet.front())) return true;
  if (digits) return sheet.find_first_of("0123456789") <= 3;
  const std::string capitals = Capitals(sheet);
  return capitals == "R" || capitals == "C" || capitals == "RC" || capitals == "TRUE" || capitals == "FALSE";
}

void PutDoubled(std::string& out, std::string_view text, char quote) {
  for (const char c : text) {
    out += c;
    if (c == quote) out += quote;
  }
}

void PutSheet(std::string& out, const Reference& reference) {
  if (reference.sheet.empty()) return;
  const bool several = !reference.last_sheet.empty();
  const bool quoted = NeedsQuotes(reference.sheet) || (several && NeedsQuotes(reference.last_sheet));
  if (quoted) out += '\'';
  PutDoubled(out, reference.sheet, '\'');
  if (several) {
    out += ':';
    PutDoubled(out, reference.last_sheet, '\'');
  }
  if (quoted) out += '\'';
  out += '!';
}

void PutColumn(std::string& out, int column, bool absolute) {
  if (absolute) out += '$';
  out += ColumnLetters(column);
}

void PutRow(std::string& out, int row, bool absolute) {
  if (absolute) out += '$';
  char digits[12];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, row).ptr);
}

void PutReference(std::string& out, const Reference& reference) {
  const CellRange& range = reference.range;
  const auto& rows = reference.row_absolute;
  const auto& columns = reference.column_absolute;
  const bool whole_columns =
      range.first_row == 1 && range.last_row == Workbook::kMaxRows && rows[0] && rows[1];
  const bool whole_rows =
      range.first_col == 1 && range.last_col == Workbook::kMaxColumns && columns[0] && columns[1];
  PutSheet(out, reference);
  if (!whole_rows) PutColumn(out, range.first_col, columns[0]);
  if (!whole_columns || whole_rows) PutRow(out, range.first_row, rows[0]);
  if (reference.single) return;
  out += ':';
  if (!whole_rows) PutColumn(out, range.last_col, columns[1]);
  if (!whole_columns || whole_rows) PutRow(out, range.last_row, rows[1]);
}

void PutNumber(std::string& out, double number) {
  char digits[40];
  const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  for (const char* c = digits; c != end; ++c) out += *c == 'e' ? 'E' : *c;
}

class Printer {
 public:
  explicit Printer(NameStyle style) : style_(style) {}

  void Put(const Node& node) {
    switch (node.type) {
      case NodeType::kNumber:
        return PutNumber(out_, node.number);
      case NodeType::kText:
        return PutText(node.text);
      case NodeType::kBoolean:
        out_ += node.number != 0.0 ? "TRUE" : "FALSE";
        return;
      case NodeType::kError:
        out_ += ErrorText(node.error);
        return;
      case NodeType::kMissing:
        return;
      case NodeType::kReference:
        return PutReference(out_, node.reference);
      case NodeType::kName:
        out_ += node.text;
        return;
      case NodeType::kUnary:
        return PutUnary(node);
      case NodeType::kBinary:
        return PutBinary(node);
      case NodeType::kCall:
        return PutCall(node);
      case NodeType::kParentheses:
        return PutList("(", node);
    }
  }

  std::string Take() { return std::move(out_); }

 private:
  void PutText(std::string_view text) {
    out_ += '"';
    PutDoubled(out_, text, '"');
    out_ += '"';
  }

  void PutUnary(const Node& node) {
    if (node.op != Operator::kPercent) out_ += OperatorText(node.op);
    Put(*node.children[0]);
    if (node.op == Operator::kPercent) out_ += OperatorText(node.op);
  }

  void PutBinary(const Node& node) {
    Put(*node.children[0]);
    out_ += OperatorText(node.op);
    Put(*node.children[1]);
  }

  void PutCall(const Node& node) {
    const FunctionInfo* function = style_ == NameStyle::kStored ? node.function : nullptr;
    if (function != nullptr && function->storage == FunctionStorage::kSince2010) out_ += "_xlfn.";
    out_ += node.text;
    PutList("(", node);
  }

  void PutList(std::string_view before, const Node& node) {
    for (const std::unique_ptr<Node>& child : node.children) {
      out_ += before;
      Put(*child);
      before = ",";
    }
    out_ += node.children.empty() ? "()" : ")";
  }

  NameStyle style_;
  std::string out_;
};

}  // namespace

std::string Print(const Node& node, NameStyle style) {
  Printer printer(style);
  printer.Put(node);
  return printer.Take();
}

std::string Print(const Expression& expression, NameStyle style) {
  return Print(expression.Root(), style);
}

}  // namespace excelexp::formula
