#pragma once

namespace excelexp::formula {

// Spreadsheets show and round what people typed, not what binary floating point made of it: 2.675 rounds
// to 2.68. These functions look at the first 15 significant decimal digits of a value, as the applications
// do.

/// `digits` counts decimals; negative ones round left of the decimal point. Halves go away from zero. Without
/// decimals (0) the value itself counts, not its 15 digits.
double RoundHalfAway(double value, int digits);
double RoundAwayFromZero(double value, int digits);
double RoundTowardZero(double value, int digits);

/// The largest whole number that is not above the value's 15 digits.
double Floor15(double value);

/// Equal but for what binary fractions cannot hold: within 2^-48 of their size.
bool NearlyEqual(double a, double b);

/// The sum; 0 when the two only differ in what binary fractions cannot hold, so that 0.1+0.2-0.3 is 0.
double NearlyAdd(double a, double b);

}  // namespace excelexp::formula
