#pragma once

#include <string>
#include <string_view>

#include "platform/host/DateTime.h"

namespace excelexp {

// The plain functions of the common library. Those that ask a database ask the one registered as "varndb".

/// The country that the database is set up for; "" when it does not say or no database is registered.
/// `database_name` "" is the payroll database.
std::string GetDBCountry(std::string_view database_name);

/// The type word of a column ("char", "integer", "smallint", "double", "decimal", "date", "time",
/// "timestamp"); "" for a column the database does not have.
std::string FGetSystemColumnType(std::string_view table, std::string_view column);

/// The pattern in which the database shows dates.
std::string FGetDBDateFormat();

/// What a cell shows for a date given as "dd/mm/yyyy": nothing for the null date, else the text as it is.
std::string FGetInValidDate(std::string_view date);

/// True for the null date, the day count 0.
bool IsDateNull(DateTime moment);

/// Reads a whole number: blanks, a sign and leading digits; 0 for any other text and beyond 32 bits.
int CStrToInt(std::string_view text);

}  // namespace excelexp
