// Results that are read as far as somebody asks: nobody can tell what was read when.
#include "platform/database/DatabaseError.h"
#include "platform/database/Query.h"
#include "platform/database/ResultCache.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::Registered;
using test::Rows;
using test::TestDatabase;

constexpr char kSchema[] = R"(
CREATE TABLE P(Id INTEGER PRIMARY KEY, Name, A, B, C);
INSERT INTO P VALUES(1, 'p1', 1, 2, 3), (2, NULL, x'00ff', '', 6.5), (3, 'p3', 7, 8, 9);
CREATE TABLE E(EId INTEGER PRIMARY KEY, Id REFERENCES P, Name, D, F, G, H);
INSERT INTO E VALUES(7, 2, 'e7', 4, 0, 1, 0), (8, 1, 'e8', 3, 0, 2, 0), (9, 1, 'e9', 2, 0, 3, 0);
CREATE TABLE O(Id INTEGER PRIMARY KEY, A, B, C, D, F, G);
INSERT INTO O VALUES(1, 1, 1, 11, 0, 0, 'x'), (2, 1, 3, 12, 0, 0, 'on'), (3, 1, 2, 13, 0, 0, 'on'),
  (4, 2, 9, 14, 0, 0, 'x'), (5, 1, 4, 15, 0, 0, 'on');
CREATE INDEX ByA ON O(A); CREATE INDEX ByAB ON O(A, B DESC); 
CREATE INDEX OnlyOn ON O(B DESC, A, G) WHERE G = 'on';
CREATE TABLE Plain(K, C1, C2, C3, C4, C5);
INSERT INTO Plain VALUES(1, 'd', 1, 0, 0, 0), (1, 'b', 4, 0, 0, 0), (1, 'c', 2, 0, 0, 0), (1, 'a', 3, 0, 0, 0);
INSERT INTO Plain SELECT 5, 0, 0, 0, 0, 0 FROM Plain a, Plain b, Plain c, Plain d;
CREATE TABLE Left(L, M);
INSERT INTO Left VALUES(1, 'x'), (1, 'y');
INSERT INTO Left SELECT 7, 0 FROM Plain;
CREATE TABLE Many(Id INTEGER PRIMARY KEY, A, B, C, D, F);
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000)
  INSERT INTO Many SELECT i, 'a' || i, i % 7, i * 0.5, 'd', 'f' FROM n;
CREATE TABLE DatabaseFunction(FunctionName VARCHAR(40), ArgumentCount INTEGER, FunctionSql VARCHAR(400));
INSERT INTO DatabaseFunction VALUES('FName', 1, 'SELECT Name FROM P WHERE Id = ?1'), ('FNow', 0, 'SELECT NOW()'),
  ('FRandom', 0, 'SELECT random()'),
  ('FSecond', 0, 'SELECT CAST(substr(NOW(), 18) AS INTEGER)'), ('FMonths', 1, 'SELECT MONTHS(?1, ''2024-01-01'')');
)";

class PartialResultTest : public testing::Test {
 protected:
  PartialResultTest() {
    options_.cache_bytes = 0;
    options_.now = [this] { return DateTime{EncodeDate(2024, 2, 29).days + seconds_++ / 86400.0}; };
    options_.on_failure = [this](const std::string& sql, const std::string& message) {
      trace_ += sql + " -> " + message + "\n";
    };
    database_ = file_.Open(options_);
  }

  /// The result of a statement that was sent often enough, with only these columns asked for.
  std::shared_ptr<const ResultSet> Narrowed(const std::string& sql, const std::vector<std::string>& columns) {
    std::shared_ptr<const ResultSet> result;
    for (int run = 0; run < 6; ++run) {
      result = database_->Select(sql);
      for (const std::string& name : columns) EXPECT_GE(result->ColumnIndex(name), 0) << name;
    }
    return result;
  }
  /// The rows as a connection reads them that has not seen the statement before.
  std::string FreshRows(const std::string& sql) { return Rows(*file_.Open(options_)->Select(sql)); }

  int seconds_ = 0;
  std::string trace_;
  SqliteOptions options_;
  TestDatabase file_{kSchema};
  std::shared_ptr<Database> database_;
};

TEST_F(PartialResultTest, ColumnsNobodyAskedForHaveTheirValues) {
  const struct {
    const char* sql;
    std::vector<std::string> asked;
    bool narrowed;
  } cases[] = {
      {"SELECT * FROM P", {"Name"}, true},
      {"SELECT * FROM E", {}, true},
      {"SELECT * FROM E JOIN P WHERE P.Id = 1 -- it's", {"eid", "NAME"}, true},
      {"SELECT * FROM O JOIN (E JOIN P) ON O.Id = E.F + 1", {"Name", "Id"}, true},
      {"SELECT D + 1, F, G, H, Name, EId FROM E", {"D + 1"}, true},
      {"SELECT EId, FName(Id), FName(Id) AS N, D, F, G, H FROM E", {"N"}, true},
      {"SELECT Name AS X, Id AS X, A AS Y, B, C, A AS \"x\" FROM P", {"x", "Y"}, true},
      {"SELECT 1 AS X, 2 AS X, 3 AS \"X:1\", A, B, C, Id FROM P", {"X:1"}, false},
      {"SELECT A AS \"true\", B AS \"a\"\"b\", C, Id, Name, A, B, C FROM P", {"a\"b"}, true},
      {"SELECT max(Id), Name, A, B, C, count(*) FROM P", {"Name"}, false},
      {"SELECT row_number() OVER (ORDER BY Id DESC) AS N, * FROM P", {"Id"}, false},
      {"SELECT * FROM P ORDER BY Name DESC", {"Id"}, false},
      {"SELECT * FROM P;", {"Id"}, false},
      {"SELECT * FROM P /* open", {"Id"}, false},
      {"SELECT random() AS R, * FROM P WHERE R IS NULL", {"Id"}, false},
  };
  for (const auto& each : cases) {
    const std::string expected = FreshRows(each.sql);
    const auto kept = Narrowed(each.sql, each.asked);
    EXPECT_NE(kept->IsComplete(), each.narrowed) << each.sql;
    const auto other = Narrowed(each.sql, {kept->ColumnName(kept->ColumnCount() - 1)});
    for (const auto& result : {kept, other}) EXPECT_EQ(Rows(*result), expected) << each.sql;
    EXPECT_EQ(Rows(*database_->Select(each.sql)), expected) << each.sql;
  }
}

TEST_F(PartialResultTest, RowsAreTheSameInBothReadings) {
  const struct {
    const char* sql;
    std::vector<std::string> asked;
  } cases[] = {
      // With index ByAB alone the asked columns would come in another order.
      {"SELECT * FROM O WHERE A = 1", {"B"}},
      {"SELECT * FROM O WHERE +A = 1", {"A", "B"}},
      {"SELECT * FROM O", {"A", "B"}},
      // An index of some rows, which fits one of the values.
      {"SELECT * FROM O WHERE G = 'on' AND A > 0", {"B"}},
      // An index made for the run holds the columns that are read.
      {"SELECT * FROM Left JOIN Plain ON L = K", {"C2"}},
      {"SELECT * FROM Left LEFT JOIN (SELECT * FROM Plain WHERE C5 = 0) ON L = K WHERE L = 1", {"C2", "M"}},
      {"SELECT * FROM (SELECT * FROM O ORDER BY C DESC) AS S", {"A"}},
  };
  for (const auto& each : cases) {
    const auto fresh = file_.Open(options_)->Select(each.sql);
    const auto result = Narrowed(each.sql, each.asked);
    for (const std::string& name : each.asked) {
      const int column = result->ColumnIndex(name);
      for (int row = 0; row < result->RowCount(); ++row)
        EXPECT_EQ(result->AsText(row, column), fresh->AsText(row, column)) << each.sql;
    }
    EXPECT_EQ(Rows(*result), Rows(*fresh)) << each.sql;
  }
}

TEST_F(PartialResultTest, OfManyColumnsFewerRowsAreReadAtFirst) {
  std::string sql = "SELECT *";
  for (int i = 0; i < 100; ++i) sql += ", A AS A" + std::to_string(i);
  const auto result = database_->Select(sql + " FROM Many WHERE Id <= 100");
  EXPECT_FALSE(result->IsEmpty());
  EXPECT_FALSE(result->IsComplete());
  EXPECT_EQ(result->RowCount(), 100);
  EXPECT_EQ(result->AsText(99, result->ColumnIndex("A99")), "a100");
}

TEST_F(PartialResultTest, RowsBehindTheFirstOnesAreThere) {
  const Registered registered("many", database_);
  for (const int rows : {255, 256, 257, 1000}) {
    const std::string sql = "SELECT * FROM Many WHERE Id <= " + std::to_string(rows);
    for (const char* asked : {"A", "B", "C", "D", "F"}) {  // read whole at first, later narrowed
      const auto result = database_->Select(sql);
      EXPECT_FALSE(result->IsEmpty());
      EXPECT_TRUE(asked[0] != 'A' || result->IsComplete() == (rows <= 256));
      EXPECT_EQ(result->AsText(rows - 1, result->ColumnIndex(asked)),
                FreshRows(std::string("SELECT ") + asked + " FROM Many WHERE Id = " + std::to_string(rows)));
      EXPECT_THROW(static_cast<void>(result->AsText(rows, 0)), std::out_of_range);
      EXPECT_EQ(result->RowCount(), rows);
    }
  }
  Query query("many");
  query.SetSql("SELECT * FROM Many");
  query.Open();
  ASSERT_TRUE(query.Locate("A;B", std::vector<KeyValue>{"a900", 900 % 7}));
  EXPECT_EQ(query.FieldByName("C").AsFloat(), 450);
  EXPECT_FALSE(query.Locate("A", "a1001"));
  query.Last();
  EXPECT_EQ(query.FieldByName("Id").AsInteger(), 1000);
  int sum = 0;
  for (query.First(); !query.Eof(); query.Next()) sum += query.FieldByName("Id").AsInteger();
  EXPECT_EQ(sum, 1000 * 1001 / 2);
}

TEST_F(PartialResultTest, CursorsShareWhatIsFetched) {
  options_.cache_bytes = 64 << 20;
  const Registered registered("many", file_.Open(options_));
  Query first("many");
  Query second("many");
  for (Query* query : {&first, &second}) {
    query->SetSql("SELECT *, NOW() AS Moment FROM Many");
    query->Open();
  }
  second.Last();
  EXPECT_EQ(first.FieldByName("A").AsString() + second.FieldByName("A").AsString(), "a1a1000");
  EXPECT_EQ(first.RowCount(), 1000);
}

TEST_F(PartialResultTest, WhatIsReadAfterAWriteIsOfTheSnapshot) {
  const Registered registered("varndb", database_);
  const auto columns = Narrowed("SELECT * FROM P WHERE Id = 1", {"Id"});
  const auto rows = database_->Select("SELECT * FROM Many");
  const auto both = Narrowed("SELECT * FROM Many WHERE D = 'd'", {"Id"});
  for (const auto& result : {columns, rows, both}) ASSERT_FALSE(result->IsComplete());
  SqliteWriter writer(file_.File());
  writer.Transaction([&] {
    writer.Execute("UPDATE P SET Name = 'new', A = 100");
    writer.Execute("DELETE FROM Many WHERE Id > 10");
    writer.Execute("UPDATE Many SET A = 'new'");
  });
  EXPECT_EQ(Rows(*columns), "1|p1|1|2|3");
  EXPECT_EQ(rows->RowCount(), 1000);
  EXPECT_EQ(both->AsText(998, both->ColumnIndex("A")), "a999");
  EXPECT_EQ(Rows(*database_->Select("SELECT * FROM P WHERE Id = 1")), "1|new|100|2|3");
}

TEST_F(PartialResultTest, OutlivesItsDatabase) {
  DatabaseRegistry::Register("varndb", database_);
  const auto columns = Narrowed("SELECT * FROM P WHERE Id = 1", {"Id"});
  const auto rows = database_->Select("SELECT * FROM Many");
  database_.reset();
  DatabaseRegistry::Remove("varndb");
  SqliteWriter(file_.File()).Execute("DELETE FROM P");
  EXPECT_EQ(Rows(*columns), "1|p1|1|2|3");
  EXPECT_EQ(rows->AsText(999, 1), "a1000");
}

TEST_F(PartialResultTest, MomentIsThatOfTheStatement) {
  const auto is_uniform = [](const ResultSet& result, const char* name) {
    const int column = result.ColumnIndex(name);
    const std::string last = result.AsText(result.RowCount() - 1, column);
    return result.AsText(0, column) == last && !last.empty();
  };
  for (const char* now : {"NOW()", "FNow()", "CASE WHEN Id > 300 OR A IS NULL THEN FNow() ELSE A END"}) {
    const std::string sql = std::string("SELECT ") + now + " AS Moment, * FROM Many";
    const auto result = Narrowed(sql, {"Id"});
    const std::string moment = FreshRows("SELECT NOW()");  // one second after the statement
    EXPECT_EQ(result->AsText(999, 0).substr(0, 17), moment.substr(0, 17)) << now;
    EXPECT_EQ(std::stoi(result->AsText(999, 0).substr(17)) + 1, std::stoi(moment.substr(17))) << now;
    EXPECT_TRUE(now[0] == 'C' || is_uniform(*result, "Moment")) << now;
    EXPECT_NE(database_->Select(sql), database_->Select(sql));
  }
}

TEST_F(PartialResultTest, FunctionThatIsNotTheSameTwiceDecidesOnceWhichRowsThereAre) {
  for (int run = 0; run < 6; ++run) {
    const auto result = database_->Select("SELECT * FROM Many WHERE FRandom() % 2 = 0");
    EXPECT_TRUE(result->IsComplete());
    for (int row = 1; row < result->RowCount(); ++row) {
      const std::int64_t id = result->AsInteger(row, result->ColumnIndex("Id"));
      ASSERT_LT(result->AsInteger(row - 1, 0), id);
      ASSERT_EQ(result->AsText(row, 1), "a" + std::to_string(id));
    }
  }
  for (int run = 0; run < 6; ++run) {
    const auto result = database_->Select("SELECT * FROM Many WHERE Id % 2 = FSecond() % 2");
    const std::int64_t parity = result->AsInteger(0, result->ColumnIndex("Id")) % 2;
    ASSERT_EQ(result->RowCount(), 500);
    for (int row = 0; row < 500; ++row)
      ASSERT_EQ(result->AsText(row, 1), "a" + std::to_string(2 * row + (parity == 0 ? 2 : 1)));
  }
}

TEST_F(PartialResultTest, FailureOfALaterReadingNamesTheStatementAsSent) {
  const std::string column =
      "SELECT Id, A, B, C, D, MONTHS(A, '2024-01-01') AS M, FMonths(F) AS N FROM Many WHERE ";
  const auto failing = [this](const std::string& sql, const std::function<void()>& work,
                              const std::string& message) {
    trace_.clear();
    EXPECT_THAT(work, testing::ThrowsMessage<DatabaseError>(message + "; statement: " + sql));
    EXPECT_EQ(trace_, sql + " -> " + message + "\n");
  };
  for (int run = 0; run < 5; ++run) EXPECT_EQ(database_->Select(column + "Id = 0")->ColumnIndex("Id"), 0);
  const auto result = database_->Select(column + "Id = 5");
  EXPECT_EQ(result->AsInteger(0, 0), 5);
  for (int i = 0; i < 2; ++i)
    failing(
        column + "Id = 5", [&] { static_cast<void>(result->AsText(0, 5)); }, "'a5' is not a date or time");
  EXPECT_EQ(result->AsInteger(0, 0), 5);
  const std::string rows =
      "SELECT Id FROM Many WHERE D = 'd' AND CASE WHEN Id > 300 THEN FMonths(A) END IS NULL";
  const auto first = database_->Select(rows);
  EXPECT_FALSE(first->IsEmpty());
  failing(
      rows, [&] { static_cast<void>(first->RowCount()); }, "function FMonths: 'a301' is not a date or time");
  database_->NoteWrite();  // reads the rest for good, and fails for good
  EXPECT_THROW(static_cast<void>(first->RowCount()), DatabaseError);
  EXPECT_EQ(first->AsInteger(0, 0), 1);
  database_->Select("SELECT * FROM P");  // and harms nobody else
}

TEST_F(PartialResultTest, LaterReadingIsCancelledAndBoundedLikeAnyOther) {
  bool cancelled = false;
  options_.cancelled = [&] { return cancelled; };
  options_.max_result_bytes = 1 << 20;
  const auto database = file_.Open(options_);
  const auto result = database->Select("SELECT a.*, b.* FROM Many a, Many b");
  EXPECT_THAT([&] { static_cast<void>(result->RowCount()); },
              testing::ThrowsMessage<DatabaseError>(testing::HasSubstr("larger than 1048576 bytes")));
  cancelled = true;
  EXPECT_THAT([&] { static_cast<void>(result->RowCount()); },
              testing::ThrowsMessage<DatabaseError>(testing::HasSubstr("cancelled")));
  cancelled = false;
  const std::string none = "SELECT a.*, b.* FROM Many a JOIN Many b ON a.Id >= b.Id";
  for (int run = 0; run < 5; ++run) EXPECT_FALSE(database->Select(none)->IsEmpty());
  EXPECT_THROW(static_cast<void>(database->Select(none)->RowCount()),
               DatabaseError);  // no columns, many rows
  EXPECT_EQ(database->Select("SELECT * FROM Many")->RowCount(), 1000);
}

TEST_F(PartialResultTest, RepeatedTextIsTheSameResultHoweverMuchIsRead) {
  options_.cache_bytes = 64 << 20;
  const auto database = file_.Open(options_);
  const auto select = [&](int id) {
    return database->Select("SELECT * FROM P WHERE Id = " + std::to_string(id));
  };
  for (int id = 100; id < 110; ++id) EXPECT_EQ(select(id)->ColumnIndex("Name"), 1);
  const auto narrow = select(1);
  EXPECT_FALSE(narrow->IsComplete());
  EXPECT_EQ(narrow->AsText(0, 3), "2");
  EXPECT_EQ(select(1), narrow);
  EXPECT_EQ(database->Select("SELECT * FROM Many")->RowCount(), 1000);
  EXPECT_EQ(database->Select("SELECT * FROM Many"), database->Select("SELECT * FROM Many"));
  database->NoteWrite();
  EXPECT_NE(select(1), narrow);
  // Only its 301st row asks the clock: nobody knew that the text was not to be kept.
  const std::string late = "SELECT CASE WHEN Id > 300 THEN FNow() END AS Late FROM Many";
  EXPECT_EQ(database->Select(late)->RowCount(), 1000);
  EXPECT_NE(database->Select(late), database->Select(late));
}

std::shared_ptr<const ResultSet> NumberedRows(int count) {
  ResultSetBuilder builder({"A"});
  for (int row = 0; row < count; ++row) {
    builder.BeginRow();
    builder.AddInteger(row);
  }
  return builder.Finish();
}

TEST(ResultCache, CountsWhatIsFetchedLater) {
  ResultCache cache(100'000);
  const auto kept = NumberedRows(1);
  cache.Put("kept", kept);
  for (int i = 0; i < 20; ++i) {
    ResultSetBuilder builder({"A"});
    builder.BeginRow();
    builder.AddInteger(0);
    const auto growing = builder.Finish(true, [](ResultSet::Missing) { return NumberedRows(2000); });
    cache.Put("growing" + std::to_string(i), growing);
    EXPECT_EQ(growing->RowCount(), 2000);
    cache.NoteGrowth();
    cache.Put("next" + std::to_string(i), NumberedRows(1));
  }
  EXPECT_EQ(cache.Find("kept"), nullptr);  // pushed out
  EXPECT_EQ(cache.Find("growing0"), nullptr);
  EXPECT_NE(cache.Find("growing19"), nullptr);
  ResultSetBuilder builder({"A"});
  builder.BeginRow();
  builder.AddInteger(0);
  const auto large = builder.Finish(true, [](ResultSet::Missing) { return NumberedRows(5000); });
  cache.Put("large", large);
  EXPECT_EQ(large->RowCount(), 5000);
  cache.NoteGrowth();
  cache.Put("last", NumberedRows(1));
  EXPECT_EQ(cache.Find("large"), nullptr);  // by itself more than its share
  EXPECT_NE(cache.Find("last"), nullptr);
}

TEST(ResultCache, StopsKeepingWhatIsNeverAskedForAgain) {
  ResultCache cache(1 << 20);
  const auto never = std::make_shared<CacheUse>();
  const auto often = std::make_shared<CacheUse>();
  for (int i = 0; i < 200; ++i) {
    const std::string number = std::to_string(i);
    cache.Put("never" + number, NumberedRows(1), never);
    cache.Put("often" + number, NumberedRows(1), often);
    EXPECT_NE(cache.Find("often" + number), nullptr) << i;
  }
  EXPECT_NE(cache.Find("never0"), nullptr);
  EXPECT_EQ(cache.Find("never199"), nullptr);
}

}  // namespace
}  // namespace excelexp
