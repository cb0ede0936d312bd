#include "platform/database/Query.h"

#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::Registered;
using test::TestDatabase;

constexpr char kSchema[] = R"(
CREATE TABLE Item(Year INTEGER, Month INTEGER, Basis VARCHAR(10), ItemId VARCHAR(10), Amount DOUBLE);
INSERT INTO Item VALUES
  (2024, 1, 'Main', 'A', 1), (2024, 1, 'main', 'A', 2), (2024, 1, 'Main', 'A', 3), (2024, 2, NULL, 'B', 4),
  ('2024', 3, 'Main', 'B', 5), (2024.0, 4, '5', 'Bx', 6), (-7, 5, 5, '', 7.25);
CREATE TABLE Value(Id INTEGER PRIMARY KEY, V);
INSERT INTO Value(V) VALUES
  (NULL), (42), (-7.0), (0.1), ('12abc'), (' +3.75 '), ('text'), (1e20), (x'004142'), (1234567.5), (1e14),
  (-0.0), (0.00001), (9223372036854775807), ('1e3');
CREATE TABLE Moment(Id INTEGER PRIMARY KEY, M);
INSERT INTO Moment(M) VALUES
  ('2004-02-29'), ('2024-03-05 12:00:00'), ('2024-03-05T06:00:00.500'), (NULL), (''), (0), ('18:00'),
  ('2023-02-29'), ('05/03/2024'), (20240305), ('2024-03-05 12:00:00 UTC');
)";

class QueryTest : public testing::Test {
 protected:
  Query& Open(const std::string& sql) {
    query_.SetSql(sql);
    query_.Open();
    return query_;
  }
  std::string ErrorOf(const std::function<void()>& work) {
    try {
      work();
      return "";
    } catch (const DatabaseError& error) {
      EXPECT_EQ(error.Sql(), query_.Sql());
      return error.Message();
    }
  }

  TestDatabase file_{kSchema};
  Registered registered_{"test", file_.Open()};
  Query query_{"test"};
};

TEST_F(QueryTest, CursorVisitsEveryRowOnceBothWays) {
  std::string seen;
  const auto visit = [&] {
    seen += query_.FieldByName("x").AsString() + (query_.Bof() ? "b" : "") + (query_.Eof() ? "e" : "");
  };
  const struct {
    const char* sql;
    const char* forward;
    const char* backward;
  } cases[] = {
      {"SELECT 1 AS X UNION SELECT 2 UNION SELECT 3 ORDER BY X", "1b23", "3e21"},
      {"SELECT 1 AS X", "1b", "1e"},
      {"SELECT 1 AS X WHERE 0", "", ""},
  };
  for (const auto& each : cases) {
    Open(each.sql);
    for (query_.First(), seen = ""; !query_.Eof(); query_.Next()) visit();
    EXPECT_EQ(seen, each.forward);
    for (query_.Last(), seen = ""; !query_.Bof(); query_.Prior()) visit();
    EXPECT_EQ(seen, each.backward);
  }
  EXPECT_TRUE(query_.Bof() && query_.Eof() && query_.RowCount() == 0);
}

TEST_F(QueryTest, EdgesKeepTheRowAndOpenStandsOnTheFirst) {
  Open("SELECT Amount FROM Item ORDER BY Amount");
  EXPECT_TRUE(query_.Bof() && !query_.Eof());
  const Field amount = query_.FieldByName("AMOUNT");
  query_.Last();
  query_.Next();
  EXPECT_TRUE(query_.Eof() && !query_.Bof());
  EXPECT_EQ(amount.AsFloat(), 7.25);
  query_.Prior();
  EXPECT_FALSE(query_.Eof());
  EXPECT_EQ(amount.AsFloat(), 6);
  query_.First();
  query_.Prior();
  EXPECT_TRUE(query_.Bof());
  EXPECT_EQ(amount.AsFloat(), 1);
}

TEST_F(QueryTest, LocateFindsTheFirstExactMatch) {
  Open("SELECT * FROM Item ORDER BY Amount");
  const struct {
    const char* fields;
    std::vector<KeyValue> keys;
    double amount;  // 0: not found
  } cases[] = {
      {"Year;Month;Basis;ItemId", {2024, 1, "Main", "A"}, 1},
      {"year;MONTH;basis;itemid", {2024, 1, "main", "A"}, 2},
      {"Year;Month;Basis;ItemId", {2024, 1, "MAIN", "A"}, 0},
      {"Basis;Year", {"Main", 2024}, 1},
      {"ItemId", {"B"}, 4},
      {"ItemId", {"Bx"}, 6},  // whole values only
      {"ItemId", {"b"}, 0},
      {"ItemId", {"B "}, 0},
      {"Month;Year", {3, 2024}, 5},  // a text column value
      {"Month;Year", {4, 2024}, 6},  // a number
      {"Month;Year", {4, "2024"}, 6},
      {"Basis", {5}, 6},   // the text '5' stands before the number 5
      {"Basis", {""}, 4},  // NULL reads as ""
      {"Month;Basis", {2, 0}, 0},
      {"Year", {-7}, 7.25},
      {"Year", {7}, 0},
      {"Amount", {"7.25"}, 7.25},
  };
  for (int round = 0; round < 5; ++round) {  // rows are searched one by one first, by an index later
    for (const auto& each : cases) {
      for (const double start : {1.0, 7.25}) {
        start == 1.0 ? query_.First() : query_.Last();
        const bool eof = query_.Eof();
        const bool found = query_.Locate(each.fields, each.keys);
        EXPECT_EQ(found, each.amount != 0) << each.fields;
        EXPECT_EQ(query_.FieldByName("Amount").AsFloat(), found ? each.amount : start) << each.fields;
        EXPECT_EQ(query_.Eof(), eof && !found);
      }
    }
  }
}

TEST_F(QueryTest, LocateAmongManyRowsAgreesWithASearchByHand) {
  Open(
      "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 4999) "
      "SELECT i, CASE i % 3 WHEN 0 THEN i % 7 WHEN 1 THEN CAST(i % 7 AS TEXT) ELSE i % 7 + 0.0 END AS a, "
      "'k' || (i % 313) AS b FROM n");
  for (int a = 0; a < 8; ++a) {
    for (int b = 0; b < 314; b += 3) {
      int expected = -1;
      for (int i = 0; i < 5000 && expected < 0; ++i) {
        if (i % 7 == a && i % 313 == b) expected = i;
      }
      const bool found = query_.Locate("a;b", std::vector<KeyValue>{a, "k" + std::to_string(b)});
      ASSERT_EQ(found ? query_.FieldByName("i").AsInteger() : -1, expected) << a << " " << b;
    }
  }
}

TEST_F(QueryTest, FieldsReadAsTheEngineReadsThem) {
  Open("SELECT V FROM Value ORDER BY Id");
  const struct {
    const char* text;
    std::int64_t integer;  // beyond 32 bits: an error
    double number;
  } rows[] = {
      {"", 0, 0},
      {"42", 42, 42},
      {"-7", -7, -7},
      {"0.1", 0, 0.1},
      {"12abc", 12, 12},
      {" +3.75 ", 3, 3.75},
      {"text", 0, 0},
      {"1e+20", INT64_MAX, 1e20},
      {std::string_view("\0AB", 3).data(), 0, 0},
      {"1234567.5", 1234567, 1234567.5},
      {"100000000000000", 100000000000000, 1e14},
      {"0", 0, 0},
      {"0.00001", 0, 1e-5},
      {"9223372036854775807", INT64_MAX, 9223372036854775807.0},
      {"1e3", 1000, 1000},
  };
  const Field field = query_.FieldByName("V");
  for (const auto& row : rows) {
    std::string bytes = "old";
    field.SaveToStream(bytes);
    const bool blob = bytes.size() == 3 && bytes[0] == '\0';
    EXPECT_EQ(bytes, blob ? std::string("\0AB", 3) : row.text);
    EXPECT_EQ(field.AsString(), bytes);
    EXPECT_EQ(field.AsFloat(), row.number) << row.text;
    EXPECT_EQ(field.IsNull(), query_.Bof());
    if (row.integer == static_cast<int>(row.integer)) {
      EXPECT_EQ(field.AsInteger(), row.integer) << row.text;
    } else {
      EXPECT_EQ(ErrorOf([&] { static_cast<void>(field.AsInteger()); }),
                "column V holds " + std::to_string(row.integer) + ", which is beyond 32 bits");
    }
    query_.Next();
  }
  EXPECT_TRUE(query_.Eof());
}

TEST_F(QueryTest, DatesAndWhatIsNone) {
  Open("SELECT M AS HireDate FROM Moment ORDER BY Id");
  const Field field = query_.FieldByName("HireDate");
  for (const double days : {38046.0, 45356.5, 45356.25 + 0.5 / 86400, 0.0, 0.0, 0.0, 0.75}) {
    EXPECT_DOUBLE_EQ(field.AsDateTime().days, days) << field.AsString();
    query_.Next();
  }
  for (; !query_.Eof(); query_.Next())
    EXPECT_EQ(ErrorOf([&] { field.AsDateTime(); }),
              "column HireDate holds '" + field.AsString() + "', which is no date or time");
}

TEST_F(QueryTest, MisuseIsOneClearError) {
  query_.SetSql("SELECT Amount FROM Item WHERE 0");
  EXPECT_EQ(ErrorOf([&] { query_.FieldByName("Amount"); }),
            "field 'Amount' is read from a query that is closed");
  EXPECT_EQ(ErrorOf([&] { query_.Locate("Amount", 1); }),
            "field 'Amount' is located in a query that is closed");
  query_.Open();
  EXPECT_EQ(ErrorOf([&] { query_.FieldByName("Amount"); }), "field 'Amount' is read from an empty result");
  EXPECT_FALSE(query_.Locate("Amount", 1));
  Open("SELECT Amount FROM Item");
  EXPECT_EQ(ErrorOf([&] { query_.FieldByName("Amout"); }), "there is no field 'Amout'");
  EXPECT_EQ(ErrorOf([&] {
              query_.Locate("Amount;Nope", std::vector<KeyValue>{1, 2});
            }),
            "there is no field 'Nope'");
  EXPECT_EQ(ErrorOf([&] { query_.Locate("Amount;Amount", 1); }),
            "fields 'Amount;Amount' are located with 1 values");
  query_.SetSql("SELECT nonsense");
  EXPECT_EQ(ErrorOf([&] { query_.Open(); }), "no such column: nonsense");
  EXPECT_FALSE(query_.IsOpen());
  Open("SELECT 1 AS a");  // a failure leaves nothing behind
  EXPECT_EQ(query_.RowCount(), 1);
  query_.SetDatabaseName("nobody");
  EXPECT_FALSE(query_.IsOpen());
  EXPECT_EQ(ErrorOf([&] { query_.Open(); }), "no database is registered under the name 'nobody'");
}

}  // namespace
}  // namespace excelexp
