#include "platform/spreadsheet/formula/Call.h"

#include <algorithm>
#include <cmath>

#include "platform/spreadsheet/formula/FunctionTable.h"

namespace excelexp::formula {
namespace {

/// By FunctionNumber.
using Index = std::vector<const Implementation*>;

Index MakeIndex() {
  Index index(FunctionCount());
  for (const auto& family : {LogicFunctions(), MathFunctions(), StatisticFunctions(), ConditionalFunctions(),
                             TextFunctions(), DateFunctions(), LookupFunctions(), InformationFunctions()}) {
    for (const Implementation& row : family) index[FunctionNumber(*FindFunction(row.name))] = &row;
  }
  return index;
}

bool IsBlock(const Value& value) {
  if (value.type == ValueType::kArray) return true;
  return value.type == ValueType::kReference && !(value.Areas().size() == 1 && value.Areas()[0].IsCell());
}

Value CallOnce(const Implementation& function, Call& call) {
  if (function.arguments == Arguments::kScalars) {
    for (const Value& value : call.Values()) {
      if (value.IsError()) return value;
    }
  }
  try {
    return function.call(call);
  } catch (const FormulaError& error) {
    return Value::Error(error.code);
  }
}

/// One call per item of the largest argument.
Value CallItemByItem(const Implementation& function, Call& call, Evaluator& evaluator) {
  std::vector<Array> arguments;
  Array results;
  for (const Value& value : call.Values()) {
    arguments.push_back(evaluator.ToArray(value));
    results.rows = std::max(results.rows, arguments.back().rows);
    results.columns = std::max(results.columns, arguments.back().columns);
  }
  for (int row = 0; row < results.rows; ++row) {
    for (int column = 0; column < results.columns; ++column) {
      for (std::size_t i = 0; i < arguments.size(); ++i) call.Values()[i] = arguments[i].At(row, column);
      results.items.push_back(CallOnce(function, call));
    }
  }
  return Value::Table(std::move(results));
}

}  // namespace

int Call::Whole(std::size_t i) const {
  constexpr double kMost = 1e9;
  const double number = Number(i);
  if (!(std::fabs(number) <= kMost)) throw FormulaError{ErrorCode::kValue};
  return static_cast<int>(number);
}

const Area& Call::Cells(std::size_t i) const {
  const Value& value = (*this)[i];
  if (value.IsError()) throw FormulaError{value.error};
  if (value.type != ValueType::kReference || value.Areas().size() != 1) throw FormulaError{ErrorCode::kValue};
  return value.Areas()[0];
}

Value Call::EvaluateScalar(std::size_t i) const {
  Value value = Evaluate(i);
  if (in_array_ && IsBlock(value)) throw UnknownResult{};
  evaluator_.MakeScalar(value);
  return value;
}

const Implementation* FindImplementation(const FunctionInfo& function) {
  static const Index index = MakeIndex();
  return index[FunctionNumber(function)];
}

Value EvaluateCall(Evaluator& evaluator, const Node& node, bool in_array) {
  const FunctionInfo* info = node.function;
  if (info == nullptr) return Value::Error(ErrorCode::kName);
  const Implementation* function = FindImplementation(*info);
  if (function == nullptr) throw UnknownResult{};
  Call call(evaluator, node, in_array);
  if (function->arguments == Arguments::kLazy) return CallOnce(*function, call);

  const bool one_value = function->arguments != Arguments::kOperands;
  bool blocks = false;
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    const bool as_array = in_array || info->Argument(i) == OperandClass::kArray;
    Value& value = evaluator.Arguments().emplace_back(evaluator.Evaluate(*node.children[i], as_array));
    blocks = blocks || (one_value && in_array && IsBlock(value));
    if (one_value && !in_array) evaluator.MakeScalar(value);
  }
  // Which cells a reference means is not known before its arguments are.
  if (evaluator.IsWaiting() && info->result == OperandClass::kReference) return {};
  if (blocks) return CallItemByItem(*function, call, evaluator);
  if (one_value && in_array) {
    for (Value& value : call.Values()) evaluator.MakeScalar(value);
  }
  return CallOnce(*function, call);
}

}  // namespace excelexp::formula
