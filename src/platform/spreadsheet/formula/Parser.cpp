#include <charconv>
#include <optional>
#include <utility>

#include "platform/spreadsheet/formula/Expression.h"
#include "platform/spreadsheet/formula/FunctionTable.h"
#include "platform/spreadsheet/formula/Lexis.h"
#include "platform/spreadsheet/formula/ReferenceReader.h"

namespace excelexp::formula {
namespace {

using NodePointer = std::unique_ptr<Node>;
using Nodes = std::vector<NodePointer>;

constexpr int kMaxNesting = 256;
constexpr std::size_t kMaxTextLength = 255;  ///< UTF-16 units of one text; what both formats store

struct BinaryOperator {
  std::string_view text;
  Operator op;
  int level;  ///< higher binds tighter; all associate to the left
};

// The two-character operators stand first, so that the first match is the right one.
constexpr BinaryOperator kBinaryOperators[] = {
    {"<>", Operator::kNotEqual, 1},   {"<=", Operator::kLessEqual, 1}, {">=", Operator::kGreaterEqual, 1},
    {"=", Operator::kEqual, 1},       {"<", Operator::kLess, 1},       {">", Operator::kGreater, 1},
    {"&", Operator::kConcatenate, 2}, {"+", Operator::kAdd, 3},        {"-", Operator::kSubtract, 3},
    {"*", Operator::kMultiply, 4},    {"/", Operator::kDivide, 4},     {"^", Operator::kPower, 5},
};

bool IsReferenceOperator(Operator op) {
  return op == Operator::kRange || op == Operator::kUnion || op == Operator::kIntersection;
}

/// Whether a node can stand for cells: unions and ranges need two of them.
bool CanBeReference(const Node& node) {
  switch (node.type) {
    case NodeType::kReference:
    case NodeType::kName:
    case NodeType::kCall:
      return true;
    case NodeType::kError:
      return node.error == ErrorCode::kRef;
    case NodeType::kParentheses:
      return CanBeReference(*node.children[0]);
    case NodeType::kBinary:
      return IsReferenceOperator(node.op);
    default:
      return false;
  }
}

Nodes Pair(NodePointer left, NodePointer right) {
  Nodes pair;
  pair.push_back(std::move(left));
  if (right != nullptr) pair.push_back(std::move(right));
  return pair;
}

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  NodePointer Run() {
    SkipBlanks();
    Take('=');
    SkipBlanks();
    if (AtEnd()) Fail("the formula is empty");
    NodePointer root = ParseBinary(1);
    if (!AtEnd()) FailUnexpected();
    return root;
  }

 private:
  [[noreturn]] void Fail(const std::string& message, std::size_t at) const {
    int position = 1;
    for (const char c : text_.substr(0, at)) position += (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    throw ParseError(message, position);
  }
  [[noreturn]] void Fail(const std::string& message) const { Fail(message, at_); }

  [[noreturn]] void FailUnexpected() const {
    if (AtEnd()) Fail("the formula ends where an operand is expected");
    std::size_t end = at_ + 1;
    while (end < text_.size() && (static_cast<unsigned char>(text_[end]) & 0xC0U) == 0x80U) ++end;
    Fail("unexpected '" + std::string(text_.substr(at_, end - at_)) + "'");
  }

  bool AtEnd() const { return at_ >= text_.size(); }
  char Peek() const { return AtEnd() ? '\0' : text_[at_]; }
  std::string_view Rest() const { return text_.substr(at_); }
  bool SkipBlanks() {
    const std::size_t start = at_;
    while (IsBlank(Peek())) ++at_;
    return at_ > start;
  }
  bool Take(char c) {
    if (Peek() != c || AtEnd()) return false;
    ++at_;
    return true;
  }

  NodePointer Make(NodeType type, Nodes children, Operator op, std::size_t at) const {
    try {
      NodePointer node = MakeNode(type, std::move(children));
      node->op = op;
      return node;
    } catch (const std::length_error&) {
      Fail("the formula chains more operators than " + std::to_string(kMaxHeight), at);
    }
  }

  NodePointer ParseBinary(int lowest_level) {
    NodePointer left = ParsePercent();
    while (const BinaryOperator* found = PeekOperator()) {
      if (found->level < lowest_level) break;
      const std::size_t at = at_;
      at_ += found->text.size();
      SkipBlanks();
      NodePointer right = ParseBinary(found->level + 1);
      left = Make(NodeType::kBinary, Pair(std::move(left), std::move(right)), found->op, at);
    }
    return left;
  }

  const BinaryOperator* PeekOperator() const {
    const char c = Peek();
    if (IsAsciiLetter(c) || IsDigit(c) || c == ')' || c == ',') return nullptr;
    for (const BinaryOperator& row : kBinaryOperators) {
      if (Rest().starts_with(row.text)) return &row;
    }
    return nullptr;
  }

  NodePointer ParsePercent() {
    NodePointer operand = ParseSigned();
    for (SkipBlanks(); Peek() == '%'; SkipBlanks()) {
      const std::size_t at = at_++;
      operand = Make(NodeType::kUnary, Pair(std::move(operand), nullptr), Operator::kPercent, at);
    }
    return operand;
  }

  /// Signs bind tighter than percent and power: -2^2 is 4.
  NodePointer ParseSigned() {
    const std::size_t start = at_;
    while (Peek() == '+' || Peek() == '-') {
      ++at_;
      SkipBlanks();
    }
    const std::size_t end = at_;
    NodePointer operand = ParseReferenceOperators();
    for (std::size_t at = end; at-- > start;) {
      if (IsBlank(text_[at])) continue;
      const Operator op = text_[at] == '-' ? Operator::kMinus : Operator::kPlus;
      operand = Make(NodeType::kUnary, Pair(std::move(operand), nullptr), op, at);
    }
    return operand;
  }

  /// Blanks between two references are the intersection operator; the colon binds tighter.
  NodePointer ParseReferenceOperators() {
    NodePointer left = ParseRange();
    for (;;) {
      const std::size_t at = at_;
      if (!SkipBlanks() || !CanBeReference(*left) || !StartsReference()) return left;
      NodePointer right = ParseRange();
      left = Combine(std::move(left), std::move(right), Operator::kIntersection, at);
    }
  }

  NodePointer ParseRange() {
    NodePointer left = ParseOperand();
    for (;;) {
      const std::size_t before = at_;
      SkipBlanks();
      const std::size_t at = at_;
      if (!Take(':')) {
        at_ = before;
        return left;
      }
      SkipBlanks();
      NodePointer right = ParseOperand();
      left = Combine(std::move(left), std::move(right), Operator::kRange, at);
    }
  }

  NodePointer Combine(NodePointer left, NodePointer right, Operator op, std::size_t at) const {
    if (!CanBeReference(*left) || !CanBeReference(*right)) {
      Fail(op == Operator::kRange
               ? "both sides of ':' must be cells"
               : "both sides of '" + std::string(op == Operator::kUnion ? "," : " ") + "' must be cells",
           at);
    }
    return Make(NodeType::kBinary, Pair(std::move(left), std::move(right)), op, at);
  }

  bool StartsReference() const {
    const char c = Peek();
    return IsAsciiLetter(c) || c == '_' || c == '$' || c == '\'' || c == '(' || IsBeyondAscii(c);
  }

  NodePointer ParseOperand() {
    switch (Peek()) {
      case '(':
        return ParseParentheses();
      case '"':
        return ParseText();
      case '#':
        return ParseErrorValue();
      case '{':
        Fail("array constants are not supported");
      case '[':
        Fail("references to other workbooks and to tables are not supported");
      default:
        break;
    }
    if (NodePointer reference = ParseReference()) return reference;
    if (IsDigit(Peek()) || Peek() == '.') return ParseNumber();
    if (Peek() == '\'') Fail("a sheet name in quotes and '!' are expected");
    if (IsAsciiLetter(Peek()) || Peek() == '_' || Peek() == '\\' || IsBeyondAscii(Peek())) return ParseWord();
    FailUnexpected();
  }

  NodePointer ParseReference() {
    const std::optional<ReadReference> sheets = ReadSheetPrefix(Rest());
    if (sheets) at_ += sheets->length;
    std::optional<ReadReference> cells = ReadCells(Rest());
    if (!cells) {
      if (!sheets) return nullptr;
      if (Peek() == '#') return ParseErrorValue();
      Fail("a cell is expected after the sheet name");
    }
    at_ += cells->length;
    auto node = std::make_unique<Node>();
    node->type = NodeType::kReference;
    node->reference = std::move(cells->reference);
    if (sheets) {
      node->reference.sheet = sheets->reference.sheet;
      node->reference.last_sheet = sheets->reference.last_sheet;
    }
    return node;
  }

  NodePointer ParseNumber() {
    auto node = std::make_unique<Node>();
    node->type = NodeType::kNumber;
    const auto [end, error] = std::from_chars(text_.data() + at_, text_.data() + text_.size(), node->number);
    if (error == std::errc::result_out_of_range) Fail("the number is too large or too small");
    if (error != std::errc{}) FailUnexpected();
    const auto next = static_cast<std::size_t>(end - text_.data());
    if (next < text_.size() && (IsWordCharacter(text_[next]) || text_[next] == '(')) {
      Fail("a number is followed by '" + std::string(1, text_[next]) + "'", next);
    }
    at_ = next;
    return node;
  }

  NodePointer ParseText() {
    const std::size_t start = at_++;
    auto node = std::make_unique<Node>();
    node->type = NodeType::kText;
    for (;;) {
      const std::size_t quote = text_.find('"', at_);
      if (quote == std::string_view::npos) Fail("the text has no closing quote", start);
      node->text += text_.substr(at_, quote - at_);
      at_ = quote + 1;
      if (!Take('"')) break;
      node->text += '"';
    }
    if (node->text.size() > kMaxTextLength && Utf16Length(node->text) > kMaxTextLength) {
      Fail("a text in a formula has at most 255 characters", start);
    }
    return node;
  }

  NodePointer ParseErrorValue() {
    const std::string capitals = Capitals(Rest().substr(0, 8));
    for (int code = 0; code <= static_cast<int>(ErrorCode::kNotAvailable); ++code) {
      const std::string_view text = ErrorText(static_cast<ErrorCode>(code));
      if (!capitals.starts_with(text)) continue;
      at_ += text.size();
      auto node = std::make_unique<Node>();
      node->type = NodeType::kError;
      node->error = static_cast<ErrorCode>(code);
      return node;
    }
    Fail("'#' begins no error value");
  }

  NodePointer ParseWord() {
    const std::size_t start = at_;
    while (IsWordCharacter(Peek())) ++at_;
    std::string word = Capitals(text_.substr(start, at_ - start));
    const std::size_t end = at_;
    SkipBlanks();
    if (Peek() == '(') return ParseCall(std::move(word), start);
    at_ = end;
    if (word == "TRUE" || word == "FALSE") {
      auto node = std::make_unique<Node>();
      node->type = NodeType::kBoolean;
      node->number = word == "TRUE" ? 1.0 : 0.0;
      return node;
    }
    return MakeName(word);
  }

  NodePointer ParseCall(std::string name, std::size_t start) {
    if (name.starts_with("_XLFN.")) name.erase(0, 6);
    const FunctionInfo* function = FindFunction(name);
    const int most = function == nullptr || function->TakesAnyNumber() ? -1 : function->max_arguments;
    Nodes arguments = ParseArguments(name, most);
    if (function != nullptr && static_cast<int>(arguments.size()) < function->min_arguments) {
      Fail("too few arguments for " + name, start);
    }
    NodePointer call = Make(NodeType::kCall, std::move(arguments), Operator::kAdd, start);
    call->text = std::move(name);
    call->function = function;
    return call;
  }

  /// `most`: how many there may be; -1 for any number.
  Nodes ParseArguments(std::string_view function, int most) {
    const std::size_t open = at_++;
    Enter(open);
    Nodes arguments;
    SkipBlanks();
    for (bool more = Peek() != ')'; more;) {
      if (static_cast<int>(arguments.size()) == most) Fail("too many arguments for " + std::string(function));
      arguments.push_back(ParseArgument());
      more = Take(',');
      SkipBlanks();
    }
    Close(open);
    return arguments;
  }

  NodePointer ParseArgument() {
    SkipBlanks();
    if (Peek() == ',' || Peek() == ')') return std::make_unique<Node>();
    NodePointer argument = ParseBinary(1);
    SkipBlanks();
    return argument;
  }

  NodePointer ParseParentheses() {
    const std::size_t open = at_++;
    Enter(open);
    SkipBlanks();
    NodePointer inside = ParseBinary(1);
    for (SkipBlanks(); Peek() == ','; SkipBlanks()) {
      const std::size_t at = at_++;
      SkipBlanks();
      NodePointer right = ParseBinary(1);
      inside = Combine(std::move(inside), std::move(right), Operator::kUnion, at);
    }
    Close(open);
    return Make(NodeType::kParentheses, Pair(std::move(inside), nullptr), Operator::kAdd, open);
  }

  void Enter(std::size_t open) {
    if (++nesting_ > kMaxNesting) {
      Fail("the formula nests deeper than " + std::to_string(kMaxNesting) + " levels", open);
    }
  }

  void Close(std::size_t open) {
    if (AtEnd()) Fail("'(' is never closed", open);
    if (!Take(')')) FailUnexpected();
    --nesting_;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  int nesting_ = 0;
};

}  // namespace

std::shared_ptr<const Expression> Parse(std::string_view text) {
  return std::make_shared<Expression>(Parser(text).Run());
}

}  // namespace excelexp::formula
