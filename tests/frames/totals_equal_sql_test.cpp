// Every subtotal and grand total of a grouped worksheet against sums that the database computes from the same
// records.

#include <map>

#include "platform/database/SqliteWriter.h"
#include "support/mini_payroll.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

constexpr int kFirstAmountColumn = 3;  // after the two main-information columns

/// Sixty employees over departments and sections, two periods of three items; some records are missing.
std::string ManyRecords() {
  std::string sql =
      "DELETE FROM Employee; DELETE FROM Personal;"
      "INSERT INTO Department VALUES ('LOG', 'Logistics'); INSERT INTO Section VALUES ('N', 'North');";
  const std::vector<std::string> departments = {"SAL", "WRK", "LOG"};
  const std::vector<std::string> sections = {"E", "W", "N"};
  for (int i = 1; i <= 60; ++i) {
    const std::string id = std::to_string(i);
    sql += "INSERT INTO Personal (PersonalSysId, PersonalName) VALUES (" + id + ", 'P" + id + "');";
    sql +=
        "INSERT INTO Employee (EmployeeSysId, PersonalSysId, EmployeeId, EmployeeName, CompanyId, "
        "DepartmentId, "
        "SectionId, HireDate) VALUES (" +
        id + ", " + id + ", 'E" + id + "', 'P" + id + "', '001', '" +
        departments[static_cast<std::size_t>(i * 7 % 3)] + "', '" +
        sections[static_cast<std::size_t>(i % 5 % 3)] + "', '2020-01-01');";
    for (const int period : {1, 2}) {
      for (int item = 0; item < 3; ++item) {
        if ((i + period + item) % 7 == 0) continue;
        sql += Record(2024, period, "Normal", id, "Allowance", "A" + std::to_string(item), "Allowance",
                      i * 12.34 + period * 0.07 + item * 1000.01);
      }
    }
  }
  return sql;
}

/// Group values, period and item to the sum, as the database has it. Empty texts stand for "all".
using Sums = std::map<std::vector<std::string>, double>;

Sums SumsBySql(const std::string& file) {
  Sums sums;
  for (const std::string& group : {std::string("DepartmentDesc, SectionDesc"),
                                   std::string("DepartmentDesc, ''"), std::string("'', ''")}) {
    for (const auto& row : SqliteWriter(file).Rows(
             "SELECT " + group +
             ", AnlysItemRecPeriodMonth || AnlysItem1Id, SUM(AnlysAmount1) FROM MiniRecords "
             "JOIN Employee ON EmployeeSysId = CAST(Basis1Id AS INTEGER) JOIN Department USING "
             "(DepartmentId) "
             "JOIN Section USING (SectionId) GROUP BY 1, 2, 3")) {
      sums[{std::get<std::string>(row[0]), std::get<std::string>(row[1]), std::get<std::string>(row[2])}] =
          std::get<double>(row[3]);
    }
  }
  return sums;
}

TEST(Totals, EveryOneEqualsTheDatabasesOwnSum) {
  Scenario scenario(
      MiniPayrollSql() + ManyRecords() + SpreadsheetSql("S", "SumLevelEmpee") +
      FinancialItemSql({.grand_total = 1}) +
      ColumnItemSql({.order = 1,
                     .type = "SummLvlItem",
                     .grouping = "Employee",
                     .component = "EmployeeId",
                     .main_info = 1}) +
      ColumnItemSql({.order = 2,
                     .type = "SummLvlItem",
                     .grouping = "Employee",
                     .component = "EmployeeName",
                     .main_info = 1}) +
      ColumnItemSql({.order = 3, .item = "<ALL>", .grouping = "Allowance", .component = "AllowanceAmt"}) +
      GroupSql(1, "Employee", "DepartmentDesc", "Department", 1, 0) +
      GroupSql(2, "Employee", "SectionDesc", "Section", 1, 0));
  const ScenarioRun run = scenario.Run("S");
  ASSERT_EQ(run.result, 1) << ScenarioRun::Lines(run.internal_log);
  const Workbook& workbook = *run.workbook.Get();
  const Sheet& sheet = *workbook.FindSheet("Sheet");
  const auto text = [&](int row, int column) {
    const Cell* cell = sheet.Find(row, column);
    return cell == nullptr || cell->type != CellType::kText ? std::string() : workbook.Text(cell->text);
  };

  Sums expected = SumsBySql(scenario.DatabaseFile());
  ASSERT_EQ(expected.size(), (9U + 3U + 1U) * 6U);
  std::string department;
  std::string section;
  for (int row = 1; row <= sheet.LastRow(); ++row) {
    const std::string label = text(row, 1);
    if (label == "Department") department = text(row, 2);
    if (label == "Section") section = text(row, 2);
    const bool grand = label == "Grand Total ";
    const bool of_department = label == "Sub Total(Department)";
    if (!grand && !of_department && label != "Sub Total(Section)") continue;
    for (int column = 0; column < 6; ++column) {
      const std::string which = std::to_string(column / 3 + 1) + "A" + std::to_string(column % 3);
      const auto sum = expected.find({grand ? "" : department, grand || of_department ? "" : section, which});
      const Cell* cell = sheet.Find(row, kFirstAmountColumn + column);
      ASSERT_TRUE(cell != nullptr && cell->type == CellType::kFormula) << row;
      const double total = workbook.FormulaAt(cell->formula).result.number;
      EXPECT_NEAR(total, sum == expected.end() ? 0.0 : sum->second, 1e-6)
          << label << " " << department << " " << section;
      if (sum != expected.end()) expected.erase(sum);
    }
  }
  EXPECT_TRUE(expected.empty()) << expected.size() << " sums of the database stand on no row";
}

}  // namespace
}  // namespace excelexp
