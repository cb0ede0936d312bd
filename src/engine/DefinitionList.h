#pragma once

#include <string>
#include <vector>

namespace excelexp {

/// What a stored definition consists of, for people who choose one. The texts are as stored.
struct ItemSummary {
  int ordering = 0;
  std::string report_type;
  std::string report_id;
  std::string layout;  ///< the financial report's layout, or the employee report's type; "" without a report
};

struct WorksheetSummary {
  int order = 0;
  std::string name;
  std::string summary_level;
  std::vector<std::string> basis_levels;  ///< those that are chosen
  std::vector<ItemSummary> items;
};

struct SpreadsheetSummary {
  std::string id;
  std::string file_name;  ///< without extension
  std::vector<WorksheetSummary> worksheets;
};

/// All definitions of a database by id, worksheets and items in their order. `database_name` is an alias in
/// DatabaseRegistry. Throws DatabaseError.
std::vector<SpreadsheetSummary> ListDefinitions(const std::string& database_name);

}  // namespace excelexp
