#include "demo/DemoDatabase.h"

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "demo/demo_fixture.h"
#include "platform/database/SqliteDatabase.h"

namespace excelexp {
namespace {

using testing::IsEmpty;

std::string BytesOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return (std::ostringstream() << stream.rdbuf()).str();
}

std::vector<std::string> NamesIn(const TemporaryFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
    names.push_back(entry.path().filename());
  return names;
}

DemoOptions Options(int employees, std::uint64_t seed) {
  DemoOptions options;
  options.employees = employees;
  options.seed = seed;
  return options;
}

class DemoDatabase : public DemoTest {};

TEST(DemoSchema, GivesAnEmptyUsableDatabase) {
  const TemporaryFolder folder;
  SqliteWriter writer(folder.File("new.db"), SqliteWriter::Mode::kCreate);
  writer.Transaction([&] { writer.ExecuteScript(kDemoSchemaSql); });
  EXPECT_THAT(writer.Rows("PRAGMA foreign_key_check"), IsEmpty());
  for (const auto& view : writer.Rows("SELECT name FROM sqlite_master WHERE type = 'view'")) {
    const std::string& name = std::get<std::string>(view[0]);
    EXPECT_THAT(writer.Rows("SELECT * FROM " + name), IsEmpty()) << name;
  }
}

TEST(DemoSchema, DeclaresTheTypesThatReportsReadBy) {
  const TemporaryFolder folder;
  SqliteWriter writer(folder.File("new.db"), SqliteWriter::Mode::kCreate);
  writer.Transaction([&] { writer.ExecuteScript(kDemoSchemaSql); });
  const auto database = OpenSqliteDatabase(folder.File("new.db"));
  const struct {
    const char* table;
    const char* column;
    const char* type;
  } kColumns[] = {{"Personal", "Gender", "char"},
                  {"Employee", "EmployeeName", "char"},
                  {"Employee", "EmployeeSysId", "integer"},
                  {"Employee", "CPFMAWOption", "smallint"},
                  {"Employee", "PreviousSvcYear", "double"},
                  {"Employee", "BasicRate", "decimal"},
                  {"Employee", "HireDate", "date"},
                  {"Employee", "WorkStartTime", "time"},
                  {"Employee", "RecordUpdated", "timestamp"},
                  {"EmployeeCareer", "CareerCurrent", "integer"},
                  {"EmployeeTraining", "SponsorType", "integer"},
                  {"EmployeeTraining", "GovGrantType", "integer"},
                  {"AnlysItemRecord", "AnlysAmount1", "decimal"},
                  {"AnlysItemRecord", "AnlysDoubleValue1", "double"},
                  {"AnlysItemRecord", "AnlysCount1", "integer"},
                  {"AnlysItemRecord", "AnlysItem1Id", "char"},
                  {"AnlysItemRecord", "AnlysTimestamp1", "timestamp"}};
  for (const auto& column : kColumns) {
    EXPECT_EQ(database->ColumnType(column.table, column.column), column.type) << column.column;
  }
}

TEST_F(DemoDatabase, IsCleanAndNamesEveryKindOfThing) {
  EXPECT_THAT(Rows("PRAGMA foreign_key_check"), IsEmpty());
  EXPECT_EQ(Rows("PRAGMA integrity_check"), std::vector<std::string>{"ok"});
  EXPECT_EQ(Rows("SELECT COUNT(*) FROM Employee"), std::vector<std::string>{"25"});
  // What a worksheet would show nothing of if it were missing in the smallest demo.
  for (const char* sql :
       {"SELECT 1 FROM Personal WHERE PersonalSysId NOT IN (SELECT PersonalSysId FROM Employee)",
        "SELECT 1 FROM Employee WHERE CessationDate IS NOT NULL",
        "SELECT 1 FROM Employee WHERE HireDate >= '2024-01-01'",
        "SELECT 1 FROM EmployeeKeyCostCentre WHERE CostCentreId = ''",
        "SELECT 1 FROM PayRecBank WHERE PaymentCategory = 'ByCash'",
        "SELECT 1 FROM PayRecBank WHERE PaymentCategory = 'ByCheque'",
        "SELECT 1 FROM PayRecBank WHERE PaymentCategory = 'ByBank' AND PaymentSequence = 2",
        "SELECT 1 FROM PayRecord WHERE PayRecId = 'CORRECT'",
        "SELECT 1 FROM StaffMovement WHERE MovementTypeId = 'TRANSFER'",
        "SELECT 1 FROM LeaveRecord WHERE PayRecType = 'Adjust'",
        "SELECT 1 FROM LeaveRecord WHERE LeaveFrom LIKE '% 13:30:00'",
        "SELECT 1 FROM TimesheetItem WHERE PayItemId = 'TSOVER'",
        "SELECT 1 FROM Family GROUP BY PersonalSysId HAVING COUNT(*) > 2"}) {
    EXPECT_FALSE(Rows(sql).empty()) << sql;
  }
}

TEST_F(DemoDatabase, SameSeedSameBytesAndEmployeesDoNotDependOnTheirNumber) {
  const TemporaryFolder folder;
  WriteDemoDatabase(folder.File("again.db"));
  EXPECT_TRUE(BytesOf(folder.File("again.db")) == BytesOf(File()));
  WriteDemoDatabase(folder.File("other.db"), Options(25, 2));
  WriteDemoDatabase(folder.File("more.db"), Options(40, 1));
  const std::string pay = "SELECT * FROM PayRecItem WHERE EmployeeSysId <= 25";
  const std::string people = "SELECT * FROM Employee WHERE EmployeeSysId <= 25";
  for (const std::string& sql : {pay, people}) {
    EXPECT_EQ(Rows(folder.File("more.db"), sql), Rows(sql));
    EXPECT_NE(Rows(folder.File("other.db"), sql), Rows(sql));
  }
}

TEST_F(DemoDatabase, PayrollAddsUp) {
  const struct {
    const char* wrong;
    const char* sql;
  } kChecks[] = {
      {"gross is not the sum of its parts",
       "SELECT * FROM PayRecord WHERE ABS(BasicPay + TotalAllowance + OvertimePay + ShiftPay + "
       "TotalReimbursement - "
       "GrossWage) > 0.001"},
      {"net is not gross less deductions",
       "SELECT * FROM PayRecord WHERE ABS(GrossWage - TotalDeduction - NetWage) > 0.001 OR NetWage <= 0"},
      {"a total is not the sum of its items",
       "SELECT Pay.* FROM PayRecord AS Pay JOIN PayRecItem AS Item USING (PayRecYear, PayRecPeriod, "
       "EmployeeSysId, "
       "PayRecId) JOIN PayItem USING (PayItemId) GROUP BY PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId "
       "HAVING "
       "ABS(SUM(PayAmount * (PayItemKind = 'PayElement')) - BasicPay) > 0.001 OR "
       "ABS(SUM(PayAmount * (PayItemKind = 'Allowance')) - TotalAllowance) > 0.001 OR "
       "ABS(SUM(PayAmount * (PayItemKind = 'OTRecord')) - OvertimePay) > 0.001 OR "
       "ABS(SUM(PayAmount * (PayItemKind = 'ShiftRecord')) - ShiftPay) > 0.001 OR "
       "ABS(SUM(PayAmount * (PayItemKind = 'Reimbursement')) - TotalReimbursement) > 0.001 OR "
       "ABS(SUM(PayAmount * (PayItemKind = 'Deduction')) - TotalDeduction) > 0.001"},
      {"payments are not the net wage",
       "SELECT Pay.* FROM PayRecord AS Pay LEFT JOIN PayRecBank USING (PayRecYear, PayRecPeriod, "
       "EmployeeSysId, "
       "PayRecId) GROUP BY PayRecYear, PayRecPeriod, EmployeeSysId, PayRecId "
       "HAVING ABS(TOTAL(BankPaymentAmt) - NetWage) > 0.001"},
      {"pay outside the employment",
       "SELECT * FROM PayRecord JOIN PayPeriod ON PayYear = PayRecYear AND PayPeriodNo = PayRecPeriod JOIN "
       "Employee "
       "USING (EmployeeSysId) WHERE HireDate > PeriodEnd OR CessationDate < PeriodStart"},
      {"a month employed but not paid",
       "SELECT * FROM PayPeriod JOIN Employee ON HireDate <= PeriodEnd AND COALESCE(CessationDate, "
       "PeriodEnd) >= "
       "PeriodStart AND BasicRateType = 'Monthly' WHERE PayYear = 2024 AND NOT EXISTS (SELECT 1 FROM "
       "PayRecord WHERE "
       "PayRecYear = PayYear AND PayRecPeriod = PayPeriodNo AND PayRecord.EmployeeSysId = "
       "Employee.EmployeeSysId AND "
       "PayRecId = 'MONTHEND')"},
      {"a timesheet day is not the sum of its items",
       "SELECT * FROM TimesheetRecord JOIN TimesheetItem USING (TsYear, TsPeriod, EmployeeSysId, JobCodeId, "
       "TsDate) "
       "GROUP BY TsYear, TsPeriod, EmployeeSysId, JobCodeId, TsDate HAVING ABS(SUM(TsItemAmount) - TsAmount) "
       "> 0.001"},
      {"timesheets are not what was paid for them",
       "SELECT PayRecPeriod, EmployeeSysId, TOTAL(TsAmount), BasicPay, OvertimePay, TotalAllowance FROM "
       "PayRecord JOIN "
       "Employee USING (EmployeeSysId) LEFT JOIN TimesheetRecord USING (EmployeeSysId) WHERE BasicRateType = "
       "'Hourly' "
       "AND PayRecId = 'MONTHEND' AND PayRecPeriod >= 10 AND TsPeriod = PayRecPeriod GROUP BY PayRecPeriod, "
       "EmployeeSysId HAVING ABS(TOTAL(TsAmount) - BasicPay - OvertimePay - TotalAllowance) > 0.001"},
      {"more leave taken than given", "SELECT * FROM LeaveRecordSum WHERE LeaveBalance < 0"},
      {"confirmed, moved or gone before hired",
       "SELECT * FROM StaffMovement JOIN Employee USING (EmployeeSysId) WHERE MovementDate < HireDate"},
      {"an age outside every group",
       "SELECT * FROM Employee WHERE (SELECT COUNT(*) FROM EmployeeBasis WHERE BasisSet = 'CostCentreAge' "
       "AND PayYear = "
       "2024 AND EmployeeBasis.EmployeeSysId = Employee.EmployeeSysId) <> 1"},
  };
  const TemporaryFolder folder;
  WriteDemoDatabase(folder.File("large.db"), Options(400, 7));
  for (const auto& check : kChecks) {
    EXPECT_THAT(Rows(check.sql), IsEmpty()) << check.wrong;
    EXPECT_THAT(Rows(folder.File("large.db"), check.sql), IsEmpty()) << check.wrong;
  }
}

TEST_F(DemoDatabase, MovementsExplainTheHeadcount) {
  EXPECT_EQ(Rows("SELECT SUM(AnlysCount1) FROM SetupMovementYear WHERE AnlysItemRecYear = 2024 AND "
                 "AnlysItemRecPeriodMonth = 12 AND AnlysItem1Id = 'MovementClosing'"),
            Rows("SELECT COUNT(*) FROM Employee WHERE CessationDate IS NULL"));
  for (const char* setup : {"SetupMovementYear", "SetupMovementMonth"}) {
    EXPECT_THAT(
        Rows(
            "SELECT Basis1Id, AnlysItemRecYear, AnlysItemRecPeriodMonth FROM " + std::string(setup) +
            " GROUP BY 1, 2, 3 HAVING SUM(AnlysCount1 * CASE AnlysItem1Id WHEN 'MovementOpening' THEN 1 WHEN "
            "'MovementHired' THEN 1 WHEN 'MovementIn' THEN 1 WHEN 'MovementConfirmed' THEN 0 ELSE -1 END) <> "
            "0"),
        IsEmpty())
        << setup;
  }
}

// A code that is not set must be '': a report groups by it and then looks the group up again.
TEST_F(DemoDatabase, FunctionsAnswerForEverybody) {
  const auto database = OpenSqliteDatabase(File());
  const auto one = [&](const std::string& sql) {
    return database->Select("SELECT " + sql + " AS V")->AsText(0, 0);
  };
  EXPECT_EQ(one("FGetEmployeeId(3)"), "E00003");
  EXPECT_EQ(one("FGetCodeDescription(3, 'EmpTitleDesc') || FGetCodeDescriptionByPersonal(3, 'PerTitleDesc')"),
            "MrMr");
  const std::string leaver =
      Rows("SELECT EmployeeSysId FROM Employee WHERE CessationDate IS NULL LIMIT 1")[0];
  EXPECT_EQ(one("FGetCodeDescription(" + leaver + ", 'CessationDesc') IS ''"), "1");
  EXPECT_EQ(one("FGetCodeDescriptionByPersonal(26, 'DepartmentDesc') IS ''"), "1");
  EXPECT_EQ(one("FGetCodeDescriptionByPersonal(26, 'IdentityTypeDesc')"), "Passport");
  EXPECT_EQ(one("(SELECT COUNT(*) FROM Employee WHERE FGetEmployeeKeyCostCentre(EmployeeSysId) = '')"),
            Rows("SELECT COUNT(*) FROM Employee WHERE EmployeeSysId NOT IN (SELECT EmployeeSysId FROM "
                 "EmployeeCostCentre)")[0]);
  EXPECT_EQ(one("(SELECT COUNT(*) FROM Employee WHERE FGetConfirmationDue(EmployeeSysId) <> ConfirmDate)"),
            "0");
  EXPECT_EQ(one("FGetEmployeeKeyShiftTeam(1) IS NULL AND FGetMVCCurrentAccPercent(1) >= 0 AND "
                "FGetRetirementDue(1) > '2024' AND FGetEmployeeCurrentTotalWage(1) > 0"),
            "1");
}

TEST(DemoFile, ExistingFileStaysUnlessItMayBeReplaced) {
  const TemporaryFolder folder;
  const std::string file = folder.File("demo.db");
  std::ofstream(file) << "precious";
  EXPECT_THROW(WriteDemoDatabase(file, Options(1, 1)), std::system_error);
  EXPECT_EQ(BytesOf(file), "precious");
  DemoOptions options = Options(1, 1);
  options.overwrite = true;
  WriteDemoDatabase(file, options);
  EXPECT_EQ(BytesOf(file).substr(0, 6), "SQLite");
  EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"demo.db"});
}

TEST(DemoFile, AbandonedWorkLeavesNothing) {
  const TemporaryFolder folder;
  DemoOptions options = Options(100, 1);
  std::int64_t steps = 0;
  options.progress = [&](std::int64_t done, std::int64_t total) {
    EXPECT_EQ(total, 1200);
    steps = done;
    if (done >= 500) throw std::runtime_error("stop");
  };
  EXPECT_THROW(WriteDemoDatabase(folder.File("demo.db"), options), std::runtime_error);
  EXPECT_EQ(steps, 500);
  EXPECT_THAT(NamesIn(folder), IsEmpty());
}

TEST(DemoFile, OneThatAppearsMeanwhileIsNotReplaced) {
  const TemporaryFolder folder;
  const std::string file = folder.File("demo.db");
  DemoOptions options = Options(1, 1);
  options.progress = [&](std::int64_t, std::int64_t) { std::ofstream(file) << "somebody else's"; };
  EXPECT_THROW(WriteDemoDatabase(file, options), std::system_error);
  EXPECT_EQ(BytesOf(file), "somebody else's");
  EXPECT_EQ(NamesIn(folder), std::vector<std::string>{"demo.db"});
}

TEST(DemoFile, NumberOfEmployeesHasBounds) {
  const TemporaryFolder folder;
  EXPECT_THROW(WriteDemoDatabase(folder.File("a.db"), Options(0, 1)), std::invalid_argument);
  EXPECT_THROW(WriteDemoDatabase(folder.File("b.db"), Options(100'001, 1)), std::invalid_argument);
  EXPECT_THROW(WriteDemoDatabase(folder.File("no/such/folder.db"), Options(1, 1)), std::exception);
}

}  // namespace
}  // namespace excelexp
