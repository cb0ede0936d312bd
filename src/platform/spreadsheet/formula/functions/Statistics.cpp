#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <vector>

#include "platform/spreadsheet/formula/Call.h"
#include "platform/spreadsheet/formula/Decimal.h"

namespace excelexp::formula {
namespace {

using Numbers = std::vector<double>;

Numbers NumbersOf(Call& call, std::size_t first = 0) {
  Numbers numbers;
  ForEachNumber(call, first, [&](double number) { numbers.push_back(number); });
  return numbers;
}

/// The numbers of one argument.
Numbers NumbersOfArgument(Call& call, std::size_t i) {
  const Value& value = call[i];
  if (value.IsError()) throw FormulaError{value.error};
  Numbers numbers;
  const Array array = call.Cells().ToArray(value);
  for (const Value& item : array.items) {
    if (item.IsError()) throw FormulaError{item.error};
    if (item.type == ValueType::kNumber) numbers.push_back(item.number);
  }
  return numbers;
}

double Total(const Numbers& numbers) {
  Sum sum;
  for (const double number : numbers) sum.Add(number);
  return sum.Total();
}

/// The functions of a list of numbers that SUBTOTAL offers as well.
Value Average(const Numbers& numbers) {
  if (numbers.empty()) return Value::Error(ErrorCode::kDivZero);
  return Value::Number(Total(numbers) / static_cast<double>(numbers.size()));
}

Value Count(const Numbers& numbers) {
  return Value::Number(static_cast<double>(numbers.size()));
}

Value Largest(const Numbers& numbers) {
  return Value::Number(numbers.empty() ? 0.0 : *std::max_element(numbers.begin(), numbers.end()));
}

Value Smallest(const Numbers& numbers) {
  return Value::Number(numbers.empty() ? 0.0 : *std::min_element(numbers.begin(), numbers.end()));
}

Value Product(const Numbers& numbers) {
  double product = numbers.empty() ? 0.0 : 1.0;
  for (const double number : numbers) product *= number;
  return Value::Number(product);
}

Value SumOf(const Numbers& numbers) {
  return Value::Number(Total(numbers));
}

/// The mean square distance from the mean; `missing` is what the divisor lacks of the count.
std::optional<double> Variance(const Numbers& numbers, std::size_t missing) {
  if (numbers.size() <= missing) return std::nullopt;
  const double mean = Total(numbers) / static_cast<double>(numbers.size());
  Sum squares;
  for (const double number : numbers) squares.Add((number - mean) * (number - mean));
  return squares.Total() / static_cast<double>(numbers.size() - missing);
}

template <std::size_t missing>
Value VarianceValue(const Numbers& numbers) {
  const std::optional<double> variance = Variance(numbers, missing);
  return variance ? Value::Number(*variance) : Value::Error(ErrorCode::kDivZero);
}

template <std::size_t missing>
Value Deviation(const Numbers& numbers) {
  const std::optional<double> variance = Variance(numbers, missing);
  return variance ? Value::Number(std::sqrt(*variance)) : Value::Error(ErrorCode::kDivZero);
}

template <Value (*function)(const Numbers&)>
Value OfNumbers(Call& call) {
  return function(NumbersOf(call));
}

/// COUNT: errors and texts in references do not count, what is written directly counts when it reads as a
/// number.
Value CountNumbers(Call& call) {
  double count = 0.0;
  for (const Value& value : call.Values()) {
    if (value.type == ValueType::kReference) {
      for (const Area& area : value.Areas()) {
        Evaluator::ForEachCell(area, [&](const Cell& cell, int, int) {
          count += call.Cells().ReadCell(cell).type == ValueType::kNumber ? 1.0 : 0.0;
        });
      }
    } else if (value.type == ValueType::kArray) {
      for (const Value& item : value.Items().items) count += item.type == ValueType::kNumber ? 1.0 : 0.0;
    } else if (value.type == ValueType::kText) {
      count += ReadNumber(value.text) ? 1.0 : 0.0;
    } else {
      count += value.IsError() ? 0.0 : 1.0;
    }
  }
  return Value::Number(count);
}

double CountFilledCells(Evaluator& evaluator, const Value& value) {
  double count = 0.0;
  for (const Area& area : value.Areas()) {
    Evaluator::ForEachCell(area, [&](const Cell& cell, int, int) {
      count += evaluator.ReadCell(cell).type != ValueType::kEmpty ? 1.0 : 0.0;
    });
  }
  return count;
}

Value CountFilled(Call& call) {
  double count = 0.0;
  for (const Value& value : call.Values()) {
    if (value.type == ValueType::kReference) {
      count += CountFilledCells(call.Cells(), value);
    } else {
      count += value.type == ValueType::kArray ? static_cast<double>(value.Items().items.size()) : 1.0;
    }
  }
  return Value::Number(count);
}

Value CountBlank(Call& call) {
  const Area& area = call.Cells(0);
  double filled = 0.0;
  Evaluator::ForEachCell(area, [&](const Cell& cell, int, int) {
    const Value value = call.Cells().ReadCell(cell);
    const bool blank =
        value.type == ValueType::kEmpty || (value.type == ValueType::kText && value.text.empty());
    filled += blank ? 0.0 : 1.0;
  });
  return Value::Number(static_cast<double>(area.Rows()) * area.Columns() - filled);
}

// --- SUBTOTAL ---

/// By the first argument less 1.
constexpr Value (*kSubtotals[])(const Numbers&) = {
    Average,      Count,        nullptr, Largest,          Smallest,        Product,
    Deviation<1>, Deviation<0>, SumOf,   VarianceValue<1>, VarianceValue<0>};
constexpr int kCountFilled = 3;
constexpr int kIgnoringHidden = 100;

Value Subtotal(Call& call) {
  int kind = static_cast<int>(call.Whole(0));
  const bool ignores_hidden = kind > kIgnoringHidden;
  if (ignores_hidden) kind -= kIgnoringHidden;
  if (kind < 1 || kind > static_cast<int>(std::size(kSubtotals))) return Value::Error(ErrorCode::kValue);
  Numbers numbers;
  double filled = 0.0;
  for (std::size_t i = 1; i < call.Count(); ++i) {
    if (call[i].IsError()) return call[i];
    if (call[i].type != ValueType::kReference) return Value::Error(ErrorCode::kValue);
    for (const Area& area : call[i].Areas()) {
      Evaluator::ForEachCell(area, [&](const Cell& cell, int row, int) {
        // Subtotals are not added up a second time.
        if ((ignores_hidden && area.sheet->RowHidden(row)) || call.Cells().IsSubtotal(cell)) return;
        const Value value = call.Cells().ReadCell(cell);
        filled += value.type != ValueType::kEmpty ? 1.0 : 0.0;
        if (value.type == ValueType::kNumber) numbers.push_back(value.number);
        const bool counts = kind == 2 || kind == kCountFilled;
        if (value.IsError() && !counts) throw FormulaError{value.error};
      });
    }
  }
  return kind == kCountFilled ? Value::Number(filled) : kSubtotals[kind - 1](numbers);
}

// --- order ---

/// The k-th of the sorted numbers, from the largest down or the smallest up.
Value KthOf(Call& call, bool largest) {
  Numbers numbers = NumbersOfArgument(call, 0);
  const double k = std::ceil(NumberOf(call.Cells().ToScalar(call[1])));
  if (!(k >= 1.0 && k <= static_cast<double>(numbers.size()))) return Value::Error(ErrorCode::kNum);
  std::sort(numbers.begin(), numbers.end());
  const auto place = static_cast<std::size_t>(k);
  return Value::Number(largest ? numbers[numbers.size() - place] : numbers[place - 1]);
}

Value Large(Call& call) {
  return KthOf(call, true);
}
Value Small(Call& call) {
  return KthOf(call, false);
}

/// `fraction` of the way through the sorted numbers, between two of them in proportion.
Value AtFraction(Numbers numbers, double fraction) {
  if (numbers.empty() || !(fraction >= 0.0 && fraction <= 1.0)) return Value::Error(ErrorCode::kNum);
  std::sort(numbers.begin(), numbers.end());
  const double place = fraction * static_cast<double>(numbers.size() - 1);
  const auto below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, numbers.size() - 1);
  return Value::Number(numbers[below] +
                       (numbers[above] - numbers[below]) * (place - static_cast<double>(below)));
}

Value Median(Call& call) {
  return AtFraction(NumbersOf(call), 0.5);
}

Value Percentile(Call& call) {
  return AtFraction(NumbersOfArgument(call, 0), NumberOf(call.Cells().ToScalar(call[1])));
}

Value Quartile(Call& call) {
  const double quarter = std::floor(NumberOf(call.Cells().ToScalar(call[1])));
  return AtFraction(NumbersOfArgument(call, 0), quarter / 4.0);
}

/// The most frequent number; of several the one that comes first.
Value Mode(Call& call) {
  const Numbers numbers = NumbersOf(call);
  Numbers sorted = numbers;
  std::sort(sorted.begin(), sorted.end());
  std::ptrdiff_t most = 1;
  double mode = 0.0;
  for (const double number : numbers) {
    const auto same = std::equal_range(sorted.begin(), sorted.end(), number);
    if (same.second - same.first <= most) continue;
    most = same.second - same.first;
    mode = number;
  }
  return most == 1 ? Value::Error(ErrorCode::kNotAvailable) : Value::Number(mode);
}

Value RankOf(Call& call) {
  const double number = NumberOf(call.Cells().ToScalar(call[0]));
  const bool ascending = call.Count() > 2 && NumberOf(call.Cells().ToScalar(call[2])) != 0.0;
  bool present = false;
  double rank = 1.0;
  for (const double other : NumbersOfArgument(call, 1)) {
    present = present || NearlyEqual(other, number);
    if (!NearlyEqual(other, number) && (ascending ? other < number : other > number)) rank += 1.0;
  }
  return present ? Value::Number(rank) : Value::Error(ErrorCode::kNotAvailable);
}

constexpr Implementation kFunctions[] = {
    {"AVERAGE", Arguments::kOperands, OfNumbers<Average>},
    {"COUNT", Arguments::kOperands, CountNumbers},
    {"COUNTA", Arguments::kOperands, CountFilled},
    {"COUNTBLANK", Arguments::kOperands, CountBlank},
    {"LARGE", Arguments::kOperands, Large},
    {"MAX", Arguments::kOperands, OfNumbers<Largest>},
    {"MEDIAN", Arguments::kOperands, Median},
    {"MIN", Arguments::kOperands, OfNumbers<Smallest>},
    {"MODE", Arguments::kOperands, Mode},
    {"PERCENTILE", Arguments::kOperands, Percentile},
    {"QUARTILE", Arguments::kOperands, Quartile},
    {"RANK", Arguments::kOperands, RankOf},
    {"SMALL", Arguments::kOperands, Small},
    {"STDEV", Arguments::kOperands, OfNumbers<Deviation<1>>},
    {"STDEVP", Arguments::kOperands, OfNumbers<Deviation<0>>},
    {"SUBTOTAL", Arguments::kOperands, Subtotal},
    {"VAR", Arguments::kOperands, OfNumbers<VarianceValue<1>>},
    {"VARP", Arguments::kOperands, OfNumbers<VarianceValue<0>>},
};

}  // namespace

std::span<const Implementation> StatisticFunctions() {
  return kFunctions;
}

}  // namespace excelexp::formula
