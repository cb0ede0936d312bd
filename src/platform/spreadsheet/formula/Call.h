#pragma once

#include <cmath>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/formula/Evaluator.h"

namespace excelexp::formula {

/// A function call with its arguments, as an implementation sees it. Reading an argument as something it is
/// not throws FormulaError.
class Call {
 public:
  Call(Evaluator& evaluator, const Node& node, bool in_array)
      : evaluator_(evaluator), node_(node), in_array_(in_array), first_(evaluator.Arguments().size()) {}
  ~Call() { evaluator_.Arguments().resize(first_); }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  Evaluator& Cells() const { return evaluator_; }
  std::size_t Count() const { return node_.children.size(); }

  /// The argument computed beforehand; not for Arguments::kLazy.
  const Value& operator[](std::size_t i) const { return evaluator_.Arguments()[first_ + i]; }
  std::span<Value> Values() const { return std::span(evaluator_.Arguments()).subspan(first_); }

  double Number(std::size_t i) const { return NumberOf((*this)[i]); }
  double Number(std::size_t i, double absent) const { return i < Count() ? Number(i) : absent; }
  std::string Text(std::size_t i) const { return TextOf((*this)[i]); }
  bool Logical(std::size_t i, bool absent) const { return i < Count() ? LogicalOf((*this)[i]) : absent; }
  /// A number cut to a whole one; #VALUE! outside +-1E9, which no argument of this kind means.
  int Whole(std::size_t i) const;
  int Whole(std::size_t i, int absent) const { return i < Count() ? Whole(i) : absent; }
  /// One block of cells; #VALUE! for anything else.
  const Area& Cells(std::size_t i) const;

  /// For Arguments::kLazy: computes an argument now.
  Value Evaluate(std::size_t i) const { return evaluator_.Evaluate(*node_.children[i], in_array_); }
  /// The same, as one value; throws UnknownResult where an array would have to be computed item by item.
  Value EvaluateScalar(std::size_t i) const;

 private:
  Evaluator& evaluator_;
  const Node& node_;
  bool in_array_;
  std::size_t first_;  ///< of its arguments
};

/// How the arguments reach an implementation.
enum class Arguments : unsigned char {
  kScalars,   ///< one value each; an error among them is the result; arrays are computed item by item
  kAnything,  ///< one value each, errors too
  kOperands,  ///< references and arrays as they are
  kLazy,      ///< not computed
};

struct Implementation {
  std::string_view name;
  Arguments arguments;
  Value (*call)(Call& call);
};

// The functions, family by family.
std::span<const Implementation> LogicFunctions();
std::span<const Implementation> MathFunctions();
std::span<const Implementation> StatisticFunctions();
std::span<const Implementation> ConditionalFunctions();
std::span<const Implementation> TextFunctions();
std::span<const Implementation> DateFunctions();
std::span<const Implementation> LookupFunctions();
std::span<const Implementation> InformationFunctions();

/// nullptr for a function that only the application computes.
const Implementation* FindImplementation(const FunctionInfo& function);

/// Computes a call; throws UnknownResult for a function without implementation.
Value EvaluateCall(Evaluator& evaluator, const Node& node, bool in_array);

/// Feeds every number of the arguments from `first` on to `use`: all numbers of references and arrays, where
/// texts and logical values do not count, and what is written directly, where they do. Errors throw.
template <typename Use>
void ForEachNumber(Call& call, std::size_t first, Use use) {
  Evaluator& evaluator = call.Cells();
  const auto use_item = [&](const Value& item) {
    if (item.IsError()) throw FormulaError{item.error};
    if (item.type == ValueType::kNumber) use(item.number);
  };
  for (std::size_t i = first; i < call.Count(); ++i) {
    const Value& value = call[i];
    if (value.type == ValueType::kArray) {
      for (const Value& item : value.Items().items) use_item(item);
    } else if (value.type == ValueType::kReference) {
      for (const Area& area : value.Areas()) {
        Evaluator::ForEachCell(area, [&](const Cell& cell, int, int) {
          if (cell.type == CellType::kNumber) return use(cell.number);
          if (cell.type == CellType::kFormula) use_item(evaluator.ReadCell(cell));
        });
      }
    } else {
      use(NumberOf(value));
    }
  }
}

/// Keeps what rounding takes from a long sum (Neumaier's variant of compensated summation).
class Sum {
 public:
  void Add(double number) {
    const double next = total_ + number;
    lost_ += std::fabs(total_) >= std::fabs(number) ? (total_ - next) + number : (number - next) + total_;
    total_ = next;
  }
  double Total() const { return total_ + lost_; }

 private:
  double total_ = 0.0;
  double lost_ = 0.0;
};

}  // namespace excelexp::formula
