#pragma once

#include <stdexcept>
#include <string>

namespace excelexp {

/// The one error of the database seam: what() carries the database's message and the statement.
class DatabaseError : public std::runtime_error {
 public:
  /// `sql` is the text as the engine sent it; empty when no statement was involved.
  DatabaseError(std::string message, std::string sql);

  const std::string& Message() const { return message_; }
  const std::string& Sql() const { return sql_; }

 private:
  std::string message_;
  std::string sql_;
};

}  // namespace excelexp
