#include "platform/database/SqliteDatabase.h"

#include <sqlite3.h>

#include <chrono>
#include <fstream>

#include "platform/database/DatabaseError.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::ErrorOf;
using test::Rows;
using test::TestDatabase;

std::string OpenError(const std::string& file, SqliteOptions options = {}) {
  try {
    OpenSqliteDatabase(file, options);
    return "";
  } catch (const DatabaseError& error) {
    EXPECT_EQ(error.Sql(), "");
    return error.Message();
  }
}

TEST(SqliteDatabase, FileThatIsNoDatabaseIsOneClearErrorAndNoFile) {
  const TestDatabase folder("CREATE TABLE t(x)");
  const std::string path = folder.Folder() + "/";
  std::ofstream(path + "text.db") << std::string(4096, 'x');
  std::ofstream(path + "empty.db");
  for (const std::string& name :
       {std::string("missing.db"), std::string(":memory:"), std::string("file:new.db?mode=rwc")})
    EXPECT_EQ(OpenError(path + name), "there is no database file '" + path + name + "'");
  EXPECT_EQ(OpenError(""), "there is no database file ''");
  EXPECT_EQ(OpenError(path), "'" + path + "' is not a file");
  EXPECT_EQ(OpenError(path + "text.db"), "'" + path + "text.db' is not a database");
  EXPECT_EQ(OpenError(path + "empty.db"), "'" + path + "empty.db' is empty, not a database");
  EXPECT_EQ(folder.FileNames(), (std::set<std::string>{"empty.db", "test.db", "text.db"}));
  EXPECT_THROW(SqliteWriter(path + "missing.db"), DatabaseError);
  EXPECT_THROW(SqliteWriter(path + "test.db", SqliteWriter::Mode::kCreate), DatabaseError);
  EXPECT_THROW(SqliteWriter(path + "no/such/folder.db", SqliteWriter::Mode::kCreate), DatabaseError);
}

TEST(SqliteDatabase, ColumnTypesFollowTheDeclaredTypes) {
  const TestDatabase file(
      R"(CREATE TABLE T(a CHAR(3), b VarChar (40), c INT, d INTEGER, e SMALLINT, f DOUBLE, g Double Precision,
    h REAL, i FLOAT, j DECIMAL(12,2), k NUMERIC(5), l DATE, m TIME, n TIMESTAMP, o DATETIME, p TEXT, q BLOB, r);
    CREATE VIEW V AS SELECT l AS Hired, a || 'x' AS Expr FROM T)");
  const auto database = file.Open();
  std::string types;
  for (char c = 'a'; c <= 'r'; ++c) types += database->ColumnType("t", std::string(1, c)) + " ";
  EXPECT_EQ(
      types,
      "char char integer integer smallint double double double double decimal decimal date time timestamp "
      "timestamp char blob  ");
  EXPECT_EQ(database->ColumnType("V", "HIRED"), "date");
  EXPECT_EQ(database->ColumnType("V", "Expr"), "");
  EXPECT_EQ(database->ColumnType("T", "nope") + database->ColumnType("nope", "a"), "");
}

TEST(SqliteDatabase, CountryAndDateFormatComeFromTheParameters) {
  const TestDatabase bare("CREATE TABLE t(x)");
  EXPECT_EQ(bare.Open()->Country() + "," + bare.Open()->DateFormat(), ",dd/mm/yyyy");
  const TestDatabase set(
      "CREATE TABLE SystemParameter(ParameterId VARCHAR(40), ParameterValue VARCHAR(200));"
      "INSERT INTO SystemParameter VALUES('Country', 'Indonesia'), ('DateFormat', 'yyyy-mm-dd')");
  EXPECT_EQ(set.Open()->Country() + "," + set.Open()->DateFormat(), "Indonesia,yyyy-mm-dd");
}

TEST(SqliteDatabase, MonthsAreWholeAndNowIsTheClocks) {
  const TestDatabase file(
      "CREATE TABLE Employee(EmployeeSysId INTEGER PRIMARY KEY, HireDate DATE, PreviousSvcYear DOUBLE);"
      "INSERT INTO Employee VALUES(1, '2020-02-29', 1.5)");
  int asked = 0;
  SqliteOptions options;
  options.now = [&] { return DateTime{EncodeDate(2024, 2, 28).days + 0.75 + asked++}; };
  const auto database = file.Open(options);
  const struct {
    const char* from;
    const char* to;
    const char* months;
  } cases[] = {
      {"'2024-01-15'", "'2024-02-14'", "0"},  {"'2024-01-15'", "'2024-02-15'", "1"},
      {"'2024-01-31'", "'2024-02-28'", "0"},  {"'2024-01-31'", "'2024-02-29'", "1"},
      {"'2024-01-31'", "'2024-04-30'", "3"},  {"'2023-12-31'", "'2024-01-01'", "0"},
      {"'2020-02-29'", "'2021-02-28'", "12"}, {"'2024-02-15'", "'2024-01-15'", "-1"},
      {"'2024-02-14'", "'2024-01-15'", "0"},  {"'2024-01-15 18:00'", "'2024-02-15 06:00'", "1"},
      {"NULL", "'2024-01-01'", "~"},          {"''", "'2024-01-01'", "~"},
  };
  for (const auto& each : cases) {
    const std::string sql = std::string("SELECT MONTHS(") + each.from + ", " + each.to + ")";
    EXPECT_EQ(Rows(*database->Select(sql)), each.months) << sql;
  }
  EXPECT_EQ(ErrorOf(*database, "SELECT MONTHS('soon', '2024-01-01')"), "'soon' is not a date or time");
  const std::string service =
      "SELECT ROUND(CAST(MONTHS(Employee.HireDate, NOW())AS Double)/12 + PreviousSvcYear, 2) AS "
      "ServiceYears, NOW(), "
      "NOW() FROM Employee";
  EXPECT_EQ(Rows(*database->Select(service)), "5.42|2024-02-28 18:00:00|2024-02-28 18:00:00");
  EXPECT_EQ(Rows(*database->Select(service)), "5.5|2024-02-29 18:00:00|2024-02-29 18:00:00");  // asked anew
}

TEST(SqliteDatabase, StoredFunctionsAreStatementsOfTheDialect) {
  const TestDatabase file(R"(
    CREATE TABLE Personal(PersonalSysId INTEGER PRIMARY KEY, Race VARCHAR(10));
    CREATE TABLE Employee(EmployeeSysId INTEGER PRIMARY KEY, PersonalSysId INTEGER REFERENCES Personal, Dept VARCHAR(10));
    INSERT INTO Personal VALUES(1, 'R1'), (2, 'R2');
    INSERT INTO Employee VALUES(10, 1, 'D1'), (11, 2, NULL);
    CREATE TABLE DatabaseFunction(FunctionName VARCHAR(40), ArgumentCount INTEGER, FunctionSql VARCHAR(400));
    INSERT INTO DatabaseFunction VALUES
      ('FGetCodeDescription', 2, 'SELECT CASE ?2 WHEN ''Dept'' THEN Dept ELSE Race END FROM Employee JOIN Personal WHERE EmployeeSysId = ?1'),
      ('FOuter', 1, 'SELECT ''<'' || FGetCodeDescription(?1, ''Dept'') || ''>'' FROM DUMMY'),
      ('FFactorial', 1, 'SELECT CASE WHEN ?1 <= 1 THEN 1 ELSE ?1 * FFactorial(?1 - 1) END'),
      ('FBroken', 0, 'SELECT x FROM Nowhere');
    CREATE VIEW ViewDept AS SELECT FGetCodeDescription(EmployeeSysId, 'Dept') AS d FROM Employee;)");
  const auto database = file.Open();
  EXPECT_EQ(Rows(*database->Select("SELECT FGetCodeDescription(Employee.EmployeeSysId, 'Dept') AS Dept, "
                                   "fgetcodedescription(EmployeeSysId, 'Race'), FOuter(EmployeeSysId), "
                                   "FGetCodeDescription(99, 'Race') FROM Employee ORDER BY EmployeeSysId")),
            "D1|R1|<D1>|~/~|R2|~|~");
  EXPECT_EQ(Rows(*database->Select("SELECT FFactorial(5), FFactorial(5.0), d FROM ViewDept ORDER BY d")),
            "120|120|~/120|120|D1");
  EXPECT_EQ(ErrorOf(*database, "SELECT FBroken()"), "function FBroken: no such table: Nowhere");
  EXPECT_NE(ErrorOf(*database, "SELECT FFactorial(1, 2)"), "");
}

TEST(SqliteDatabase, FunctionTableThatMakesNoSenseIsRefused) {
  const struct {
    const char* row;
    const char* error;
  } cases[] = {
      {"('ROUND', 2, 'SELECT 0')", "table DatabaseFunction redefines the function ROUND"},
      {"('now', 0, 'SELECT 0')", "table DatabaseFunction redefines the function now"},
      {"('F', -1, 'SELECT 0')",
       "table DatabaseFunction has a row without name, SQL or a sensible argument count: 'F'"},
      {"('', 0, 'SELECT 0')",
       "table DatabaseFunction has a row without name, SQL or a sensible argument count: ''"},
      {"('G', 0, 'SELECT 0'), ('g', 1, 'SELECT 1')", "table DatabaseFunction defines the function g twice"},
  };
  for (const auto& each : cases) {
    const TestDatabase file(
        std::string("CREATE TABLE DatabaseFunction(FunctionName, ArgumentCount, FunctionSql);"
                    "INSERT INTO DatabaseFunction VALUES") +
        each.row);
    EXPECT_EQ(OpenError(file.File()), each.error);
  }
}

TEST(SqliteDatabase, CatalogueListsTablesAndViewsOnly) {
  const TestDatabase file(
      "CREATE TABLE KeyWord(a INTEGER PRIMARY KEY AUTOINCREMENT, b, c AS (b + 1)); CREATE INDEX i ON "
      "KeyWord(b);"
      "CREATE VIEW V AS SELECT a FROM KeyWord; CREATE VIEW Broken AS SELECT x FROM Nowhere");
  const auto database = file.Open();
  const std::string of = "SELECT column_name FROM SysTable JOIN SysColumn WHERE table_name = ";
  EXPECT_EQ(Rows(*database->Select(of + "'V'")), "a");
  EXPECT_EQ(Rows(*database->Select(of + "'keyword' AND column_id > 1")), "b/c");
  EXPECT_EQ(Rows(*database->Select(of + "'V' OR table_name = 'KeyWord' ORDER BY 1")), "a/a/b/c");
  EXPECT_EQ(Rows(*database->Select(
                "SELECT table_name, table_type, Count(Column_Name) FROM SysTable LEFT JOIN SysColumn "
                "GROUP BY table_name ORDER BY 1")),
            "Broken|view|0/KeyWord|table|3/V|view|1");
  EXPECT_EQ(Rows(*database->Select("SELECT column_name FROM SysTable JOIN SysColumn WHERE 'KEYWORD' = "
                                   "table_name AND column_name = 'B'")),
            "b");
  EXPECT_EQ(database->Select("SELECT * FROM KeyWord")->ColumnCount(), 3);
}

TEST(SqliteDatabase, TraceTellsEveryFailure) {
  const TestDatabase file("CREATE TABLE t(x)");
  std::string trace;
  SqliteOptions options;
  options.on_failure = [&](const std::string& sql, const std::string& message) {
    trace += sql + " -> " + message + "\n";
  };
  const auto database = file.Open(options);
  for (const char* sql : {"SELECT y FROM t", "SELECT x FROM t", "SELECT y FROM t"}) ErrorOf(*database, sql);
  EXPECT_EQ(trace, "SELECT y FROM t -> no such column: y\nSELECT y FROM t -> no such column: y\n");
  EXPECT_THAT([&] { database->Select("SELECT y FROM t"); },
              testing::ThrowsMessage<DatabaseError>("no such column: y; statement: SELECT y FROM t"));
}

TEST(SqliteDatabase, JoinedResultHasItsColumnsUnderTheirNames) {
  const TestDatabase file(
      "CREATE TABLE P(Id INTEGER PRIMARY KEY, Name); CREATE TABLE E(EId INTEGER PRIMARY KEY, Id REFERENCES "
      "P, Name);"
      "CREATE TABLE R(Basis VARCHAR(10)); INSERT INTO P VALUES(1, 'p'); INSERT INTO E VALUES(7, 1, 'e');"
      "INSERT INTO R VALUES('7')");
  const auto result = file.Open()->Select("SELECT *, P.Name FROM R JOIN (E JOIN P) ON Basis = EId");
  EXPECT_EQ(result->AsText(0, result->ColumnIndex("NAME")), "e");  // the first of that name counts
  EXPECT_EQ(result->ColumnName(result->ColumnCount() - 1), "Name");
  EXPECT_EQ(Rows(*result), "7|1|7|e|p|p");
  EXPECT_EQ(result->ColumnIndex("Nam"), -1);
  EXPECT_THROW(static_cast<void>(result->AsText(1, 0)), std::out_of_range);
  EXPECT_THROW(static_cast<void>(result->AsText(0, 6)), std::out_of_range);
}

}  // namespace
}  // namespace excelexp
