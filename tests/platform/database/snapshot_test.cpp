// When writes are seen, what the cache may keep, and who waits for whom.
#include <sqlite3.h>

#include <chrono>

#include "platform/database/DatabaseError.h"
#include "platform/database/Query.h"
#include "platform/database/ResultCache.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::ErrorOf;
using test::Registered;
using test::Rows;
using test::TestDatabase;

constexpr char kSchema[] = R"(
CREATE TABLE T(Id INTEGER PRIMARY KEY, V);
INSERT INTO T VALUES(1, 'old');
CREATE TABLE DatabaseFunction(FunctionName VARCHAR(40), ArgumentCount INTEGER, FunctionSql VARCHAR(400));
INSERT INTO DatabaseFunction VALUES('FGet', 1, 'SELECT V FROM T WHERE Id = ?1'), ('FNow', 0, 'SELECT NOW()'),
  ('FToday', 0, 'SELECT date(''now'')'), ('FVia', 0, 'SELECT FNow()');
)";
constexpr char kBoth[] = "SELECT V, FGet(1) FROM T WHERE Id = 1";

/// Another program that uses the same file.
class OtherProgram {
 public:
  explicit OtherProgram(const TestDatabase& file) { sqlite3_open(file.File().c_str(), &handle_); }
  ~OtherProgram() { sqlite3_close(handle_); }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;
  int Run(const std::string& sql) { return sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr); }

 private:
  sqlite3* handle_ = nullptr;
};

class SnapshotTest : public testing::TestWithParam<const char*> {
 protected:
  SnapshotTest() { OtherProgram(file_).Run(std::string("PRAGMA journal_mode = ") + GetParam()); }
  TestDatabase file_{kSchema};
};
INSTANTIATE_TEST_SUITE_P(JournalModes, SnapshotTest, testing::Values("delete", "wal"));

TEST_P(SnapshotTest, WriteOfOursIsSeenByTheNextSelect) {
  const auto database = file_.Open();
  const Registered registered("varndb", database);
  SqliteWriter writer(file_.File(), SqliteWriter::Mode::kExisting, 200);
  EXPECT_EQ(Rows(*database->Select(kBoth)), "old|old");  // holds a snapshot from here on
  writer.Transaction([&] {
    const SqlValue value[] = {std::string("new")};
    EXPECT_EQ(writer.Execute("UPDATE T SET V = ?1", value), 1);
    EXPECT_EQ(Rows(*database->Select(kBoth)),
              "old|old");  // not committed yet; and the reader reads in between
  });
  EXPECT_EQ(Rows(*database->Select(kBoth)), "new|new");
  writer.Execute("UPDATE T SET V = 'newer'");
  EXPECT_EQ(Rows(*database->Select(kBoth)), "newer|newer");
  writer.ExecuteScript("UPDATE T SET V = 'x'; INSERT INTO T VALUES(2, 'y')");
  EXPECT_EQ(Rows(*database->Select(kBoth)), "x|x");
  EXPECT_EQ(Rows(*database->Select("SELECT Count(*) FROM T")), "2");
}

TEST_P(SnapshotTest, LargeTransactionLeavesReadersAlone) {
  const auto database = file_.Open({.busy_timeout_ms = 200});
  const Registered registered("varndb", database);
  SqliteWriter writer(file_.File(), SqliteWriter::Mode::kExisting, 200);
  writer.Transaction([&] {
    writer.Execute(
        "WITH RECURSIVE n(i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM n WHERE i < 40000) "
        "INSERT INTO T SELECT i, 'padding padding padding padding padding padding padding' FROM n");
    EXPECT_EQ(Rows(*database->Select("SELECT Count(*) FROM T")), "1");
  });
  EXPECT_EQ(Rows(*database->Select("SELECT Count(*) FROM T")), "40000");
}

TEST_P(SnapshotTest, FailedTransactionLeavesNothing) {
  const auto database = file_.Open();
  const Registered registered("varndb", database);
  SqliteWriter writer(file_.File());
  EXPECT_THROW(writer.Transaction([&] {
    writer.Execute("DELETE FROM T");
    writer.Execute("DELETE FROM Nowhere");
  }),
               DatabaseError);
  EXPECT_EQ(Rows(*database->Select(kBoth)), "old|old");
  writer.Transaction([&] { writer.Execute("DELETE FROM T"); });
  EXPECT_EQ(Rows(*database->Select(kBoth)), "");
}

TEST_P(SnapshotTest, AnotherProgramsWriteIsSeenAfterNoteWriteAndNotBefore) {
  const auto database = file_.Open({.busy_timeout_ms = 100});
  OtherProgram other(file_);
  const bool wal = std::string_view(GetParam()) == "wal";
  EXPECT_EQ(other.Run("UPDATE T SET V = 'first'"), SQLITE_OK);  // an opened file holds no lock
  EXPECT_EQ(Rows(*database->Select(kBoth)), "first|first");
  EXPECT_EQ(other.Run("UPDATE T SET V = 'second'"), wal ? SQLITE_OK : SQLITE_BUSY);
  EXPECT_EQ(Rows(*database->Select(kBoth)), "first|first");
  EXPECT_EQ(Rows(*database->Select("SELECT V AS Uncached FROM T")), "first");
  database->NoteWrite();
  EXPECT_EQ(other.Run("UPDATE T SET V = 'second'"), SQLITE_OK);  // no lock either
  EXPECT_EQ(Rows(*database->Select(kBoth)), "second|second");
}

TEST_P(SnapshotTest, ChangedFunctionIsSeen) {
  const auto database = file_.Open();
  const Registered registered("varndb", database);
  const char* const sql = "SELECT FGet(1)";
  EXPECT_EQ(Rows(*database->Select(sql)), "old");
  SqliteWriter(file_.File())
      .ExecuteScript(
          "UPDATE DatabaseFunction SET FunctionSql = 'SELECT length(NOW())' WHERE FunctionName = 'FGet'");
  EXPECT_EQ(Rows(*database->Select(sql)), "19");
  EXPECT_NE(database->Select(sql), database->Select(sql));  // it became volatile
  SqliteWriter(file_.File()).ExecuteScript("DELETE FROM DatabaseFunction WHERE FunctionName = 'FGet'");
  EXPECT_NE(ErrorOf(*database, sql), "");
}

TEST_P(SnapshotTest, ChangedSchemaIsSeen) {
  const auto database = file_.Open();
  OtherProgram other(file_);
  const char* const join = "SELECT A.V FROM A JOIN T";
  const char* const count = "SELECT Count(*) FROM SysTable JOIN SysColumn WHERE table_name = 't'";
  EXPECT_EQ(ErrorOf(*database, join), "no such table: A");
  EXPECT_EQ(Rows(*database->Select(count)) + database->ColumnType("A", "V"), "2");
  database->NoteWrite();
  EXPECT_EQ(
      other.Run("CREATE TABLE A(V VARCHAR(3), Id REFERENCES T); INSERT INTO A VALUES('a', 1); ALTER TABLE T "
                "ADD COLUMN W;"
                "UPDATE DatabaseFunction SET FunctionSql = 'SELECT ''changed''' WHERE FunctionName = 'FGet'"),
      SQLITE_OK);
  database->NoteWrite();
  EXPECT_EQ(Rows(*database->Select(join)), "a");
  EXPECT_EQ(Rows(*database->Select(count)) + database->ColumnType("A", "V"), "3char");
  EXPECT_EQ(Rows(*database->Select("SELECT FGet(1)")), "changed");
}

TEST(DatabaseLock, HeldByAnotherProgramIsOneErrorAfterTheWait) {
  const TestDatabase file(kSchema);
  const auto database = file.Open({.busy_timeout_ms = 150});
  OtherProgram other(file);
  ASSERT_EQ(other.Run("BEGIN EXCLUSIVE"), SQLITE_OK);
  const std::string message =
      "the database '" + file.File() + "' is locked by another program (waited 150 ms)";
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(ErrorOf(*database, kBoth), message);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(150));
  EXPECT_THROW(file.Open({.busy_timeout_ms = 10}), DatabaseError);
  SqliteWriter writer(file.File(), SqliteWriter::Mode::kExisting, 150);
  EXPECT_THAT([&] { writer.Execute("DELETE FROM T"); },
              testing::ThrowsMessage<DatabaseError>(message + "; statement: DELETE FROM T"));
  other.Run("COMMIT");
  EXPECT_EQ(Rows(*database->Select(kBoth)), "old|old");  // usable again
}

TEST_P(SnapshotTest, RepeatedTextIsAnsweredFromTheCacheUnlessItIsVolatile) {
  SqliteOptions options;
  options.now = [] { return EncodeDate(2024, 2, 29); };
  const auto database = file_.Open(options);
  const struct {
    const char* sql;
    bool cached;
  } cases[] = {
      {kBoth, true},
      {"SELECT date(V, '+1 day'), 'now and then' FROM T", true},
      {"SELECT MONTHS('2024-01-01', '2024-03-01')", true},
      {"SELECT NOW()", false},
      {"SELECT V FROM T WHERE V < now()", false},
      {"SELECT FNow()", false},
      {"SELECT FVia(), V FROM T", false},
      {"SELECT FToday()", false},
      {"SELECT random()", false},
      {"SELECT CURRENT_TIMESTAMP", false},
      {"SELECT date('NOW')", false},
      {"SELECT strftime('%Y')", false},
      {"SELECT strftime('%Y', '2024-02-29')", true},
      {"SELECT date ( )", false},
  };
  for (const auto& each : cases)
    EXPECT_EQ(database->Select(each.sql) == database->Select(each.sql), each.cached) << each.sql;
  const auto uncached = file_.Open({.cache_bytes = 0});
  EXPECT_NE(uncached->Select(kBoth), uncached->Select(kBoth));
}

TEST_P(SnapshotTest, CacheIsBoundedAndDropsTheOldest) {
  const auto database = file_.Open({.cache_bytes = 100'000});
  const std::string kept = "SELECT 'kept'";
  const std::string dropped = "SELECT 'dropped'";
  const auto first_kept = database->Select(kept);
  const auto first_dropped = database->Select(dropped);
  for (int i = 0; i < 100; ++i) {
    database->Select("SELECT zeroblob(5000), " + std::to_string(i));
    EXPECT_EQ(database->Select(kept), first_kept);
  }
  EXPECT_NE(database->Select(dropped), first_dropped);
  const std::string large = "SELECT zeroblob(50000)";  // would push out too much
  EXPECT_NE(database->Select(large), database->Select(large));
  EXPECT_EQ(database->Select(kept), first_kept);
}

TEST(ResultCache, CountsTheIndexesBuiltAfterwards) {
  const auto result = [] {
    ResultSetBuilder builder({"A", "B"});
    for (int row = 0; row < 1000; ++row) {
      builder.BeginRow();
      builder.AddInteger(row);
      builder.AddInteger(1);
    }
    return builder.Finish();
  };
  const auto first = result();
  ResultCache cache(first->Bytes() * 5);
  cache.Put("first", first);
  for (const char* sql : {"a", "b", "c"}) cache.Put(sql, result());
  const std::vector<std::vector<int>> columns = {{0}, {1}, {0, 1}, {1, 0}};
  for (int search = 0; search < 20; ++search)
    for (const std::vector<int>& each : columns) first->Find(each, std::vector<KeyView>(each.size(), 1));
  EXPECT_EQ(cache.Find("first"), first);
  EXPECT_EQ(cache.Find("a"), nullptr);
  EXPECT_NE(cache.Find("c"), nullptr);
}

TEST(SqliteWriter, BindsAndReadsEveryKindOfValue) {
  const TestDatabase file("CREATE TABLE V(a, b, c, d, e, f, g)");
  SqliteWriter writer(file.File());
  const std::vector<SqlValue> values = {
      std::monostate{},           std::int64_t{1} << 60, 0.1,
      std::string("it's\0", 5),   std::string(),         std::vector<std::uint8_t>{0, 255},
      std::vector<std::uint8_t>{}};
  for (int i = 0; i < 2; ++i) EXPECT_EQ(writer.Execute("INSERT INTO V VALUES(?,?,?,?,?,?,?)", values), 1);
  EXPECT_EQ(writer.Rows("SELECT * FROM V"), (std::vector{values, values}));
  EXPECT_EQ(writer.Execute("SELECT 1 FROM V"), 0);
  EXPECT_THROW(writer.Execute("INSERT INTO V(a) VALUES(?)"), DatabaseError);
  EXPECT_THROW(writer.Execute("DELETE FROM V; DELETE FROM V"), DatabaseError);
  EXPECT_THROW(writer.Transaction([&] { writer.Transaction([] {}); }), DatabaseError);
}

}  // namespace
}  // namespace excelexp
