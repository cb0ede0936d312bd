#pragma once

#include "platform/spreadsheet/formula/Expression.h"
#include "platform/spreadsheet/formula/Value.h"

namespace excelexp::formula {

/// Arithmetic, comparison and concatenation of scalars; errors go through, the left one first.
Value ApplyBinary(Operator op, const Value& left, const Value& right);
/// Signs and percent.
Value ApplyUnary(Operator op, const Value& operand);

/// Ranges, unions and intersections of references; #NULL! for an intersection without cells.
Value CombineReferences(Operator op, const Value& left, const Value& right);

/// Powers as the application computes them; throws FormulaError.
double Power(double base, double exponent);

}  // namespace excelexp::formula
