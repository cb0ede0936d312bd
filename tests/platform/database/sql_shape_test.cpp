// Which values are parameters of a compiled statement, and that no answer depends on it.
#include "platform/database/SqlShape.h"

#include "platform/database/TestDatabase.h"

namespace excelexp {
namespace {

using test::ErrorOf;
using test::TestDatabase;

std::string Conditions(int count) {
  std::string conditions = " WHERE A = 0";
  for (int i = 1; i < count; ++i) conditions += " AND A = " + std::to_string(i);
  return conditions;
}

TEST(SqlShape, OnlyValuesAloneBehindColumnsOfConditionsAreParameters) {
  const struct {
    std::string rest;  // of SELECT ... FROM T
    std::string shape;
  } cases[] = {
      {" WHERE A = 'x' AND T.B=5", " WHERE A = ?1 AND T.B=?2"},
      {" where \"A\" = 'O''Neil' and [B] = ''", " where \"A\" = ?1 and [B] = ?2"},
      {" WHERE A = 5 ORDER BY 1 LIMIT 5", " WHERE A = ?1 ORDER BY 1 LIMIT 5"},
      {" WHERE A IN (SELECT A FROM U WHERE B = 7) AND C = 'y'",
       " WHERE A IN (SELECT A FROM U WHERE B = ?1) AND C = ?2"},
      {" WHERE A = 5 UNION SELECT 5 FROM U WHERE A = 6", " WHERE A = ?1 UNION SELECT 5 FROM U WHERE A = ?2"},
      {" WHERE A = /* it's */ 5 AND B = 'y' -- it's", " WHERE A = /* it's */ ?1 AND B = ?2 -- it's"},
      {" WHERE A = 999999999999999999", " WHERE A = ?1"},
  };
  for (const auto& each : cases)
    EXPECT_EQ(SqlShape("SELECT 1, 'x' FROM T" + each.rest).Text(), "SELECT 1, 'x' FROM T" + each.shape);
  EXPECT_EQ(SqlShape("SELECT 'x' AS A, NULL AS B, 5 as \"C\" FROM T").Text(),
            "SELECT ?1 AS A, NULL AS B, ?2 as \"C\" FROM T");
  const std::string unchanged[] = {
      "SELECT 'x', 5 AS B FROM T",
      "SELECT 'x' AS A, f(5) AS B FROM T",
      "SELECT 'x' AS A, ? AS B FROM T",
      "SELECT 'x' AS A FROM T, U",
      "SELECT 'x' AS A FROM T ORDER BY A",
      "SELECT DISTINCT 'x' AS A FROM T",
      "SELECT 'x' AS A UNION SELECT 5 AS A FROM T",
      "SELECT * FROM T WHERE A IN ('x', 5)",
      "SELECT * FROM T WHERE A = 'x' || B",
      "SELECT * FROM T WHERE A = 5 + B",
      "SELECT * FROM T WHERE A = -5",
      "SELECT * FROM T WHERE A = 1.5",
      "SELECT * FROM T WHERE A = 5e3",
      "SELECT * FROM T WHERE A = 0x10",
      "SELECT * FROM T WHERE A = x'41'",
      "SELECT * FROM T WHERE A = 1234567890123456789",
      "SELECT * FROM T WHERE A BETWEEN 1 AND 2",
      "SELECT * FROM T WHERE A LIKE 'x'",
      "SELECT * FROM T WHERE A <> 5 AND B >= 6 AND C == 7",
      "SELECT * FROM T WHERE abs(A = 5)",
      "SELECT * FROM T JOIN U ON U.A = 5",
      "SELECT * FROM T GROUP BY A HAVING A = 5",
      "SELECT A = 5 FROM T",
      "SELECT (SELECT B FROM U WHERE A = 5) FROM T",
      "SELECT max((SELECT B FROM U WHERE A = 5)), count(*) FILTER (WHERE A = 5) FROM T",
      "SELECT * FROM T WHERE A = 'it''",
      "SELECT * FROM T WHERE A = 'x",
      "SELECT * FROM T WHERE A = 5 AND B = ?1",
      "SELECT * FROM T" + Conditions(65),
  };
  for (const std::string& sql : unchanged) EXPECT_EQ(SqlShape(sql).Text(), sql);
  EXPECT_EQ(SqlShape("SELECT * FROM T" + Conditions(64)).ValueCount(), 64);
}

TEST(SqlShape, MatchesStatementsThatDifferInTheirValuesOnly) {
  const SqlShape shape("SELECT * FROM T WHERE A = 'x' AND B = 5 AND C = 'y'");
  std::vector<SqlComparand> values;
  ASSERT_TRUE(shape.Matches("SELECT * FROM T WHERE A = 'O''Neil AND B = 1' AND B = 007 AND C = ''", values));
  EXPECT_EQ(TextOf(values[0]), "O'Neil AND B = 1");
  EXPECT_EQ(values[1].number, 7);
  EXPECT_EQ(TextOf(values[2]), "");
  for (const char* sql : {"SELECT * FROM T WHERE A = 'x' AND B = '5' AND C = 'y'",
                          "SELECT * FROM T WHERE A = 'x' AND B = 5.0 AND C = 'y'",
                          "SELECT * FROM T WHERE A = 'x' AND B = -5 AND C = 'y'",
                          "SELECT * FROM T WHERE A = x'78' AND B = 5 AND C = 'y'",
                          "SELECT * FROM T WHERE A = 'x''' AND B = 5 AND C = 'y",
                          "SELECT * FROM T WHERE A = 'x' AND B = 5 AND C = 'y' OR 1",
                          "SELECT * FROM T WHERE A = 'x' AND B = 5 AND C = 'y''",
                          "SELECT * FROM T WHERE A = 'x' AND B = 1234567890123456789 AND C = 'y'"})
    EXPECT_FALSE(shape.Matches(sql, values)) << sql;
}

/// Whether a result has the rows that the text gives without any shape: every kind of value by its own type.
void ExpectRows(const ResultSet& result, const std::vector<std::vector<SqlValue>>& rows,
                const std::string& sql) {
  ASSERT_EQ(result.RowCount(), rows.size()) << sql;
  for (int row = 0; row < result.RowCount(); ++row) {
    for (int column = 0; column < result.ColumnCount(); ++column) {
      const SqlValue& value = rows[row][column];
      EXPECT_EQ(result.IsNull(row, column), std::holds_alternative<std::monostate>(value)) << sql;
      if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        EXPECT_EQ(result.AsText(row, column), std::to_string(*integer)) << sql;
      } else if (const auto* number = std::get_if<double>(&value)) {
        EXPECT_EQ(result.AsFloat(row, column), *number) << sql;
      } else if (const auto* text = std::get_if<std::string>(&value)) {
        EXPECT_EQ(result.AsText(row, column), *text) << sql;
      }
    }
  }
}

constexpr char kSchema[] = R"(
CREATE TABLE T(Id INTEGER PRIMARY KEY, I INTEGER, X VARCHAR(20), N NUMERIC, R DOUBLE, V, C VARCHAR(9) COLLATE NOCASE);
CREATE INDEX ByI ON T(I); CREATE INDEX ByX ON T(X, I DESC); CREATE INDEX ByC ON T(C);
CREATE INDEX Some ON T(N, X) WHERE X = 'abc';
CREATE TABLE Given(V);
INSERT INTO Given VALUES(NULL), (5), ('5'), ('05'), (5.5), (''), ('O''Neil'), ('it'), ('abc'), ('ABC'), ('1e3'), (1000),
  (999999999999999999), ('999999999999999999'), (9223372036854775807), (1e19), (x'35'), ('a''b''''c'), (' 5'), (0);
INSERT INTO T(I, X, N, R, V, C) SELECT V, V, V, V, V, V FROM Given;
INSERT INTO T(I, X, N, R, V, C) SELECT 5, V, 5, V, V, V FROM Given;
)";

TEST(SqlShape, AnswersAreThoseOfTheTextAsItIs) {
  const TestDatabase file(kSchema);
  SqliteWriter reference(file.File());
  const auto database = file.Open({.cache_bytes = 0});
  const char* const values[] = {"5",
                                "'5'",
                                "005",
                                "'05'",
                                "''",
                                "'O''Neil'",
                                "'it'",
                                "'abc'",
                                "'ABC'",
                                "-5",
                                "5.5",
                                "'1e3'",
                                "999999999999999999",
                                "1000",
                                "x'35'",
                                "'a''b''''c'",
                                "NULL",
                                "' 5'",
                                "0",
                                "9223372036854775807",
                                "1e19",
                                "'it' || ''",
                                "'999999999999999999'"};
  const char* const statements[] = {
      "SELECT # AS A, 'x' AS X, # AS Id FROM Given",
      "SELECT * FROM T WHERE I = #",
      "SELECT * FROM T WHERE X = #",
      "SELECT * FROM T WHERE N = # ORDER BY X, Id",
      "SELECT * FROM T WHERE R = #",
      "SELECT * FROM T WHERE V = #",
      "SELECT * FROM T WHERE C = #",
      "SELECT * FROM T WHERE T.X = # AND I = 5",
      "SELECT V || '#', * FROM (SELECT * FROM T WHERE V = #) AS U WHERE I = 5",
      "SELECT Id, (SELECT max(V) FROM T WHERE C = #) FROM T WHERE V = #",
      "SELECT count(*), max(Id), sum(R), total(N), min(X) FROM T WHERE I IN (SELECT I FROM T WHERE X = #)",
      "SELECT * FROM T WHERE NOT X = # AND Id = 7",
      "SELECT X, * FROM T WHERE V = # UNION ALL SELECT '#', * FROM T WHERE C = #",
  };
  for (int round = 0; round < 3; ++round) {
    for (const std::string statement : statements) {
      for (const std::string value : values) {
        std::string sql;
        for (const char c : statement) {
          const bool inside_text = !sql.empty() && sql.back() == '\'';
          c == '#' && !inside_text ? sql += value : sql += c;
        }
        const auto result = database->Select(sql);
        for (const char* name : {"Id", "X"}) static_cast<void>(result->ColumnIndex(name));
        ExpectRows(*result, reference.Rows(sql), sql);
      }
    }
  }
}

TEST(SqlShape, ColumnsWithoutAliasKeepTheTextAsTheirName) {
  const TestDatabase file(kSchema);
  const auto database = file.Open();
  for (const char* column : {"(SELECT X FROM T WHERE Id = 3)", "(SELECT X FROM T WHERE Id = 8)", "X = 'it'"})
    EXPECT_EQ(database->Select(std::string("SELECT ") + column + " FROM T WHERE Id = 1")->ColumnName(0),
              column);
}

TEST(SqlShape, WhatIsNoStatementStaysAnError) {
  const TestDatabase file(kSchema);
  const auto database = file.Open();
  const std::string begin = "SELECT X FROM T WHERE X = ";
  const struct {
    std::string sql;
    const char* error;
  } cases[] = {
      {begin + "'it''", "unrecognized token: \"'it''\""},
      {begin + "'it", "unrecognized token: \"'it\""},
      {begin + std::string("'i\0t'", 5), "the statement has a null byte"},
      {begin + std::string("'\0''' AND I = 5", 15), "the statement has a null byte"},
      {begin + "?1", "the statement has parameters, and nothing gives them values"},
      {begin + "'it' AND I = :I", "the statement has parameters, and nothing gives them values"},
      {begin + "'it' AND Nope = 5", "no such column: Nope"},
      {begin + "'it' AND I = 5 AND", "incomplete input"},
      {begin + "'" + std::string(2 << 20, 'x') + "'", "the statement is longer than 1048576 bytes"},
  };
  for (int round = 0; round < 2; ++round) {
    for (const auto& each : cases) {
      EXPECT_EQ(ErrorOf(*database, each.sql), each.error) << each.sql.substr(0, 80);
      EXPECT_EQ(ErrorOf(*database, begin + "'it'"), "");
    }
  }
  EXPECT_THAT([&] { database->Select(begin + "'it' AND Nope = 5"); },
              testing::ThrowsMessage<DatabaseError>("no such column: Nope; statement: " + begin +
                                                    "'it' AND Nope = 5"));
}

}  // namespace
}  // namespace excelexp
