#include "platform/database/QueryPlan.h"

#include <sqlite3.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "platform/database/SqliteConnection.h"

namespace excelexp {

std::vector<PlanStep> PlanOf(const SqliteConnection& connection, const std::string& sql) {
  constexpr std::string_view kCovering = "COVERING ";
  const SqliteStatement rows = connection.Prepare("EXPLAIN QUERY PLAN " + sql, sql);
  std::vector<PlanStep> plan;
  std::map<int, int> depths;  // of what stands below a step, by the step's number; 0 is the statement
  while (connection.Step(rows.get(), sql)) {
    const int depth = depths[sqlite3_column_int(rows.get(), 1)];
    depths[sqlite3_column_int(rows.get(), 0)] = depth + 1;
    std::string text = reinterpret_cast<const char*>(sqlite3_column_text(rows.get(), 3));
    if (const std::size_t found = text.find(kCovering); found != std::string::npos)
      text.erase(found, kCovering.size());
    plan.push_back({depth, std::move(text)});
  }
  return plan;
}

bool HasAutomaticIndex(const std::vector<PlanStep>& plan) {
  return std::ranges::any_of(
      plan, [](const PlanStep& step) { return step.text.find("AUTOMATIC") != std::string::npos; });
}

}  // namespace excelexp
