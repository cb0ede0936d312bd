#include "support/failures.h"

#include <gtest/gtest.h>

#include "support/scenario.h"

namespace excelexp {

std::string OwnSchemeSql(const std::string& table, const std::string& condition) {
  return "CREATE TEMP TABLE Own AS SELECT * FROM ColourScheme WHERE ColourSchemeId = 'Body';\n"
         "UPDATE Own SET ColourSchemeId = 'Own';\n"
         "INSERT INTO ColourScheme SELECT * FROM Own;\n"
         "UPDATE " +
         table + " SET ColourSchemeId = 'Own' WHERE " + condition + ";\n";
}

void ExpectFailures(const std::string& sql, const std::string& chain, const std::vector<FailureRow>& rows) {
  for (const FailureRow& row : rows) {
    SCOPED_TRACE(row.part + row.change);
    Scenario scenario(sql + row.change);
    if (!row.part.empty()) scenario.FailStatement(row.part, row.nth);
    const ScenarioRun run = scenario.Run("S");
    EXPECT_EQ(run.result, 0);
    EXPECT_TRUE(run.workbook.IsEmpty());
    const std::vector<std::string> errors = run.Errors();
    ASSERT_GE(errors.size(), 2U);
    EXPECT_EQ(errors[0], row.message);
    EXPECT_EQ(errors[1], chain);
  }
}

}  // namespace excelexp
