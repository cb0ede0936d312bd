#pragma once

#include <array>
#include <string>

#include "platform/database/Query.h"

namespace excelexp {

/// Turns a (table, attribute) pair of a report definition into the texts that SQL builders need. Some
/// attributes are real columns; others exist only as expressions over the employee or the person.
///
/// A caller searches first and then reads the results; they stay until the next search.
class BExcelExpEngCalcFields {
 public:
  /// `by_employee` keys code descriptions on the employee, otherwise on the person. `value_query` may be
  /// null; else it has a column named as the attribute and stands on the row whose value the condition tests.
  /// Throws DatabaseError when the value query has no such column.
  void Search(const std::string& table, const std::string& attribute, int by_employee,
              const Query* value_query);
  void SearchByEmp(const std::string& table, const std::string& attribute, const Query* value_query);
  void SearchByPer(const std::string& table, const std::string& attribute, const Query* value_query);

  /// The name to order by and to look the field up under.
  const std::string& GetFieldName() const { return field_name_; }
  const std::string& GetSelectList() const { return select_list_; }
  const std::string& GetFieldType() const { return field_type_; }
  /// Of the last search that was given a value query.
  const std::string& GetCondition() const { return condition_; }

  /// Searches, and returns the select list.
  std::string GetSelectList(const std::string& table, const std::string& attribute, int by_employee);
  /// The select list of every calculated field, joined by ", ".
  const std::string& GetAllSelectList(int by_employee);

 private:
  struct Rules;

  void SearchBy(const Rules& rules, const std::string& table, const std::string& attribute,
                const Query* value_query);
  void SetColumn(const std::string& table, const std::string& attribute, std::string type);

  std::string field_name_;
  std::string select_list_;
  std::string field_type_;
  std::string condition_;
  std::array<std::string, 2> all_select_lists_;  // of persons and of employees, once they were asked for
};

}  // namespace excelexp
