#include "platform/database/InLists.h"

#include <string>
#include <vector>

#include "platform/database/Catalogue.h"
#include "platform/database/MissingIds.h"
#include "platform/database/ResultSet.h"
#include "platform/database/SqliteConnection.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::Rows;
using test::TestDatabase;

// Lee has no employment, and Abu two.
constexpr char kSchema[] = R"(
CREATE TABLE Person (PersonId INTEGER PRIMARY KEY, Name varchar(20));
CREATE TABLE Employee (EmployeeId INTEGER PRIMARY KEY, PersonId integer REFERENCES Person (PersonId), Number integer,
                       Code varchar(9));
CREATE INDEX EmployeeOfPerson ON Employee (PersonId);
CREATE VIEW Everybody AS SELECT EmployeeId, Person.PersonId AS PersonId, Number, Code, Number + 1 AS Next
  FROM Person LEFT JOIN Employee ON Employee.PersonId = Person.PersonId;
CREATE VIEW Employed AS SELECT EmployeeId FROM Person JOIN Employee ON Employee.PersonId = Person.PersonId;
INSERT INTO Person VALUES (1, 'Tan'), (2, 'Lee'), (3, 'Abu');
INSERT INTO Employee VALUES (30, 1, 5, '5'), (20, 3, NULL, NULL), (10, 3, -7, 'x'), (40, NULL, 5, '5');
)";

class InLists : public testing::Test {
 protected:
  std::string Rewritten(const std::string& sql) {
    return LeaveOutMissingIds(sql, connection_,
                              [this](std::string_view name) { return catalogue_.Find(name); });
  }

  TestDatabase file_{kSchema};
  SqliteConnection connection_{file_.File(), SqliteConnection::Access::kRead, 0, {}};
  Catalogue catalogue_{connection_};
};

TEST_F(InLists, LeaveOutTheMissingIdsOfAView) {
  const std::string list = "EmployeeId IN (SELECT EmployeeId FROM Everybody";
  EXPECT_EQ(Rewritten("SELECT * FROM Employee WHERE Number = 5 AND Employee." + list + ") ORDER BY Code"),
            "SELECT * FROM Employee WHERE Number = 5 AND Employee." + list +
                " WHERE EmployeeId >= -9e999) ORDER BY Code");
  const std::string nested =
      "SELECT * FROM Person WHERE PersonId IN (SELECT PersonId FROM Employee WHERE " + list;
  EXPECT_EQ(Rewritten(nested + "))"), nested + " WHERE EmployeeId >= -9e999))");
  for (const std::string& sql : {"SELECT * FROM Employee WHERE " + list + ")", nested + "))"}) {
    ASSERT_NE(Rewritten(sql), sql);
    const auto whole = file_.Open()->Select(sql);
    EXPECT_EQ(whole->RowCount(), sql == nested + "))" ? 2 : 3);
    EXPECT_EQ(Rows(*file_.Open()->Select(Rewritten(sql))), Rows(*whole));
  }
}

TEST_F(InLists, StayWhereMissingIdsCouldMakeADifference) {
  for (const std::string& sql : std::vector<std::string>{
           // NULL is not FALSE there.
           "SELECT * FROM Employee WHERE EmployeeId NOT IN (SELECT EmployeeId FROM Everybody)",
           "SELECT * FROM Employee WHERE NOT (EmployeeId IN (SELECT EmployeeId FROM Everybody))",
           "SELECT EmployeeId IN (SELECT EmployeeId FROM Everybody) FROM Employee",
           "SELECT * FROM Employee WHERE (EmployeeId IN (SELECT EmployeeId FROM Everybody)) IS NULL",
           "SELECT * FROM Employee WHERE CASE 1 AND EmployeeId IN (SELECT EmployeeId FROM Everybody) AND 1 "
           "WHEN "
           "0 THEN 1 END",
           "SELECT * FROM Employee WHERE NOT 1 BETWEEN 0 AND EmployeeId IN (SELECT EmployeeId FROM "
           "Everybody)",
           // Texts compare otherwise, and what an expression gives is not known.
           "SELECT * FROM Employee WHERE Code IN (SELECT Code FROM Everybody)",
           "SELECT * FROM Employee WHERE Number IN (SELECT Next FROM Everybody)",
           // Nothing falls away.
           "SELECT * FROM Employee WHERE PersonId IN (SELECT PersonId FROM Everybody)",
           "SELECT * FROM Employee WHERE EmployeeId IN (SELECT EmployeeId FROM Employed)",
           "SELECT * FROM Employee WHERE EmployeeId IN (SELECT EmployeeId FROM Everybody WHERE Number = 5)",
           "SELECT * FROM Employee WHERE EmployeeId IN (SELECT Nothing FROM Everybody)"})
    EXPECT_EQ(Rewritten(sql), sql);
}

TEST_F(InLists, TellByTheFirstRowWhetherThereAreAny) {
  const std::string list = "Employee.EmployeeId IN (SELECT EmployeeId FROM Everybody)";
  const auto database = file_.Open();
  for (const std::string& sql : std::vector<std::string>{
           "SELECT * FROM Employee WHERE " + list, "SELECT * FROM Employee WHERE " + list + " AND Code = 'y'",
           "SELECT * FROM Employee WHERE Code = 'x' AND " + list,
           // Only Lee, who has no employment, is in no list.
           "SELECT * FROM Person LEFT JOIN Employee ON Employee.PersonId = Person.PersonId WHERE Name = "
           "'Lee' AND " +
               list,
           "SELECT * FROM Employee WHERE Employee.PersonId IN (SELECT PersonId FROM Everybody) AND Number IS "
           "NULL",
           "SELECT * FROM Employee, Person AS Tan WHERE Tan.PersonId IN (SELECT PersonId FROM Everybody) AND "
           "Tan.Name = 'No'",
           "SELECT * FROM Person WHERE PersonId = 3 AND PersonId IN (SELECT PersonId FROM Employee WHERE " +
               list + ")"}) {
    const std::optional<bool> found = database->HasRows(sql);
    ASSERT_TRUE(found.has_value()) << sql;
    EXPECT_EQ(*found, !database->Select(sql)->IsEmpty()) << sql;
  }
  for (const std::string& sql : std::vector<std::string>{
           "SELECT * FROM Employee", "SELECT DISTINCT Code FROM Employee WHERE " + list,
           "SELECT COUNT(*) FROM Employee WHERE " + list + " GROUP BY Code",
           "SELECT * FROM Employee WHERE " + list + " LIMIT 0",
           "SELECT * FROM Employee WHERE EmployeeId IN (SELECT EmployeeId FROM Everybody)",
           "SELECT * FROM Employee WHERE NOT " + list, "SELECT * FROM NoSuch WHERE " + list,
           "DELETE FROM Employee WHERE " + list}) {
    EXPECT_EQ(database->HasRows(sql), std::nullopt) << sql;
  }
}

}  // namespace
}  // namespace excelexp
