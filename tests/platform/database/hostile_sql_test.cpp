#include <chrono>

#include "platform/database/DatabaseError.h"
#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::ErrorOf;
using test::Rows;
using test::TestDatabase;

constexpr char kSchema[] = R"(
CREATE TABLE Pay(Id INTEGER PRIMARY KEY, Amount DOUBLE);
INSERT INTO Pay VALUES(1, 100), (2, 200);
CREATE VIEW PayView AS SELECT Amount FROM Pay;
CREATE TRIGGER PayTrigger INSTEAD OF INSERT ON PayView BEGIN DELETE FROM Pay; END;
CREATE TABLE DatabaseFunction(FunctionName VARCHAR(40), ArgumentCount INTEGER, FunctionSql VARCHAR(400));
INSERT INTO DatabaseFunction VALUES
  ('FEvil', 0, 'DELETE FROM Pay'), ('FStack', 0, 'SELECT 1; DELETE FROM Pay'),
  ('FPragma', 0, 'PRAGMA journal_mode = WAL'), ('FLoop', 1, 'SELECT FLoop(?1 + 1)'),
  ('FTooMany', 1, 'SELECT ?1 + ?2');
)";

const std::string kEndless = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) ";

TEST(HostileSql, IsRefusedOrStoppedAndChangesNothing) {
  const TestDatabase file(kSchema);
  const std::string bytes = file.Bytes();
  const std::string other = file.Folder() + "/other.db";
  int checks_left = 0;
  SqliteOptions options;
  options.max_result_bytes = 8 << 20;
  options.cancelled = [&] { return --checks_left < 0; };
  const auto database = file.Open(options);
  const std::string texts[] = {
      // other statements, alone and behind an id
      "DELETE FROM Pay",
      "INSERT INTO Pay VALUES(3, 1)",
      "UPDATE Pay SET Amount = 0",
      "REPLACE INTO Pay VALUES(1, 1)",
      "INSERT INTO PayView VALUES(1)",
      "DROP TABLE Pay",
      "DROP VIEW PayView",
      "CREATE TABLE t(x)",
      "CREATE TEMP TABLE t(x)",
      "CREATE TABLE t AS SELECT * FROM Pay",
      "CREATE INDEX i ON Pay(Amount)",
      "CREATE TEMP VIEW v AS SELECT 1",
      "CREATE TEMP TRIGGER t AFTER INSERT ON Pay BEGIN SELECT 1; END",
      "CREATE VIRTUAL TABLE v USING fts5(x)",
      "ALTER TABLE Pay RENAME TO Lost",
      "REINDEX",
      "ANALYZE",
      "VACUUM",
      "BEGIN",
      "COMMIT",
      "ROLLBACK",
      "SAVEPOINT s",
      "EXPLAIN DELETE FROM Pay",
      "EXPLAIN SELECT * FROM Pay",
      "EXPLAIN QUERY PLAN SELECT * FROM Pay",
      "WITH t AS (SELECT 1) DELETE FROM Pay",
      "DELETE FROM Pay RETURNING *",
      "DELETE FROM DUMMY",
      "DROP TABLE temp.DUMMY",
      "INSERT INTO SysTable VALUES(1, 'x', 'y')",
      "SELECT * FROM Pay WHERE Id = 1; DELETE FROM Pay",
      "SELECT 1;;SELECT 2",
      "SELECT * FROM Pay WHERE Id = ''; DROP TABLE Pay; --'",
      "SELECT 1; -- comment\n DELETE FROM Pay",
      std::string("SELECT 1\0; DELETE FROM Pay", 26),
      ";",
      "",
      "-- nothing",
      // further files and settings
      "ATTACH '" + other + "' AS o",
      "ATTACH ':memory:' AS o",
      "DETACH main",
      "VACUUM INTO '" + other + "'",
      "PRAGMA query_only = 0",
      "PRAGMA writable_schema = 1",
      "PRAGMA journal_mode = WAL",
      "PRAGMA user_version = 7",
      "PRAGMA wal_checkpoint",
      "PRAGMA table_info(Pay)",
      "PRAGMA temp_store_directory = '" + file.Folder() + "'",
      "SELECT * FROM pragma_database_list",
      "SELECT * FROM pragma_journal_mode",
      "SELECT * FROM pragma_table_info('Pay')",
      "SELECT * FROM sqlite_dbpage",
      "SELECT * FROM dbstat",
      "SELECT * FROM sqlite_stmt",
      "SELECT * FROM fts3tokenize('simple', 'a')",
      // functions that reach outside
      "SELECT load_extension('/lib/x.so')",
      "SELECT \"take row\"(Id) FROM Pay",
      "SELECT writefile('" + other + "', 'x')",
      "SELECT readfile('/etc/passwd')",
      "SELECT edit('x')",
      "SELECT fts3_tokenizer('simple')",
      "SELECT fts3_tokenizer('simple', x'00')",
      "SELECT sqlite_log(1, 'x')",
      "SELECT FEvil()",
      "SELECT FStack()",
      "SELECT FPragma()",
      "SELECT FLoop(1)",
      "SELECT FTooMany(1)",
      // parameters, misspelt names in quotes
      "SELECT ?1",
      "SELECT :a FROM Pay",
      "SELECT \"nobody\" FROM Pay",
      // without end, or too large
      kEndless + "SELECT count(*) FROM n",
      kEndless + "SELECT i FROM n",
      kEndless + "SELECT max(i) FROM n ORDER BY 1",
      kEndless + "SELECT i FROM n ORDER BY -i",
      kEndless + "SELECT zeroblob(1000000) FROM n",
      "SELECT count(*) FROM (" + kEndless + "SELECT i FROM n), Pay",
      "SELECT zeroblob(2000000000)",
      "SELECT length(zeroblob(20000000))",
      "SELECT randomblob(2000000000)",
      "SELECT hex(zeroblob(16000000))",
      "SELECT replace(hex(zeroblob(4000000)), '0', 'xxxxxxxxxx')",
      "SELECT " + std::string(3000, '(') + "1" + std::string(3000, ')'),
      "SELECT 1" + std::string(5000, '+') + "1",
      "SELECT '" + std::string(2000000, 'x') + "'",
  };
  for (const std::string& text : texts) {
    checks_left = 200;  // about a million steps
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_NE(ErrorOf(*database, text), "") << text.substr(0, 200);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5)) << text.substr(0, 200);
  }
  checks_left = 1000;
  EXPECT_EQ(Rows(*database->Select("SELECT * FROM Pay;  -- with a comment")), "1|100/2|200");
  EXPECT_EQ(file.Bytes(), bytes);
  EXPECT_EQ(file.FileNames(), std::set<std::string>{"test.db"});
}

TEST(HostileSql, HarmlessFunctionsStayAllowed) {
  const TestDatabase file(kSchema);
  EXPECT_EQ(Rows(*file.Open()->Select(
                "SELECT upper('a') || coalesce(NULL, 'b'), round(2.5), abs(-1), substr('xyz', 2, 1), "
                "max(1, 2), strftime('%Y', '2024-01-01'), iif(1, 'y', 'n'), length(randomblob(4)), "
                "CAST('7' AS Double)/2, 'x' LIKE 'X', json_extract('[3]', '$[0]')")),
            "Ab|3|1|y|2|2024|y|4|3.5|1|3");
}

TEST(HostileSql, EndlessStatementStopsWithinASecondOfACancel) {
  const TestDatabase file(kSchema);
  const auto cancel_at = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
  SqliteOptions options;
  options.cancelled = [&] { return std::chrono::steady_clock::now() > cancel_at; };
  EXPECT_EQ(ErrorOf(*file.Open(options), kEndless + "SELECT count(*) FROM n"), "cancelled");
  EXPECT_LT(std::chrono::steady_clock::now(), cancel_at + std::chrono::seconds(1));
}

}  // namespace
}  // namespace excelexp
