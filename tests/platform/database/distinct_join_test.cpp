#include "platform/database/DistinctJoin.h"

#include <string>
#include <vector>

#include "platform/database/Catalogue.h"
#include "platform/database/SqliteConnection.h"
#include "platform/database/SqliteGuard.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::Rows;
using test::TestDatabase;

// Three records of each person, two persons of one name; "10" stands before "2" in the index.
constexpr char kSchema[] = R"(
CREATE TABLE Record (Project varchar(9), Basis varchar(9), Code varchar(9) COLLATE NOCASE, Number integer, Note text);
CREATE INDEX RecordByKey ON Record (Project, Basis, Code, Number, Note);
CREATE INDEX RecordByCode ON Record (Project, Code);
CREATE INDEX RecordByNumber ON Record (Project, Number);
CREATE TABLE Hint (Place varchar(20) PRIMARY KEY, Note text) WITHOUT ROWID;
CREATE TABLE Person (PersonId INTEGER PRIMARY KEY, Name varchar(20), Place varchar(20));
INSERT INTO Person VALUES (1, 'Tan', 'B'), (2, 'Lim', 'A'), (10, 'Tan', 'B'), (11, 'Abu', 'A');
INSERT INTO Record SELECT 'P', PersonId, 'c', column1, 'n' FROM Person, (VALUES (1), (2), (3)) WHERE PersonId <> 11;
INSERT INTO Record SELECT 'Q', PersonId, 'C', 1, 'n' FROM Person;
)";

class DistinctJoin : public testing::Test {
 protected:
  std::string Rewritten(const std::string& sql) {
    const SqliteGuard::Pass pass(guard_);
    return JoinWhatIsDistinct(sql, connection_, guard_,
                              [this](std::string_view name) { return catalogue_.Find(name); });
  }

  TestDatabase file_{kSchema};
  SqliteConnection connection_{file_.File(), SqliteConnection::Access::kRead, 0, {}};
  Catalogue catalogue_{connection_};
  SqliteGuard guard_{connection_};
};

TEST_F(DistinctJoin, RowsAlikeAreJoinedOnce) {
  const std::string rest = "JOIN Person ON Basis = PersonId ";
  EXPECT_EQ(
      Rewritten("SELECT DISTINCT Basis, '' AS Code FROM Record " + rest +
                "WHERE Project = 'P' AND Person.Place = 'B' AND Record.Number =1 ORDER BY Name"),
      "SELECT DISTINCT Basis, '' AS Code FROM (SELECT DISTINCT \"Basis\" FROM Record WHERE Project = 'P' AND "
      "Record.Number =1) AS Record " +
          rest + "WHERE Person.Place = 'B' ORDER BY Name");
  EXPECT_EQ(
      Rewritten("SELECT * FROM (SELECT DISTINCT Name FROM Record, Person WHERE Project = ?1 AND PersonId = "
                "Basis AND Basis IN (SELECT CAST(PersonId AS TEXT) FROM Person)) ORDER BY 1"),
      "SELECT * FROM (SELECT DISTINCT Name FROM (SELECT DISTINCT \"Basis\" FROM Record WHERE Project = ?1 "
      "AND "
      "Basis IN (SELECT CAST(PersonId AS TEXT) FROM Person)) AS Record, Person WHERE PersonId = Basis) ORDER "
      "BY 1");
}

TEST_F(DistinctJoin, WhatTheRuleDoesNotKnowIsLeftAlone) {
  const std::string from = " FROM Record JOIN Person ON Basis = PersonId WHERE Project = 'P'";
  ASSERT_NE(Rewritten("SELECT DISTINCT Name" + from), "SELECT DISTINCT Name" + from);
  for (const std::string& sql : std::vector<std::string>{
           "SELECT Name" + from,
           "SELECT DISTINCT Name, COUNT(*)" + from,
           "SELECT DISTINCT Name, \"sum\"(PersonId)" + from,
           "SELECT DISTINCT Name" + from + " ORDER BY MAX(Basis)",
           "SELECT DISTINCT (SELECT COUNT(Basis))" + from,
           "SELECT DISTINCT *" + from,
           "SELECT DISTINCT Name" + from + " OR Place = 'A'",
           "SELECT DISTINCT Name" + from + " LIMIT 1",
           "SELECT DISTINCT Name" + from + " GROUP BY Name",
           "SELECT DISTINCT Name" + from + " UNION SELECT 'x'",
           "SELECT DISTINCT Name" + from + " AND Place = ?",
           "SELECT DISTINCT Name" + from + " AND",
           "SELECT DISTINCT Name" + from + " AND Nobody = 1",
           "SELECT DISTINCT Name" + from + " AND Record.rowid > 1",
           "SELECT DISTINCT Name FROM Record JOIN Person ON Basis = PersonId NATURAL JOIN Hint WHERE Project "
           "= 'P'",
           "SELECT DISTINCT Name FROM Record JOIN Person ON 1 FULL JOIN Hint ON 0 WHERE Project = 'P'",
           "SELECT DISTINCT Name FROM Person JOIN Record ON Basis = PersonId WHERE Project = 'P'",
           // Of values that are equal and not the same, the one found first is shown.
           "SELECT DISTINCT Code FROM Record JOIN Person ON PersonId = 1 WHERE Project = 'P'",
           "SELECT DISTINCT Number FROM Record JOIN Person ON PersonId = 1 WHERE Project = 'P'",
           // Rows would have to be sorted to be distinct, or come in another order.
           "SELECT DISTINCT Note" + from,
           "SELECT DISTINCT Name" + from + " ORDER BY Basis DESC",
       })
    EXPECT_EQ(Rewritten(sql), sql);
}

TEST_F(DistinctJoin, AnswersAreThoseOfTheStatementAsItWasSent) {
  const auto database = file_.Open();
  const std::string from = " FROM Record JOIN Person ON Basis = PersonId WHERE Project = 'P'";
  EXPECT_EQ(Rows(*database->Select("SELECT DISTINCT Basis" + from)), "1/10/2");
  EXPECT_EQ(Rows(*database->Select("SELECT DISTINCT Basis AS B, Name" + from + " ORDER BY Name DESC")),
            "1|Tan/10|Tan/2|Lim");
  EXPECT_EQ(Rows(*database->Select("SELECT DISTINCT Place, Name" + from + " ORDER BY Place, Name")),
            "A|Lim/B|Tan");
  EXPECT_EQ(database->Select("SELECT DISTINCT basis" + from)->ColumnName(0), "Basis");
}

}  // namespace
}  // namespace excelexp
