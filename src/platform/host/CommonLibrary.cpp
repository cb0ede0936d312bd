#include "platform/host/CommonLibrary.h"

#include <charconv>

#include "platform/database/DatabaseRegistry.h"

namespace excelexp {

std::string GetDBCountry(std::string_view database_name) {
  const auto database = DatabaseRegistry::Find(database_name.empty() ? kPayrollDatabaseName : database_name);
  return database == nullptr ? "" : database->Country();
}

std::string FGetSystemColumnType(std::string_view table, std::string_view column) {
  const auto database = DatabaseRegistry::Find(kPayrollDatabaseName);
  return database == nullptr ? "" : database->ColumnType(table, column);
}

std::string FGetDBDateFormat() {
  const auto database = DatabaseRegistry::Find(kPayrollDatabaseName);
  return database == nullptr ? "dd/mm/yyyy" : database->DateFormat();
}

std::string FGetInValidDate(std::string_view date) {
  return date == "30/12/1899" ? "" : std::string(date);
}

bool IsDateNull(DateTime moment) {
  return moment.days == 0.0;
}

int CStrToInt(std::string_view text) {
  const std::size_t start = text.find_first_not_of(' ');
  if (start == std::string_view::npos) return 0;
  text.remove_prefix(start);
  if (text.front() == '+') text.remove_prefix(1);
  int value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc{} ? value : 0;
}

}  // namespace excelexp
