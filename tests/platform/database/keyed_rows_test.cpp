// Statements and functions that are asked for one key after the other: what is read for all keys at once is
// what a connection reads that is asked once.
#include "platform/database/DatabaseError.h"
#include "platform/database/KeyedSql.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::ErrorOf;
using test::Rows;
using test::TestDatabase;

// A hundred persons, of whom each third has a family; some of it is there twice, or differs by case only.
constexpr char kSchema[] = R"(
CREATE TABLE Person(PersonId INTEGER PRIMARY KEY, Name VARCHAR(40), Born VARCHAR(20), Code VARCHAR(9), A, B, C, D);
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100)
  INSERT INTO Person SELECT i, 'p' || i, NULLIF('1970-01-' || (i % 28 + 1), '1970-01-4'), printf('%03d', i % 5),
    i * 0.5, x'00ff', NULL, 'd' || i FROM n;
CREATE TABLE Family(PersonId INTEGER REFERENCES Person, Member VARCHAR(40) COLLATE NOCASE, Age INTEGER);
INSERT INTO Family SELECT PersonId, 'm' || PersonId % 4, 7 - PersonId % 2 FROM Person WHERE PersonId % 3 = 0;
INSERT INTO Family SELECT PersonId, 'a' || PersonId, 3 FROM Person WHERE PersonId % 3 = 0;
INSERT INTO Family SELECT PersonId, Member, Age FROM Family WHERE PersonId % 9 = 0;
INSERT INTO Family SELECT PersonId, upper(Member), Age FROM Family WHERE PersonId % 4 = 0;
CREATE INDEX FamilyOfPerson ON Family(PersonId);
CREATE TABLE Listed(PersonId INTEGER REFERENCES Person);
INSERT INTO Listed SELECT PersonId FROM Person WHERE PersonId % 10 <> 7;
CREATE VIEW Members AS SELECT PersonId, COUNT(*) AS Count FROM Family GROUP BY PersonId;
CREATE TABLE DatabaseFunction(FunctionName VARCHAR(40), ArgumentCount INTEGER, FunctionSql VARCHAR(400));
INSERT INTO DatabaseFunction VALUES
  ('FName', 1, 'SELECT Name FROM Person WHERE Person.PersonId = ?1'),
  ('FFirst', 1, 'SELECT Member FROM Family WHERE PersonId = ?1 ORDER BY Age LIMIT 1'),
  ('FMembers', 1, 'SELECT COUNT(*) FROM Family WHERE PersonId = ?1'),
  ('FWhat', 2, 'SELECT COALESCE((SELECT CASE ?2 WHEN ''name'' THEN Name WHEN ''me'' THEN FName(?1) END
     FROM Person WHERE PersonId = ?1), ''?'')'),
  ('FSum', 1, 'SELECT TOTAL(Age + ?1) FROM Family WHERE PersonId = ?1'),
  ('FText', 1, 'SELECT Name FROM Person WHERE Code = ?1'),
  ('FBad', 1, 'SELECT MONTHS(CASE WHEN PersonId = 90 THEN ''x'' ELSE ''2024-01-01'' END, ''2024-03-01'')
     FROM Person WHERE PersonId = ?1'),
  ('FNow', 1, 'SELECT NOW() FROM Person WHERE PersonId = ?1');
)";

class KeyedRowsTest : public testing::Test {
 protected:
  KeyedRowsTest() {
    options_.cache_bytes = 0;
    options_.now = [this] { return DateTime{EncodeDate(2024, 2, 29).days + seconds_ / 86400.0}; };
  }

  static std::string ForKey(std::string sql, const std::string& key) {
    for (std::size_t at = sql.find('#'); at != std::string::npos; at = sql.find('#')) sql.replace(at, 1, key);
    return sql;
  }
  std::string Read(Database& database, const std::string& sql) {
    try {
      return Rows(*database.Select(sql));
    } catch (const DatabaseError& error) {
      return error.Message();
    }
  }
  /// Asks one connection for all keys, and another one that forgets everything before each.
  void ExpectTheSame(const std::string& sql) {
    const auto walked = file_.Open(options_);
    const auto single = file_.Open(options_);
    for (int i = 1; i <= 101; ++i) {
      // Not in their order, and the same one again.
      const std::string key = std::to_string(i == 60 ? 3 : i * 37 % 101);
      single->NoteWrite();
      seconds_ = i % 60;
      const std::string one = Read(*single, ForKey(sql, key));
      ASSERT_EQ(Read(*walked, ForKey(sql, key)), one) << ForKey(sql, key);
    }
  }

  TestDatabase file_{kSchema};
  SqliteOptions options_;
  int seconds_ = 0;
};

TEST_F(KeyedRowsTest, StatementsGiveTheRowsOfTheirKey) {
  for (const char* sql :
       {"SELECT * FROM Person WHERE PersonId = #",
        "SELECT Name, A, B, C FROM Person WHERE Person.PersonId = #",
        "SELECT * FROM Person JOIN Family WHERE PersonId = #",
        "SELECT DISTINCT Member, Age FROM Person LEFT JOIN Family ON Family.PersonId = Person.PersonId "
        "WHERE Person.PersonId = # AND Person.PersonId IN (SELECT PersonId FROM Listed WHERE PersonId = #)",
        "SELECT DISTINCT Age FROM Family WHERE Family.PersonId = #",
        "SELECT DISTINCT Member, Age FROM Family WHERE PersonId = # ORDER BY Age",
        "SELECT COUNT(*), MAX(Age) FROM Family WHERE PersonId = #",
        "SELECT TOTAL(#) FROM Person WHERE PersonId = #",
        "SELECT Name, (SELECT COUNT(*) FROM Family f WHERE f.PersonId = Person.PersonId) FROM Person WHERE "
        "PersonId = #",
        "SELECT Name, COUNT(*) OVER () FROM Person WHERE PersonId = #",
        "SELECT Count FROM Members WHERE PersonId = #",
        "SELECT Name, NOW() FROM Person WHERE PersonId = #",
        "SELECT Name FROM Person WHERE PersonId = # OR PersonId = 5",
        "SELECT Name, FNow(PersonId) FROM Person WHERE PersonId = #",
        "SELECT Name, FBad(PersonId) FROM Person WHERE PersonId = #",
        "SELECT Name FROM Person WHERE PersonId = # AND Code = '002'",
        "SELECT Name, A FROM Person WHERE Code = #",
        "SELECT Name FROM Person WHERE A = #",
        "SELECT Name FROM Person, Listed WHERE Person.PersonId = # AND Listed.PersonId = #",
        "SELECT a.Name FROM Person a WHERE a.PersonId = # AND 3 = #",
        "SELECT nothing FROM Person WHERE PersonId = #"})
    ExpectTheSame(sql);
}

TEST_F(KeyedRowsTest, FunctionsGiveTheValueOfTheirKey) {
  for (const char* call : {"FName(#)", "FFirst(#)", "FMembers(#)", "FWhat(#, 'name')", "FWhat(#, 'me')",
                           "FSum(#)", "FText(#)", "FText('00' || # % 5)", "FName('#')", "FName(#.0)",
                           "FNow(#)", "FBad(#)", "typeof(FMembers(#))", "FWhat(NULL, 'name')"})
    ExpectTheSame(std::string("SELECT ") + call + " FROM DUMMY");
}

TEST_F(KeyedRowsTest, ColumnsThatAreAskedForLaterAreOfTheSameRowAndMoment) {
  const std::string sql = "SELECT *, NOW() AS Now FROM Person WHERE PersonId = ";
  const auto database = file_.Open(options_);
  for (int key = 1; key <= 80; ++key) {
    seconds_ = 0;
    const auto result = database->Select(sql + std::to_string(key));
    ASSERT_EQ(result->AsText(0, result->ColumnIndex("Name")), "p" + std::to_string(key));
    seconds_ = 30;
    if (key <= 70) continue;
    ASSERT_EQ(result->AsText(0, result->ColumnIndex("D")), "d" + std::to_string(key));
    ASSERT_EQ(result->AsText(0, result->ColumnIndex("Now")), "2024-02-29 00:00:00");
  }
}

TEST_F(KeyedRowsTest, WhatAnotherProgramWroteShowsAfterTheNotice) {
  const auto database = file_.Open(options_);
  const auto ask = [&](int key) {
    return Read(*database,
                "SELECT Name, FName(PersonId) FROM Person WHERE PersonId = " + std::to_string(key));
  };
  for (int key = 1; key <= 60; ++key)
    ASSERT_EQ(ask(key), "p" + std::to_string(key) + "|p" + std::to_string(key));
  database->NoteWrite();
  SqliteWriter(file_.File()).ExecuteScript("UPDATE Person SET Name = 'new' WHERE PersonId = 61");
  EXPECT_EQ(ask(61), "new|new");
  for (int key = 1; key <= 60; ++key)
    ASSERT_EQ(ask(key), "p" + std::to_string(key) + "|p" + std::to_string(key));
}

TEST(KeyedSql, PlansAreAlikeWhenTheirLoopsEndAlike) {
  const std::vector<PlanStep> single = {
      {0, "SEARCH a"}, {0, "SCALAR SUBQUERY 1"}, {1, "SEARCH v"}, {0, "SEARCH b"}};
  const std::vector<PlanStep> all = {{0, "SCAN keys"},
                                     {0, "CORRELATED SCALAR SUBQUERY 12"},
                                     {1, "SEARCH v"},
                                     {0, "SEARCH a"},
                                     {0, "SEARCH b"}};
  EXPECT_TRUE(FindsRowsAlike(single, all));
  std::vector<PlanStep> other_order = all;
  std::swap(other_order[3], other_order[4]);
  EXPECT_FALSE(FindsRowsAlike(single, other_order));
  std::vector<PlanStep> other_subquery = all;
  other_subquery[2].text = "SCAN v";
  EXPECT_FALSE(FindsRowsAlike(single, other_subquery));
}

}  // namespace
}  // namespace excelexp
