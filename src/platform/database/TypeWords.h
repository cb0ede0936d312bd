#pragma once

#include <string>

namespace excelexp {

/// The word that the engine knows a column's declared type by: "char" for "VARCHAR(40)". A word that is not
/// known (date, time, blob) speaks for itself, in small letters.
std::string TypeWordOf(const std::string& declared);

}  // namespace excelexp
