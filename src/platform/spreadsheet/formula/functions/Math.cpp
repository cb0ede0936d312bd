#include <cmath>
#include <numbers>

#include "platform/spreadsheet/formula/Call.h"
#include "platform/spreadsheet/formula/Decimal.h"
#include "platform/spreadsheet/formula/Operators.h"

namespace excelexp::formula {
namespace {

constexpr int kMostDigits = 400;  ///< rounding to more digits than any number has changes nothing

template <double (*function)(double)>
Value Plain(Call& call) {
  return Value::Number(function(call.Number(0)));
}

/// A function that is only defined above 0.
template <double (*function)(double)>
Value OfPositive(Call& call) {
  const double number = call.Number(0);
  return number > 0.0 ? Value::Number(function(number)) : Value::Error(ErrorCode::kNum);
}

template <double (*round)(double, int)>
Value RoundTo(Call& call) {
  const double number = call.Number(0);
  const int digits = std::clamp(call.Whole(1, 0), -kMostDigits, kMostDigits);
  return Value::Number(round(number, digits));
}

Value SquareRoot(Call& call) {
  const double number = call.Number(0);
  return number < 0.0 ? Value::Error(ErrorCode::kNum) : Value::Number(std::sqrt(number));
}

Value Logarithm(Call& call) {
  const double number = call.Number(0);
  const double base = call.Number(1, 10.0);
  if (number <= 0.0 || base <= 0.0) return Value::Error(ErrorCode::kNum);
  if (base == 1.0) return Value::Error(ErrorCode::kDivZero);
  if (base == 10.0) return Value::Number(std::log10(number));
  return Value::Number(base == 2.0 ? std::log2(number) : std::log(number) / std::log(base));
}

Value Modulo(Call& call) {
  const double number = call.Number(0);
  const double divisor = call.Number(1);
  if (divisor == 0.0) return Value::Error(ErrorCode::kDivZero);
  const double quotient = number / divisor;
  if (std::fabs(quotient) >= 1e15) return Value::Error(ErrorCode::kNum);
  return Value::Number(NearlyAdd(number, -Floor15(quotient) * divisor));
}

/// CEILING and FLOOR: `up` away from minus infinity.
Value ToMultiple(Call& call, bool up) {
  const double number = call.Number(0);
  const double step = call.Number(1);
  if (number == 0.0) return Value::Number(0.0);
  if (step == 0.0) return up ? Value::Number(0.0) : Value::Error(ErrorCode::kDivZero);
  if (number > 0.0 && step < 0.0) return Value::Error(ErrorCode::kNum);
  const double quotient = number / step;
  // A negative step counts from zero away, where up and down change sides.
  const double whole = up ? -Floor15(-quotient) : Floor15(quotient);
  return Value::Number(whole * step);
}

Value Ceiling(Call& call) {
  return ToMultiple(call, true);
}
Value Floor(Call& call) {
  return ToMultiple(call, false);
}

Value Even(Call& call) {
  const double half = call.Number(0) / 2.0;
  return Value::Number(RoundAwayFromZero(half, 0) * 2.0);
}

Value Odd(Call& call) {
  const double number = call.Number(0);
  const double size = std::fabs(number);
  const double odd = size <= 1.0 ? 1.0 : RoundAwayFromZero((size - 1.0) / 2.0, 0) * 2.0 + 1.0;
  return Value::Number(number < 0.0 ? -odd : odd);
}

double Sign(double number) {
  return number > 0.0 ? 1.0 : number < 0.0 ? -1.0 : 0.0;
}

Value SumOf(Call& call) {
  Sum sum;
  ForEachNumber(call, 0, [&](double number) { sum.Add(number); });
  return Value::Number(sum.Total());
}

Value Product(Call& call) {
  bool any = false;
  double product = 1.0;
  ForEachNumber(call, 0, [&](double number) {
    any = true;
    product *= number;
  });
  return Value::Number(any ? product : 0.0);
}

Value SumOfSquares(Call& call) {
  Sum sum;
  ForEachNumber(call, 0, [&](double number) { sum.Add(number * number); });
  return Value::Number(sum.Total());
}

/// What is no number counts as 0; errors go through.
double Factor(const Value& item) {
  if (item.IsError()) throw FormulaError{item.error};
  return item.type == ValueType::kNumber ? item.number : 0.0;
}

Value SumOfProducts(Call& call) {
  std::vector<Array> arrays;
  for (const Value& value : call.Values()) {
    if (value.IsError()) return value;
    arrays.push_back(call.Cells().ToArray(value));
    if (arrays.back().rows != arrays[0].rows || arrays.back().columns != arrays[0].columns) {
      return Value::Error(ErrorCode::kValue);
    }
  }
  Sum sum;
  for (std::size_t i = 0; i < arrays[0].items.size(); ++i) {
    double product = 1.0;
    for (const Array& array : arrays) product *= Factor(array.items[i]);
    sum.Add(product);
  }
  return Value::Number(sum.Total());
}

constexpr Implementation kFunctions[] = {
    {"ABS", Arguments::kScalars, Plain<std::fabs>},
    {"CEILING", Arguments::kScalars, Ceiling},
    {"EVEN", Arguments::kScalars, Even},
    {"EXP", Arguments::kScalars, Plain<std::exp>},
    {"FLOOR", Arguments::kScalars, Floor},
    {"INT", Arguments::kScalars, Plain<Floor15>},
    {"LN", Arguments::kScalars, OfPositive<std::log>},
    {"LOG", Arguments::kScalars, Logarithm},
    {"LOG10", Arguments::kScalars, OfPositive<std::log10>},
    {"MOD", Arguments::kScalars, Modulo},
    {"ODD", Arguments::kScalars, Odd},
    {"PI", Arguments::kScalars, [](Call&) { return Value::Number(std::numbers::pi); }},
    {"POWER", Arguments::kScalars,
     [](Call& call) { return Value::Number(Power(call.Number(0), call.Number(1))); }},
    {"PRODUCT", Arguments::kOperands, Product},
    {"ROUND", Arguments::kScalars, RoundTo<RoundHalfAway>},
    {"ROUNDDOWN", Arguments::kScalars, RoundTo<RoundTowardZero>},
    {"ROUNDUP", Arguments::kScalars, RoundTo<RoundAwayFromZero>},
    {"SIGN", Arguments::kScalars, Plain<Sign>},
    {"SQRT", Arguments::kScalars, SquareRoot},
    {"SUM", Arguments::kOperands, SumOf},
    {"SUMPRODUCT", Arguments::kOperands, SumOfProducts},
    {"SUMSQ", Arguments::kOperands, SumOfSquares},
    {"TRUNC", Arguments::kScalars, RoundTo<RoundTowardZero>},
};

}  // namespace

std::span<const Implementation> MathFunctions() {
  return kFunctions;
}

}  // namespace excelexp::formula
