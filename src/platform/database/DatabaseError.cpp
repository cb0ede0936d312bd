#include "platform/database/DatabaseError.h"

#include <utility>

namespace excelexp {
namespace {

std::string Describe(const std::string& message, const std::string& sql) {
  return sql.empty() ? message : message + "; statement: " + sql;
}

}  // namespace

DatabaseError::DatabaseError(std::string message, std::string sql)
    : std::runtime_error(Describe(message, sql)), message_(std::move(message)), sql_(std::move(sql)) {}

}  // namespace excelexp
