#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "platform/host/DateTime.h"

namespace excelexp {

/// One value of a Locate: integers and texts may stand in one list.
using KeyValue = std::variant<std::int64_t, std::string>;

/// A whole query result, read once and never changed, shared by any number of cursors.
///
/// Columns are found by name without regard to case; of two columns of one name the first counts.
/// Values are read the way the engine's classes read fields: NULL as "", 0, 0.0 and the null date; a text as
/// a number by its leading digits; a number as text without locale.
class ResultSet {
 public:
  virtual ~ResultSet() = default;

  virtual int RowCount() const = 0;
  virtual int ColumnCount() const = 0;
  virtual const std::string& ColumnName(int column) const = 0;
  /// -1 when there is no such column.
  virtual int ColumnIndex(std::string_view name) const = 0;

  virtual bool IsNull(int row, int column) const = 0;
  virtual std::string AsText(int row, int column) const = 0;
  virtual std::int64_t AsInteger(int row, int column) const = 0;
  virtual double AsFloat(int row, int column) const = 0;
  /// Throws DatabaseError naming the column when the value is a text that is no date.
  virtual DateTime AsDateTime(int row, int column) const = 0;
  /// The bytes of a blob or of a text.
  virtual std::string AsBytes(int row, int column) const = 0;

  /// The first row in result order whose values equal all keys (exact, case-sensitive, whole value; an
  /// integer key equals a stored number or the decimal text of it), or -1. The index over these columns is
  /// built on the first call and kept.
  virtual int Find(std::span<const int> columns, std::span<const KeyValue> keys) const = 0;
};

}  // namespace excelexp
