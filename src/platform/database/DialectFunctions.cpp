#include "platform/database/DialectFunctions.h"

#include <sqlite3.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <exception>
#include <string_view>
#include <utility>

#include "platform/database/SqliteConnection.h"

namespace excelexp {
namespace {

// SQLite calls functions through C: an exception becomes the statement's error.
template <void (*Body)(sqlite3_context*, sqlite3_value**)>
void Guarded(sqlite3_context* context, int, sqlite3_value** values) {
  try {
    Body(context, values);
  } catch (const std::exception& error) {
    sqlite3_result_error(context, error.what(), -1);
  }
}

std::string_view Text(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return text == nullptr ? std::string_view() : std::string_view(text, sqlite3_value_bytes(value));
}

void Now(sqlite3_context* context, sqlite3_value**) {
  auto& connection = *static_cast<SqliteConnection*>(sqlite3_user_data(context));
  const CivilTime t = DecodeDateTime(connection.Moment());
  std::array<char, 80> text{};
  const int length = std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", t.year, t.month,
                                   t.day, t.hour, t.minute, t.second);
  sqlite3_result_text(context, text.data(), length, SQLITE_TRANSIENT);
}

bool IsBefore(const CivilTime& a, const CivilTime& b) {
  return std::pair(a.year * 12 + a.month, a.day) < std::pair(b.year * 12 + b.month, b.day);
}

// `from` is not after `to`.
int WholeMonths(const CivilTime& from, const CivilTime& to) {
  const int months = (to.year - from.year) * 12 + to.month - from.month;
  const std::chrono::year_month_day_last last{std::chrono::year{to.year} / static_cast<unsigned>(to.month) /
                                              std::chrono::last};
  const bool is_last = to.day == static_cast<int>(static_cast<unsigned>(last.day()));
  return to.day >= from.day || is_last ? months : months - 1;
}

void Months(sqlite3_context* context, sqlite3_value** values) {
  const std::string_view from_text = Text(values[0]);
  const std::string_view to_text = Text(values[1]);
  if (from_text.empty() || to_text.empty()) return;  // NULL
  const CivilTime from = DecodeDateTime(ParseDateTime(from_text));
  const CivilTime to = DecodeDateTime(ParseDateTime(to_text));
  sqlite3_result_int(context, IsBefore(to, from) ? -WholeMonths(to, from) : WholeMonths(from, to));
}

}  // namespace

void RegisterDialectFunctions(SqliteConnection& connection) {
  // Innocuous: views of the database may call them although its schema is not trusted.
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_INNOCUOUS;
  sqlite3_create_function_v2(connection.Handle(), "NOW", 0, kFlags, &connection, &Guarded<&Now>, nullptr,
                             nullptr, nullptr);
  sqlite3_create_function_v2(connection.Handle(), "MONTHS", 2, kFlags | SQLITE_DETERMINISTIC, nullptr,
                             &Guarded<&Months>, nullptr, nullptr, nullptr);
}

}  // namespace excelexp
