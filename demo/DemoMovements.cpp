#include "demo/DemoDefinitions.h"

namespace excelexp {
namespace {

DemoProject Project(std::string_view id, std::string_view setup, std::string_view group_by) {
  return {.id = id,
          .desc = "Staff movements by department",
          .sub_type = "ProjSubTypeMovement",
          .setup = setup,
          .level = "SumLevelBasis",
          .group_by = group_by,
          .sub_group_by = "",
          .basis1 = "Department"};
}

DemoFinancialRpt Movements(std::string_view id, std::string_view project) {
  return {
      .id = id,
      .desc = "Staff movements by department",
      .project = project,
      .layout = "MovementList",
      .columns = {MainField("Department", "DepartmentDesc", "Department", "Name"),
                  Total("Movement", "MovementOpening", "Opening"),
                  Total("Movement", "MovementHired", "Hired"), Total("Movement", "MovementIn", "Moved in"),
                  Total("Movement", "MovementOut", "Moved out", "Deduct"),
                  Total("Movement", "MovementCeased", "Ceased", "Deduct"),
                  Total("Movement", "MovementClosing", "Closing", "Total"),
                  Total("Movement", "MovementConfirmed", "Confirmed", "Note"),
                  Formula("=<Item#2>+<Item#3>+<Item#4>-<Item#5>-<Item#6>-<Item#7>", "Unexplained", "Deduct")},
      .sorts = {{"Department", "DepartmentDesc"}},
      .grand_total = true,
  };
}

DemoSheet Sheet(std::string_view name, std::string_view header, std::string_view report) {
  constexpr DemoPeriod kDecember = {2024, 12};
  return {.name = name,
          .level = "SumLevelBasis",
          .header = header,
          .items = {{report, kDecember, kDecember}},
          .basis1 = "Department"};
}

}  // namespace

DemoFamily DemoMovements() {
  return {
      .projects = {Project("MOVEYEAR", "SetupMovementYear", "CalenGrpYr"),
                   Project("MOVEMONTH", "SetupMovementMonth", "CalenGrpMth")},
      .financial = {Movements("MVYEAR", "MOVEYEAR"), Movements("MVMONTH", "MOVEMONTH")},
      .sheets = {Sheet("Movement Year", "Staff movements of the year 2024\r\nPrinted <Date>", "MVYEAR"),
                 Sheet("Movement Month", "Staff movements of December 2024\r\nPrinted <Date>", "MVMONTH")},
  };
}

}  // namespace excelexp
