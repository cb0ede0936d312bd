#include "platform/database/UnionFilter.h"

#include <string>
#include <vector>

#include "platform/database/SqliteConnection.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::Rows;
using test::TestDatabase;

constexpr char kSchema[] = R"(
CREATE TABLE Place (PlaceId varchar(9) COLLATE NOCASE, Name varchar(20), Floor integer);
CREATE INDEX PlaceById ON Place (PlaceId);
CREATE INDEX PlaceByFloor ON Place (Floor);
CREATE TABLE Range (RangeId varchar(9) PRIMARY KEY) WITHOUT ROWID;
CREATE TABLE Spot (SpotId varchar(9) PRIMARY KEY, Name varchar(20));
CREATE TABLE Fold (FoldId varchar(9) COLLATE RTRIM PRIMARY KEY);
INSERT INTO Spot VALUES ('A', 'Arch'), ('', 'nowhere'), ('7', 'Step');
INSERT INTO Fold VALUES ('A');
INSERT INTO Place VALUES ('A', 'Attic', 3), ('a', 'Annex', 1), ('B', 'Base', 0), ('', 'none', '5x'), ('7', 'Seven', 7);
INSERT INTO Range VALUES ('1'), ('2');
)";

TEST(UnionFilter, TheTableIsSearchedInsideTheUnion) {
  const TestDatabase file(kSchema);
  const SqliteConnection connection(file.File(), SqliteConnection::Access::kRead, 0, {});
  const auto rewritten = [&](const std::string& sql) { return FilterWhatIsUnited(sql, connection); };
  const std::string none = " UNION SELECT * FROM Place WHERE 0 ";
  EXPECT_EQ(
      rewritten("SELECT * FROM Range, (SELECT * FROM Place UNION SELECT '','','') AS P WHERE RangeId = '1' "
                "AND P.PlaceId = ?1"),
      "SELECT * FROM Range, (SELECT * FROM Place WHERE Place.PlaceId = ?1" + none +
          "UNION SELECT '','','') AS P WHERE RangeId = '1' AND P.PlaceId = ?1");
  for (const std::string& sql : std::vector<std::string>{
           "SELECT * FROM (SELECT * FROM Place UNION SELECT '','','') AS P WHERE P.PlaceId = 'A' OR Floor = "
           "1",
           "SELECT * FROM (SELECT * FROM Place UNION SELECT '','','') AS P WHERE P.Name = 'Base'",
           "SELECT * FROM (SELECT * FROM Place UNION SELECT '','','') AS P WHERE P.PlaceId = lower('A')",
           "SELECT * FROM (SELECT * FROM Place UNION SELECT '','','' LIMIT 1) AS P WHERE P.PlaceId = 'B'",
           "SELECT * FROM Range LEFT JOIN (SELECT * FROM Place UNION SELECT '','','') AS P ON 1 WHERE "
           "P.PlaceId = ''",
           "SELECT * FROM (SELECT * FROM Place UNION SELECT '','','') AS P, Range AS R WHERE R.RangeId = '1'",
           "SELECT * FROM (SELECT * FROM Place UNION SELECT '','','') AS P WHERE P.PlaceId = 'A' AND P.Floor "
           "= ?",
           // Another P.
           "SELECT * FROM (SELECT COUNT(*) FROM (SELECT * FROM Place UNION SELECT '','','') AS P) AS N, "
           "Place AS P "
           "WHERE P.PlaceId = 'A'",
           "SELECT * FROM (SELECT * FROM Place UNION SELECT '','','') AS P WHERE P.Nothing = 1"})
    EXPECT_EQ(rewritten(sql), sql);
}

TEST(UnionFilter, TheTableAloneIsReadWhereTheUnionAddsNothing) {
  const TestDatabase file(kSchema);
  const SqliteConnection connection(file.File(), SqliteConnection::Access::kRead, 0, {});
  const std::string conditions = " AS S, Range WHERE S.SpotId = ?1 AND RangeId <> '0'";
  EXPECT_EQ(
      FilterWhatIsUnited("SELECT * FROM (SELECT * FROM Spot UNION SELECT '', '')" + conditions, connection),
      "SELECT * FROM Spot" + conditions +
          " AND ?1 <> '' UNION ALL SELECT * FROM (SELECT * FROM Spot WHERE Spot.SpotId = ?1 UNION SELECT * "
          "FROM Spot WHERE 0 UNION SELECT '', '')" +
          conditions + " AND (?1 = '')");
  for (const std::string sql :
       {"SELECT COUNT(*) FROM (SELECT * FROM Spot UNION SELECT '', '') AS S WHERE S.SpotId = ?1",
        "SELECT * FROM (SELECT * FROM Spot UNION SELECT '', 'x') AS S WHERE S.SpotId = ?1",
        "SELECT * FROM (SELECT * FROM Spot UNION SELECT '', '') AS S WHERE S.Name = ?1",
        "SELECT * FROM (SELECT * FROM Fold UNION SELECT '') AS S WHERE S.FoldId = ?1"})
    EXPECT_EQ(FilterWhatIsUnited(sql, connection).find("<>"), std::string::npos) << sql;
}

// Values of another type than the column's, and equal by its collation only.
TEST(UnionFilter, AnswersAreThoseOfTheConditionOutside) {
  const TestDatabase file(kSchema);
  const auto database = file.Open();
  const std::string all = "SELECT * FROM (SELECT * FROM Place UNION SELECT '', '', '') AS P WHERE ";
  for (const std::string condition :
       {"P.PlaceId = 'a'", "P.PlaceId = ''", "P.PlaceId = 7", "P.PlaceId = 'no'", "P.Floor = 7",
        "P.Floor = '7'", "P.Floor = '5x'", "P.PlaceId = 'a' AND P.Floor = 1"}) {
    // What stands in parentheses is no condition that is known.
    const auto outside = database->Select(all + "(" + condition + ")");
    EXPECT_EQ(Rows(*database->Select(all + condition)), Rows(*outside)) << condition;
  }
  const std::string spots =
      "SELECT * FROM Range, (SELECT * FROM Spot UNION SELECT '', '') AS S, "
      "(SELECT * FROM Fold UNION SELECT '') AS F WHERE ";
  for (const std::string condition : {"S.SpotId = 'A'", "S.SpotId = ''", "S.SpotId = 7", "S.SpotId = 'no'",
                                      "S.SpotId = 'A' AND F.FoldId = ' '"}) {
    const auto outside = database->Select(spots + "(" + condition + ")");
    const auto inside = database->Select(spots + condition);
    EXPECT_EQ(Rows(*inside), Rows(*outside)) << condition;
    EXPECT_EQ(inside->ColumnName(1), "SpotId");
  }
}

}  // namespace
}  // namespace excelexp
