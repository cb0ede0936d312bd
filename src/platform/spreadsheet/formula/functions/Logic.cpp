#include <iterator>

#include "platform/spreadsheet/formula/Call.h"

namespace excelexp::formula {
namespace {

Value If(Call& call) {
  Value condition = call.EvaluateScalar(0);
  if (call.Cells().IsWaiting()) return {};
  if (condition.IsError()) return condition;
  if (LogicalOf(condition)) return call.Evaluate(1);
  return call.Count() > 2 ? call.Evaluate(2) : Value::Boolean(false);
}

Value Choose(Call& call) {
  const Value index = call.EvaluateScalar(0);
  if (call.Cells().IsWaiting()) return {};
  const double number = NumberOf(index);
  if (!(number >= 1.0 && number < static_cast<double>(call.Count()))) return Value::Error(ErrorCode::kValue);
  return call.Evaluate(static_cast<std::size_t>(number));
}

Value Otherwise(Call& call, bool (*replaces)(const Value& value)) {
  const Value value = call.EvaluateScalar(0);
  if (call.Cells().IsWaiting()) return {};
  return replaces(value) ? call.EvaluateScalar(1) : value;
}

Value IfError(Call& call) {
  return Otherwise(call, [](const Value& value) { return value.IsError(); });
}

Value IfNotAvailable(Call& call) {
  return Otherwise(
      call, [](const Value& value) { return value.IsError() && value.error == ErrorCode::kNotAvailable; });
}

/// Texts and empty cells of references do not count; without anything that counts there is no answer.
template <typename Use>
void ForEachTruth(Call& call, Use use) {
  bool any = false;
  const auto use_item = [&](const Value& item) {
    if (item.IsError()) throw FormulaError{item.error};
    if (item.type != ValueType::kNumber && item.type != ValueType::kBoolean) return;
    any = true;
    use(item.number != 0.0);
  };
  for (std::size_t i = 0; i < call.Count(); ++i) {
    const Value& value = call[i];
    if (value.type == ValueType::kReference) {
      for (const Area& area : value.Areas()) {
        Evaluator::ForEachCell(area,
                               [&](const Cell& cell, int, int) { use_item(call.Cells().ReadCell(cell)); });
      }
    } else if (value.type == ValueType::kArray) {
      for (const Value& item : value.Items().items) use_item(item);
    } else {
      any = true;
      use(LogicalOf(value));
    }
  }
  if (!any) throw FormulaError{ErrorCode::kValue};
}

Value And(Call& call) {
  bool all = true;
  ForEachTruth(call, [&](bool truth) { all = all && truth; });
  return Value::Boolean(all);
}

Value Or(Call& call) {
  bool any = false;
  ForEachTruth(call, [&](bool truth) { any = any || truth; });
  return Value::Boolean(any);
}

constexpr Implementation kFunctions[] = {
    {"AND", Arguments::kOperands, And},
    {"CHOOSE", Arguments::kLazy, Choose},
    {"FALSE", Arguments::kScalars, [](Call&) { return Value::Boolean(false); }},
    {"IF", Arguments::kLazy, If},
    {"IFERROR", Arguments::kLazy, IfError},
    {"IFNA", Arguments::kLazy, IfNotAvailable},
    {"NOT", Arguments::kScalars, [](Call& call) { return Value::Boolean(!LogicalOf(call[0])); }},
    {"OR", Arguments::kOperands, Or},
    {"TRUE", Arguments::kScalars, [](Call&) { return Value::Boolean(true); }},
};

}  // namespace

std::span<const Implementation> LogicFunctions() {
  return kFunctions;
}

}  // namespace excelexp::formula
