#include "platform/spreadsheet/formula/Expression.h"

#include <algorithm>

#include "platform/spreadsheet/formula/FunctionTable.h"

namespace excelexp::formula {
namespace {

/// Moves one end of a reference along one axis; false when it leaves the sheet.
bool MoveEnd(int& place, bool absolute, int distance, int last) {
  if (absolute) return true;
  // In 64 bits: any distance is allowed.
  const std::int64_t moved = static_cast<std::int64_t>(place) + distance;
  if (moved < 1 || moved > last) return false;
  place = static_cast<int>(moved);
  return true;
}

/// Ends that passed each other change places, so that first stays first.
void Order(int& first, int& last, bool (&absolute)[2]) {
  if (first <= last) return;
  std::swap(first, last);
  std::swap(absolute[0], absolute[1]);
}

void MoveNode(Node& node, const Moves& moves) {
  if (node.type == NodeType::kReference && !Move(node.reference, moves)) {
    node.type = NodeType::kError;
    node.error = ErrorCode::kRef;
  }
  for (const std::unique_ptr<Node>& child : node.children) MoveNode(*child, moves);
}

}  // namespace

bool Move(ReferredCells& cells, const Moves& moves) {
  CellRange& range = cells.range;
  const bool inside =
      MoveEnd(range.first_row, cells.row_absolute[0], moves.rows, Workbook::kMaxRows) &&
      MoveEnd(range.last_row, cells.row_absolute[1], moves.rows, Workbook::kMaxRows) &&
      MoveEnd(range.first_col, cells.column_absolute[0], moves.columns, Workbook::kMaxColumns) &&
      MoveEnd(range.last_col, cells.column_absolute[1], moves.columns, Workbook::kMaxColumns);
  Order(range.first_row, range.last_row, cells.row_absolute);
  Order(range.first_col, range.last_col, cells.column_absolute);
  return inside;
}

std::unique_ptr<Node> Clone(const Node& node) {
  auto copy = std::make_unique<Node>();
  copy->type = node.type;
  copy->height = node.height;
  copy->op = node.op;
  copy->number = node.number;
  copy->error = node.error;
  copy->text = node.text;
  copy->function = node.function;
  copy->reference = node.reference;
  copy->children.reserve(node.children.size());
  for (const std::unique_ptr<Node>& child : node.children) copy->children.push_back(Clone(*child));
  return copy;
}

std::unique_ptr<Node> MakeNode(NodeType type, std::vector<std::unique_ptr<Node>> children) {
  auto node = std::make_unique<Node>();
  node->type = type;
  int height = 0;
  for (const std::unique_ptr<Node>& child : children) height = std::max<int>(height, child->height);
  if (height >= kMaxHeight) throw std::length_error("the formula is nested too deeply");
  node->height = static_cast<std::uint16_t>(height + 1);
  node->children = std::move(children);
  return node;
}

std::unique_ptr<Node> MakeCall(std::string_view function, std::vector<std::unique_ptr<Node>> arguments) {
  std::unique_ptr<Node> call = MakeNode(NodeType::kCall, std::move(arguments));
  call->text = function;
  call->function = FindFunction(function);
  return call;
}

std::unique_ptr<Node> MakeName(std::string_view name) {
  auto node = std::make_unique<Node>();
  node->type = NodeType::kName;
  node->text = name;
  return node;
}

std::shared_ptr<const Expression> Moved(const Expression& expression, int rows, int columns) {
  std::unique_ptr<Node> root = Clone(expression.Root());
  MoveNode(*root, {rows, columns});
  return std::make_shared<Expression>(std::move(root));
}

std::shared_ptr<const Expression> ExpressionOf(const Formula& formula) {
  const std::shared_ptr<const Expression>& shared = formula.SharedExpression();
  return formula.moves.Any() ? Moved(*shared, formula.moves.rows, formula.moves.columns) : shared;
}

}  // namespace excelexp::formula
