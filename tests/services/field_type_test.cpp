#include "services/BExcelExpEngFieldType.h"

#include "platform/spreadsheet/BExcelAPI.h"
#include "support/scenario.h"

namespace excelexp {
namespace {

/// A context that prints on a sheet of its own, and a query on one row.
class FieldTypes : public testing::Test {
 protected:
  FieldTypes() {
    core.SetDatabaseName("varndb");
    core.SetExcelAPI(&api);
    core.SetExcelWorkbook(api.CreateWorkbook(1));
    core.SetExcelWorksheetName("Sheet");
    api.CreateNewTable(core.ExcelWorkbook, "Sheet");
    core.NumberFormat = "#,0.00;-#,0.00";
  }

  const Cell* Shown() const { return core.ExcelWorkbook.Get()->FindSheet("Sheet")->Find(1, 1); }
  std::string ShownText() const {
    if (Shown()->type == CellType::kNumber) return "number";
    return Shown()->type == CellType::kText ? core.ExcelWorkbook.Get()->Text(Shown()->text) : "";
  }
  std::string ShownFormat() const { return core.ExcelWorkbook.Get()->Format(Shown()->format).number_format; }

  Scenario scenario;
  BExcelAPI api;
  BExcelExpEngCore core;
  BExcelExpEngFieldType fields{&core};
  Query row{"varndb"};
};

TEST_F(FieldTypes, CellAndSelectItemByType) {
  struct Row {
    std::string type;
    std::string field;
    std::string value;
    std::string cell;  ///< "number" for a number
    std::string item;
  };
  const std::vector<Row> rows = {
      {"char", "EmployeeName", "'O''Neil'", "O'Neil", "'O'Neil' AS EmployeeName"},
      {"char", "Gender", "'1'", "Male", "'1' AS Gender"},
      {"char", "Gender", "'0'", "Female", "'0' AS Gender"},
      {"char", "Gender", "'2'", "", "'2' AS Gender"},
      {"integer", "CareerCurrent", "2", "Yes", "2 AS CareerCurrent"},
      {"integer", "CareerCurrent", "0", "No", "0 AS CareerCurrent"},
      {"integer", "SponsorType", "1", "Amount", "1 AS SponsorType"},
      {"integer", "GovGrantType", "0", "Percentage", "0 AS GovGrantType"},
      {"integer", "GovGrantType", "7", "", "7 AS GovGrantType"},
      {"integer", "Children", "-3", "number", "-3 AS Children"},
      {"smallint", "CPFMAWOption", "-1", "No MAW Projection", "-1 AS CPFMAWOption"},
      {"smallint", "CPFMAWOption", "0", "Maximum Additional Wage (MAW) Limit", "0 AS CPFMAWOption"},
      {"smallint", "CPFMAWOption", "1", "Ordinary Wage Projection", "1 AS CPFMAWOption"},
      {"smallint", "CPFMAWOption", "2", "", "2 AS CPFMAWOption"},
      {"smallint", "IsMember", "1", "Yes", "1 AS IsMember"},
      {"smallint", "IsMember", "0", "No", "0 AS IsMember"},
      {"smallint", "IsMember", "5", "", "5 AS IsMember"},
      {"decimal", "Rate", "1234.5", "number", "1234.50 AS Rate"},
      {"double", "Rate", "-0.005", "number", "-0.01 AS Rate"},
      {"date", "HireDate", "'2024-02-29'", "29/02/2024", "'29/02/2024' AS HireDate"},
      {"date", "HireDate", "NULL", "", "'30/12/1899' AS HireDate"},
      {"time", "StartTime", "'08:05:00'", "08:05:00", "'08:05:00' AS StartTime"},
      {"timestamp", "Changed", "'2024-03-05 01:02:03'", "05/03/2024 01:02:03",
       "'05/03/2024 01:02:03' AS Changed"},
      {"timestamp", "Changed", "NULL", "", "'30/12/1899 00:00:00' AS Changed"}};
  for (const Row& test : rows) {
    row.SetSql("SELECT " + test.value + " AS " + test.field);
    row.Open();
    ASSERT_EQ(fields.Output("A1", test.type, test.field, &row, 1, 1), 1) << test.field;
    EXPECT_EQ(ShownText(), test.cell) << test.type << " " << test.field << " " << test.value;
    EXPECT_EQ(fields.GetSelectList(), test.item);
  }
}

TEST_F(FieldTypes, OnlyAmountsCarryTheAmountFormat) {
  row.SetSql("SELECT 1234.5 AS Rate, 7 AS Children");
  row.Open();
  fields.Output("A1", "integer", "Children", &row, 1, 1);
  EXPECT_EQ(ShownFormat(), "General");
  fields.Output("A1", "decimal", "Rate", &row, 1, 1);
  EXPECT_EQ(ShownFormat(), "#,0.00;-#,0.00");
  EXPECT_EQ(Shown()->number, 1234.5);
}

TEST_F(FieldTypes, WhatCannotBeReadGivesZeroAndNoFragment) {
  row.SetSql("SELECT 'someday' AS HireDate");
  row.Open();
  EXPECT_EQ(fields.Output("A1", "date", "HireDate", &row, 1, 1), 0);
  EXPECT_EQ(fields.Output("A1", "char", "NoSuchField", &row, 1, 1), 0);
  EXPECT_EQ(fields.Output("A1", "xml", "HireDate", &row, 1, 1), 1);
  EXPECT_EQ(fields.GetSelectList(), "");
}

TEST_F(FieldTypes, Blanks) {
  fields.OutputBlank("A1", "double", 1, 1, true);
  EXPECT_EQ(ShownText(), "number");
  EXPECT_EQ(Shown()->number, 0.0);
  fields.OutputBlank("A1", "double", 1, 1, false);
  EXPECT_EQ(ShownText(), "");
  EXPECT_EQ(ShownFormat(), "#,0.00;-#,0.00");
  fields.OutputBlank("A1", "integer", 1, 1, true);
  EXPECT_EQ(ShownText(), "");
}

TEST_F(FieldTypes, AMidnightTimestampIsADate) {
  EXPECT_EQ(fields.TimeStampDisplayFormat(ParseDateTime("2024-03-05")), "dd/mm/yyyy");
  EXPECT_EQ(fields.TimeStampDisplayFormat(ParseDateTime("2024-03-05 00:00:00.001")), "dd/mm/yyyy hh:nn:ss");
}

}  // namespace
}  // namespace excelexp
