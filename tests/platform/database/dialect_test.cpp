#include "platform/database/Dialect.h"
#include "platform/database/DistinctOrder.h"

#include <fstream>
#include <sstream>

#include "platform/database/DatabaseError.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::ErrorOf;
using test::Rows;
using test::TestDatabase;

constexpr char kSchema[] = R"(
CREATE TABLE Personal(PersonalSysId INTEGER PRIMARY KEY, PersonalName VARCHAR(40));
CREATE TABLE Employee(EmployeeSysId INTEGER PRIMARY KEY, PersonalSysId INTEGER REFERENCES Personal,
  EmployeeName VARCHAR(40), HireDate DATE);
CREATE TABLE Company(CompanyId CHAR(3) PRIMARY KEY);
CREATE TABLE Transfer(Code INTEGER, FromId CHAR(3) REFERENCES Company, ToId CHAR(3) REFERENCES Company);
CREATE TABLE AnlysItemRecord(AnlysProjectId VARCHAR(20), Basis1Id VARCHAR(20), SectionId INTEGER REFERENCES
  AnlysDispSection, AnlysAmount1 DOUBLE);
CREATE TABLE AnlysItemSetup(AnlysItemTypeId VARCHAR(20), Country CHAR(2), SetupDesc VARCHAR(20),
  PRIMARY KEY(AnlysItemTypeId, Country));
CREATE TABLE AnlysDispSection(SectionId INTEGER PRIMARY KEY, AnlysItemTypeId VARCHAR(20), Country CHAR(2),
  FOREIGN KEY(AnlysItemTypeId, Country) REFERENCES AnlysItemSetup);
CREATE TABLE ColourCodeMapping(ColourCode VARCHAR(10) PRIMARY KEY, ColourCodeIndex INTEGER);
CREATE TABLE ColourScheme(ColourSchemeId VARCHAR(20), ColourSchColour VARCHAR(10) REFERENCES ColourCodeMapping);
CREATE TABLE KeyWord(KeyWordId VARCHAR(20), KeywordCategory VARCHAR(20));
CREATE TABLE "Odd ""name"""("the id" INTEGER, "from" INTEGER REFERENCES Employee);
CREATE TABLE Loose(PersonalSysId INTEGER, Text VARCHAR(10));
INSERT INTO Personal VALUES(1, 'Ann'), (2, 'Bob');
INSERT INTO Employee VALUES(10, 1, 'Ann E', '2004-02-29');
INSERT INTO Company VALUES('001');
INSERT INTO AnlysItemSetup VALUES('PayElement', 'ID', 'Pay'), ('PayElement', 'MY', 'Other'), ('Allowance', 'ID', 'Alw');
INSERT INTO AnlysDispSection VALUES(7, 'PayElement', 'ID'), (8, 'Allowance', 'ID');
INSERT INTO AnlysItemRecord VALUES('P', '10', 7, 1.5), ('P', '10', 8, 2.5), ('Q', '11', 7, 4);
INSERT INTO ColourCodeMapping VALUES('Red', 3);
INSERT INTO ColourScheme VALUES('S1', 'Red'), ('S2', NULL);
INSERT INTO KeyWord VALUES('Daily', 'Basic Rate Type'), ('Pay', 'Other');
INSERT INTO "Odd ""name""" VALUES(5, 10);
INSERT INTO Loose VALUES(1, 'loose');
)";

struct Shape {
  const char* sql;
  const char* rows;
};

TEST(Dialect, JoinsWithoutOnFollowTheDeclaredKey) {
  const TestDatabase file(kSchema);
  const auto database = file.Open();
  const Shape shapes[] = {
      // two tables; the key column they share needs no table name
      {"SELECT DISTINCT EmployeeSysId FROM Employee JOIN Personal WHERE PersonalSysId = 1", "10"},
      {"SELECT *, 5 AS X FROM Employee Join Personal WHERE EmployeeSysId = 10",
       "10|1|Ann E|2004-02-29|Ann|5"},
      {"SELECT * FROM ColourScheme JOIN ColourCodeMapping WHERE                 ColourSchemeId IN ('S1',   "
       "'S2')",
       "S1|Red|Red|3"},
      {"SELECT Personal.PersonalSysId, Employee.PersonalSysId, PersonalSysId FROM Employee INNER JOIN "
       "Personal",
       "1|1|1"},
      {"SELECT E.EmployeeName, P.PersonalName FROM Employee AS E JOIN Personal P", "Ann E|Ann"},
      {"SELECT P.PersonalName FROM main.Employee JOIN main.Personal \"P\"", "Ann"},
      // the key of either side, outer joins
      {"SELECT Personal.PersonalSysId, EmployeeName FROM Personal LEFT OUTER JOIN Employee WHERE "
       "Personal.PersonalSysId = 2",
       "2|~"},
      {"SELECT PersonalSysId, EmployeeSysId FROM Personal LEFT JOIN Employee ORDER BY 1", "1|10/2|~"},
      // three in a row; a composite key
      {"SELECT AnlysAmount1, SetupDesc FROM AnlysItemRecord JOIN AnlysDispSection JOIN AnlysItemSetup"
       " WHERE AnlysItemTypeId = 'PayElement' AND Country = 'ID' AND SectionId = 7 AND AnlysProjectId = 'P'",
       "1.5|Pay"},
      {"SELECT DISTINCT AnlysItemTypeId FROM AnlysItemRecord JOIN AnlysDispSection JOIN AnlysItemSetup ORDER "
       "BY 1",
       "Allowance/PayElement"},
      // a parenthesised join on either side, with and without ON
      {"SELECT DISTINCT Basis1Id, '' AS Basis2Id, Personal.PersonalName, Employee.PersonalSysId FROM "
       "AnlysItemRecord JOIN (Employee JOIN Personal)                ON Basis1Id = EmployeeSysId WHERE "
       "AnlysProjectId = 'P' AND Basis1Id IN (SELECT DISTINCT EmployeeSysId FROM Employee JOIN Personal "
       "WHERE "
       "Employee.HireDate = '2004-02-29') ORDER BY Personal.PersonalName",
       "10||Ann|1"},
      {"SELECT SetupDesc FROM AnlysItemRecord JOIN (AnlysDispSection JOIN AnlysItemSetup) WHERE AnlysAmount1 "
       "= 2.5",
       "Alw"},
      {"SELECT SetupDesc FROM (AnlysItemRecord JOIN AnlysDispSection) JOIN AnlysItemSetup WHERE AnlysAmount1 "
       "= 2.5",
       "Alw"},
      {"SELECT SetupDesc FROM ((AnlysItemRecord JOIN AnlysDispSection)) LEFT JOIN (AnlysItemSetup) ORDER BY "
       "1 LIMIT 1",
       "Alw"},
      // beside derived tables and comma lists
      {"SELECT Basis1Id, KeyWord.KeyWordId, EmployeeName FROM AnlysItemRecord, (SELECT * FROM Keyword WHERE "
       "KeywordCategory='Basic Rate Type' UNION SELECT '','') AS KeyWord, Employee JOIN Personal WHERE "
       "Basis1Id = EmployeeSysId AND AnlysAmount1 = 1.5 ORDER BY 2",
       "10||Ann E/10|Daily|Ann E"},
      {"SELECT Text, PersonalName FROM Loose, Employee JOIN Personal", "loose|Ann"},
      {"SELECT T, PersonalName FROM (SELECT PersonalSysId + 1 AS PersonalSysId, Text AS T FROM Loose) AS D, "
       "Employee JOIN Personal",
       "loose|Ann"},
      // any letter case, any blanks, comments in between
      {"select PersonalName from EMPLOYEE\t left\n outer   /* JOIN Company */ join -- no ON\n personal",
       "Ann"},
      {"SELECT \"the id\", EmployeeName FROM [Odd \"name\"] JOIN `Employee`", "5|Ann E"},
      // joins that have their condition, and names that only look like tables
      {"SELECT PersonalName FROM Personal JOIN Company ON CompanyId = '001' WHERE PersonalSysId = 1", "Ann"},
      {"SELECT EmployeeName FROM Employee NATURAL JOIN Personal CROSS JOIN Company", "Ann E"},
      {"SELECT EmployeeName FROM Employee JOIN Personal USING (PersonalSysId), Company", "Ann E"},
      {"SELECT a FROM (SELECT 1 AS a) x JOIN (SELECT 2 AS b) y ON x.a IS DISTINCT FROM y.b AND b IN (SELECT "
       "EmployeeSysId - 8 FROM Employee JOIN Personal)",
       "1"},
      {"WITH Company(PersonalSysId) AS (SELECT EmployeeSysId FROM Employee JOIN Personal) SELECT * FROM "
       "Company "
       "JOIN Loose ON 1",
       "10|1|loose"},
      {"SELECT 'FROM Employee JOIN Company', \"PersonalName\" FROM Personal -- JOIN Company\n WHERE "
       "PersonalName "
       "<> 'A JOIN ''B' AND PersonalSysId=1",
       "FROM Employee JOIN Company|Ann"},
      {"SELECT (SELECT Count(*) FROM Employee JOIN Personal) + 1 FROM DUMMY", "2"},
      {"SELECT Count(Column_Name) as NoOfColumn FROM SysTable Join SysColumn WHERE table_name='Keyword'",
       "2"},
      {"SELECT Count(Column_Name) FROM SysTable Join SysColumn WHERE table_name='nothing'", "0"},
      {"SELECT 'a' AS A, 2 AS B FROM DUMMY", "a|2"},
  };
  for (const Shape& shape : shapes) {
    try {
      EXPECT_EQ(Rows(*database->Select(shape.sql)), shape.rows) << shape.sql;
    } catch (const DatabaseError& error) {
      ADD_FAILURE() << error.what();
    }
  }
}

/// A condition on Records(Basis1Id char, Year int) and People(PersonId int, Code char), and what the rewriter
/// makes of it; "" where it leaves it alone.
using Condition = std::pair<std::string, std::string>;

void ExpectRewritten(const std::vector<Condition>& conditions) {
  const TableShape records{"Records", {{"Basis1Id", "varchar(40)"}, {"Year", "integer"}}, {}};
  const TableShape people{"People", {{"PersonId", "integer"}, {"Code", "varchar(10)"}}, {}};
  const FindTable find = [&](std::string_view name) -> const TableShape* {
    return SameName(name, "Records") ? &records : SameName(name, "People") ? &people : nullptr;
  };
  const std::string from = "SELECT * FROM Records WHERE ";
  for (const auto& [condition, rewritten] : conditions)
    EXPECT_EQ(RewriteSql(from + condition, find), from + (rewritten.empty() ? condition : rewritten));
}

TEST(Dialect, ATextIsLookedForAmongIntegersAsText) {
  const std::string cast = "CAST(PersonId AS TEXT)";
  ExpectRewritten(
      {{"Basis1Id IN (SELECT PersonId FROM People)", "Basis1Id IN (SELECT " + cast + " FROM People)"},
       {"Year = 1 AND records.basis1id not in  ( select distinct People.PersonId from People WHERE 1)",
        "Year = 1 AND records.basis1id not in  ( select  CAST(People.PersonId AS TEXT) from People WHERE 1)"},
       {"Basis1Id IN (SELECT DISTINCT PersonId FROM People LIMIT 2)",
        "Basis1Id IN (SELECT DISTINCT " + cast + " FROM People LIMIT 2)"},
       {"Basis1Id IN (SELECT DISTINCT Code FROM People)", ""},
       {"Year IN (SELECT PersonId FROM People)", ""},
       {"Basis1Id IN (SELECT Code FROM People)", ""},
       {"Basis1Id IN (SELECT PersonId + 1 FROM People)", ""},
       {"Basis1Id IN (SELECT PersonId FROM People UNION SELECT 'x')", ""},
       {"Basis1Id IN (SELECT PersonId FROM (SELECT PersonId FROM People) AS D)", ""},
       {"Basis1Id || 'x' IN (SELECT PersonId FROM People)", ""},
       {"'a' || Basis1Id IN (SELECT PersonId FROM People)", ""},
       {"Basis1Id IN ('1', '2')", ""},
       {"Basis1Id IN (SELECT", ""}});
}

TEST(Dialect, AListOfTheValueItselfIsAskedForExistence) {
  ExpectRewritten({
      {"Records.Year IN (SELECT PersonId FROM People WHERE PersonId = Records.Year)",
       "EXISTS (SELECT PersonId FROM People WHERE PersonId = Records.Year)"},
      {"1 AND records.year  in(SELECT PersonId FROM People WHERE personid=RECORDS.YEAR) AND Year = 2",
       "1 AND EXISTS(SELECT PersonId FROM People WHERE personid=RECORDS.YEAR) AND Year = 2"},
      {"NOT Records.Year IN (SELECT PersonId FROM People WHERE PersonId = ?1) AND Year = 2",
       "NOT (Records.Year = ?1 AND EXISTS (SELECT PersonId FROM People WHERE PersonId = ?1)) AND Year = 2"},
      {"Records.Year IN (SELECT PersonId FROM People WHERE PersonId = ?)", ""},
      {"Records.Year IN (SELECT PersonId FROM People WHERE PersonId = ?1 + 1)", ""},
      // Without a table the value could be a column of the inner one; so it could with the inner one's name.
      {"Year IN (SELECT PersonId FROM People WHERE PersonId = Year)", ""},
      {"Records.Year IN (SELECT Year FROM Records WHERE Year = Records.Year)", ""},
      {"Records.Year NOT IN (SELECT PersonId FROM People WHERE PersonId = Records.Year)", ""},
      {"Records.Year IN (SELECT PersonId FROM People WHERE PersonId = Records.Year OR 1)", ""},
      {"Records.Year IN (SELECT PersonId FROM People WHERE Code = Records.Year)", ""},
      {"Records.Year IN (SELECT PersonId FROM People WHERE PersonId = Records.Year + 1)", ""},
      {"Records.Year IN (SELECT PersonId FROM People)", ""},
      // Texts may be compared in more ways than one.
      {"Records.Basis1Id IN (SELECT Code FROM People WHERE Code = Records.Basis1Id)", ""},
      {"Records.Year + Records.Year IN (SELECT PersonId FROM People WHERE PersonId = Records.Year)", ""},
  });
}

TEST(Dialect, OnlyAnOrderOfAllDistinctColumnsIsSortedLast) {
  const std::string from = " FROM t WHERE a IN (SELECT x FROM u ORDER BY x) ";
  const auto wrapped = [&](const std::string& columns) {
    return "SELECT * FROM (SELECT DISTINCT " + columns + from + ") ORDER BY ";
  };
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"SELECT DISTINCT a, t.b AS c" + from + "ORDER BY a, T.b", wrapped("a, t.b AS c") + "1, 2"},
      {"SELECT DISTINCT a, b" + from + "order by b DESC, a asc", wrapped("a, b") + "2 DESC, 1 asc"},
      {"SELECT DISTINCT \"a b\"" + from + "ORDER BY \"a b\"", wrapped("\"a b\"") + "1"}};
  for (const auto& [sql, rewritten] : rows) EXPECT_EQ(SortWhatIsDistinct(sql), rewritten);
  for (const std::string columns_and_order :
       {"DISTINCT a, b;a", "DISTINCT a;a, b", "DISTINCT a, b AS a;a, b", "DISTINCT a, '';a", "DISTINCT *;a",
        "DISTINCT a b;a", "DISTINCT f(a);f(a)", "DISTINCT a;1", "DISTINCT a;a COLLATE NOCASE", "a;a",
        "DISTINCT a;a LIMIT 5", "DISTINCT a;a NULLS LAST", "DISTINCT a;t.a", "DISTINCT a + 1;a + 1",
        "DISTINCT a;", "DISTINCT a AS b;b"}) {
    const std::size_t mark = columns_and_order.find(';');
    const std::string sql = "SELECT " + columns_and_order.substr(0, mark) + from + "ORDER BY " +
                            columns_and_order.substr(mark + 1);
    EXPECT_EQ(SortWhatIsDistinct(sql), sql);
  }
  EXPECT_EQ(SortWhatIsDistinct("SELECT DISTINCT a FROM t UNION SELECT b FROM u ORDER BY a"),
            "SELECT DISTINCT a FROM t UNION SELECT b FROM u ORDER BY a");
}

TEST(Dialect, DistinctRowsComeInTheSameOrderUnderTheSameNames) {
  const TestDatabase file(
      "CREATE TABLE T (Code varchar(10) COLLATE NOCASE, Number integer);"
      "INSERT INTO T VALUES ('b', 2), ('A', 1), ('a', 1), (NULL, 3), ('b', NULL), ('b', 2), ('C', 10);");
  const auto database = file.Open();
  const auto all =
      database->Select("SELECT DISTINCT T.Code, Number AS N FROM T ORDER BY Number DESC, T.Code");
  EXPECT_EQ(Rows(*all), Rows(*database->Select("SELECT Code, Number FROM T GROUP BY Code, Number ORDER BY "
                                               "Number DESC, Code")));
  EXPECT_EQ(all->ColumnName(0), "Code");
  EXPECT_EQ(all->ColumnName(1), "N");
}

TEST(Dialect, NoKeyOrTwoKeysNameTheTables) {
  const TestDatabase file(kSchema);
  const auto database = file.Open();
  const Shape shapes[] = {
      {"SELECT * FROM employee JOIN company",
       "a join without ON needs a foreign key, and none is declared between Employee and Company"},
      {"SELECT * FROM (Employee JOIN Personal) JOIN Company",
       "a join without ON needs a foreign key, and none is declared between Employee, Personal and Company"},
      {"SELECT * FROM Personal, Employee JOIN (SELECT 1) AS X",
       "a join without ON needs a foreign key, and none is declared between Employee and X"},
      {"SELECT * FROM Transfer JOIN Company",
       "a join without ON needs one foreign key, and more than one is declared between Transfer and Company: "
       "Transfer(ToId) to Company, Transfer(FromId) to Company"},
      {"SELECT * FROM Employee JOIN Nowhere", "no such table: Nowhere"},
      {"SELECT * FROM Nowhere", "no such table: Nowhere"},
  };
  for (const Shape& shape : shapes) EXPECT_EQ(ErrorOf(*database, shape.sql), shape.rows) << shape.sql;
  EXPECT_NE(ErrorOf(*database, "SELECT " + std::string(5000, '(')), "");
}

TEST(Dialect, WhatNeedsNoKeyIsNotTouched) {
  const FindTable nothing = [](std::string_view) { return nullptr; };
  for (const std::string sql :
       {"", "SELECT", "'unclosed JOIN", "/* unclosed JOIN", "SELECT x FROM", "SELECT x FROM a JOIN",
        "SELECT 1 FROM (", "SELECT x FROM a LEFT", "))) FROM a JOIN b ON 1=1 (((",
        "SELECT LEFT(x, 1) FROM a WHERE x = \"JOIN\"\"b\"",
        "SELECT  1e+5  ,x'00' FROM t JOIN u ON a=b AND c IN (1,2) LEFT JOIN v USING (k) WHERE \xc3\xa4 = "
        "'JOIN'"})
    EXPECT_EQ(RewriteSql(sql, nothing), sql);
}

// SQLite's USING would take the first table that has the column, here Loose.
TEST(Dialect, SharedColumnOfAnEarlierTableIsNotMistakenForTheKey) {
  const TestDatabase file(kSchema);
  SqliteWriter(file.File()).ExecuteScript("UPDATE Loose SET PersonalSysId = 2");
  EXPECT_EQ(Rows(*file.Open()->Select("SELECT PersonalName FROM Loose, Employee JOIN Personal")), "Ann");
}

TEST(Dialect, SchemaGivesEveryJoinOfTheEngineOneKey) {
  std::ifstream stream(EXCELEXP_SOURCE_DIR "/demo/schema.sql");
  const TestDatabase file((std::ostringstream() << stream.rdbuf()).str());
  const auto database = file.Open();
  const std::string records = " FROM AnlysItemRecord JOIN AnlysDispSection JOIN AnlysItemSetup";
  for (const std::string& sql : {
           "SELECT *" + records + " WHERE AnlysProjectId = 'P' AND AnlysIPAddress = 'K' AND Basis1Id = '1'",
           "SELECT DISTINCT AnlysItem1Id, AnlysItemDesc, AnlysItemTypeId" + records +
               " WHERE AnlysItemTypeId = 'PayElement' ORDER BY AnlysItem1Id",
           std::string(
               "SELECT * FROM ColourScheme JOIN ColourCodeMapping WHERE ColourSchemeId IN ('a',   'b')"),
           std::string(
               "SELECT DISTINCT Basis1Id, '' AS Basis2Id, Personal.PersonalSysId FROM AnlysItemRecord JOIN "
               "(Employee JOIN Personal)    ON Basis1Id = EmployeeSysId WHERE AnlysProjectId = 'P' AND "
               "Basis1Id IN "
               "(SELECT DISTINCT EmployeeSysId FROM Employee JOIN Personal WHERE Employee.HireDate = "
               "'2004-02-29')"),
           std::string("SELECT *, MONTHS(Employee.HireDate, NOW()) FROM Employee Join Personal WHERE "
                       "EmployeeSysId = 1"),
           std::string("SELECT * FROM Personal LEFT OUTER JOIN Employee WHERE Personal.PersonalSysId = 1"),
           std::string("SELECT DISTINCT Personal.PersonalSysId FROM Personal LEFT OUTER JOIN Employee WHERE "
                       "Personal.PersonalSysId IN (SELECT PersonalSysId FROM ViewEmployee)"),
           std::string(
               "SELECT LayoutSchemeId, CycleMethod  FROM          FinancialRpt JOIN AnlysProject ON          "
               "FinancialRpt.FinancialAnalysProjId = AnlysProject.AnlysProjectId WHERE FinancialRptId = 'F'"),
           std::string("SELECT FinancialRptId FROM FinancialRpt JOIN          AnlysProject ON "
                       "FinancialAnalysProjId = "
                       "AnlysProjectId          WHERE FinancialRptId = 'F'"),
       })
    EXPECT_EQ(ErrorOf(*database, sql), "");
}

}  // namespace
}  // namespace excelexp
