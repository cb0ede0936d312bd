#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/host/DateTime.h"

namespace excelexp {

/// Formats a moment by a pattern of the tokens d, dd, m, mm, mmm, mmmm, yy, yyyy, h, hh, n, nn, s, ss, zzz; m
/// and mm directly after an hour token mean minutes. Text between quotes and all other characters are copied.
/// English month names, whatever the process locale is.
std::string FormatDateTime(std::string_view pattern, DateTime moment);

/// Formats a number by "positive;negative[;zero]" sections of 0, #, a decimal point and a grouping comma,
/// rounding half away from zero on the decimal digits of the value. One section serves all numbers, with a
/// leading minus for negative ones.
std::string FormatFloat(std::string_view pattern, double value);

/// The shortest decimal text that reads back as the same value, without locale and without exponent between
/// 1e-5 and 1e15.
std::string FloatToText(double value);

/// The pieces as one text, put together in one go.
std::string Joined(std::initializer_list<std::string_view> pieces);

/// The process-wide short date format: how a date becomes text where no pattern is given.
std::string ShortDateFormat();
void SetShortDateFormat(std::string pattern);

}  // namespace excelexp
