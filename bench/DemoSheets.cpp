#include "bench/DemoSheets.h"

#include "demo/DemoDatabase.h"
#include "demo/DemoDefinitions.h"
#include "platform/database/SqliteWriter.h"

namespace excelexp {
namespace {

constexpr char kOneSheetEach[] = R"(
INSERT INTO ExcelSpreadsheet (ExcelSpreadsheetId) SELECT WkSheetName FROM ExcelWkSheet;
UPDATE ExcelWkSheet SET ExcelSpreadsheetId = WkSheetName;
)";

// A hundred and sixty of each department and cost centre, so that a worksheet of them prints enough cells for
// its figure to mean something. The descriptions stay, and with them the groups of the breakdown.
constexpr char kManyCodes[] = R"(
CREATE TEMP TABLE Copy AS
  WITH RECURSIVE Number (i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM Number WHERE i < 159) SELECT i FROM Number;
INSERT INTO Department SELECT DepartmentId || '-' || i, DepartmentDesc FROM Department JOIN Copy;
INSERT INTO CostCentre SELECT CostCentreId || '-' || i, CostCentreDesc FROM CostCentre JOIN Copy;
UPDATE Employee SET DepartmentId = DepartmentId || '-' || (EmployeeSysId % 160);
UPDATE StaffMovement SET FromDepartmentId = FromDepartmentId || '-' || (EmployeeSysId % 160),
                         ToDepartmentId = ToDepartmentId || '-' || (EmployeeSysId % 160);
UPDATE EmployeeCostCentre SET CostCentreId = CostCentreId || '-' || (EmployeeSysId % 160);
DELETE FROM Department WHERE DepartmentId NOT LIKE '%-%';
DELETE FROM CostCentre WHERE CostCentreId NOT LIKE '%-%';
DROP TABLE Copy;
)";

}  // namespace

std::vector<std::string> DemoSheetNames() {
  std::vector<std::string> names;
  for (const DemoFamily& family :
       {DemoBreakdowns(), DemoAccumulations(), DemoMatrices(), DemoMovements(), DemoLeaves(), DemoStaff()}) {
    for (const DemoSheet& sheet : family.sheets) names.emplace_back(sheet.name);
  }
  return names;
}

void WriteDemoSheets(const std::string& file, int employees) {
  DemoOptions options;
  options.employees = employees;
  WriteDemoDatabase(file, options);
  SqliteWriter writer(file);
  writer.Transaction([&] {
    writer.ExecuteScript(kOneSheetEach);
    writer.ExecuteScript(kManyCodes);
  });
}

}  // namespace excelexp
