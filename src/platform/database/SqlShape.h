#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace excelexp {

/// A value that a statement compares a column with, or selects under a name.
struct SqlComparand {
  bool is_text = false;
  std::int64_t number = 0;
  std::string_view raw;  ///< a text as written, between its quotes; points into the statement
};

/// What statements that differ only in the values they compare columns with have in common: the text with
/// parameters instead of the values. "WHERE A = 'x' AND B = 5" and "WHERE A = 'y' AND B = 7" have one shape.
///
/// Only whole numbers and texts that stand alone behind "column =" in a condition become parameters: what the
/// statement means does not depend on them. Inside the list of what is selected they stay, for the names of
/// columns without AS would change; but of "SELECT 'x' AS A, 5 AS B FROM T", where nothing else can mean A or
/// B, they are parameters.
class SqlShape {
 public:
  explicit SqlShape(std::string_view sql);

  /// The statement with ?1, ?2, ... for the values.
  const std::string& Text() const { return text_; }
  std::size_t ValueCount() const { return kinds_.size(); }

  /// One select of rows as they are found: not DISTINCT, not sorted, grouped, limited or joined with another
  /// select's rows, and without WITH.
  bool IsPlain() const { return plain_; }
  /// The statement without its DISTINCT; "" for one that has none, or whose meaning goes beyond the rows it
  /// finds in other ways.
  const std::string& WithoutDistinct() const { return without_distinct_; }

  /// Replaces `values` by those of a statement of this shape; false, and no values that mean anything, for
  /// any other statement.
  bool Matches(std::string_view sql, std::vector<SqlComparand>& values) const;

 private:
  enum class Kind : char { kText, kNumber };
  std::string text_;
  std::vector<std::string> pieces_;  // what stands before, between and behind the values
  std::vector<Kind> kinds_;
  bool plain_ = true;
  std::string without_distinct_;
};

/// The text that a comparand stands for.
std::string TextOf(const SqlComparand& text);

}  // namespace excelexp
