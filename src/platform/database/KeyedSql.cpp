#include "platform/database/KeyedSql.h"

#include <algorithm>
#include <cstddef>

#include "platform/database/SqlClauses.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

// A statement is sent so often before its keys are counted, and for one key in so many before it is read for
// all of them. A key on its own costs about twice what it costs among all: should the others never be asked
// for, reading them took some eight times as long as what was asked.
constexpr std::size_t kSingleReads = 32;
constexpr std::size_t kKeysForARead = 16;

struct Column {
  std::string table;
  std::string name;
};

/// The column whose name ends at the token `i`, of the table it is written with, or of the first one of its
/// FROM.
Column ColumnAt(const std::vector<SqlToken>& tokens, std::size_t i) {
  const std::string name = NameOf(tokens[i]);
  if (i > 1 && tokens[i - 1].IsMark('.') && tokens[i - 2].IsName()) return {NameOf(tokens[i - 2]), name};
  while (i > 0 && !tokens[i].IsWord("from")) --i;
  return {tokens[i].IsWord("from") && tokens[i + 1].IsName() ? NameOf(tokens[i + 1]) : "", name};
}

/// Where the values of the column come from: the table that it refers to, or its own.
std::optional<Column> SourceOf(const Column& column, const FindTable& find_table) {
  const TableShape* const shape = find_table(column.table);
  if (shape == nullptr || shape->Find(column.name) == nullptr) return std::nullopt;
  for (const TableShape::ForeignKey& key : shape->keys) {
    if (key.columns.size() == 1 && SameName(key.columns[0].first, column.name))
      return Column{key.target, key.columns[0].second};
  }
  return Column{shape->name, column.name};
}

/// The walk of a statement whose only parameter stands at the token, or "".
std::string WalkOf(std::string_view sql, const std::vector<SqlToken>& tokens, std::size_t parameter) {
  const TokenSpan all = {0, tokens.size()};
  const std::size_t from = FindWord(tokens, all, "from");
  const std::size_t where = from + 2;
  const bool one_table = where < tokens.size() && tokens[0].IsWord("select") && tokens[from + 1].IsName() &&
                         tokens[where].IsWord("where");
  if (!one_table || tokens[1].IsWord("distinct") || tokens[1].IsWord("all")) return "";
  const TokenSpan column = {where + 1, parameter - 1};
  if (parameter + 2 != tokens.size() || parameter < where + 3 || !IsColumnName(tokens, column)) return "";
  const std::string key(
      sql.substr(tokens[column.begin].begin, tokens[column.end - 1].End() - tokens[column.begin].begin));
  return "SELECT " + key + ", " +
         std::string(sql.substr(tokens[1].begin, tokens[where].End() - tokens[1].begin)) + " typeof(" + key +
         ") = 'integer'";
}

// "CORRELATED SCALAR SUBQUERY 3": the number counts the subqueries of the whole statement, and what asks for
// the key is correlated once the key is a column.
std::string WithoutPlace(std::string text) {
  constexpr std::string_view kCorrelated = "CORRELATED ";
  if (text.starts_with(kCorrelated)) text.erase(0, kCorrelated.size());
  if (text.find(" SUBQUERY ") != std::string::npos) text.erase(text.find_last_not_of("0123456789") + 1);
  return text;
}

/// A plan as text: each loop, and each subquery, with all that is below it.
struct Arrangement {
  explicit Arrangement(const std::vector<PlanStep>& plan) {
    std::vector<std::string>* where = &loops;
    for (const PlanStep& step : plan) {
      const std::string text = WithoutPlace(step.text);
      if (step.depth == 0) {
        where = text.ends_with(" SUBQUERY ") ? &subqueries : &loops;
        where->emplace_back();
      }
      where->back() += std::to_string(step.depth) + " " + text + "\n";
    }
    std::ranges::sort(subqueries);
  }

  std::vector<std::string> loops;
  std::vector<std::string> subqueries;
};

}  // namespace

std::optional<KeyedSql> KeyedSql::Of(std::string_view sql, bool first_only, const FindTable& find_table) {
  const std::vector<SqlToken> tokens = TokenizeSql(sql);
  if (!HasOnlyNumberedParameters(tokens)) return std::nullopt;
  std::string text;
  std::optional<Column> source;
  std::size_t copied = 0;
  std::size_t first = 0;
  std::size_t parameters = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (!tokens[i].IsMark('?') || (first_only && tokens[i + 1].text != "1")) continue;
    // Elsewhere, inside an aggregate say, a column of the keys would mean something else than a parameter.
    if (i < 2 || !tokens[i - 1].IsMark('=') || !tokens[i - 2].IsName()) return std::nullopt;
    if (++parameters == 1) first = i;
    if (!source) source = SourceOf(ColumnAt(tokens, i - 2), find_table);
    if (!source) return std::nullopt;
    text.append(sql.substr(copied, tokens[i].begin - copied));
    // The plus takes the column's type away, for that would change how it is compared.
    text.append("+").append(kKeys).append(".").append(kKeys);
    copied = tokens[i + 1].End();
  }
  if (!source) return std::nullopt;
  text.append(sql.substr(copied));
  const std::string name(kKeys);
  const std::string table = QuoteName(source->table);
  const std::string column = QuoteName(source->name);
  // Texts and fractions may equal one another in more ways than whole numbers do. In the order of their table
  // keys stand next to one another, and so do the rows that they lead to.
  return KeyedSql{std::move(text),
                  "(SELECT DISTINCT " + column + " AS " + name + " FROM " + table +
                      " NOT INDEXED WHERE typeof(" + column + ") = 'integer') AS " + name,
                  "SELECT COUNT(*) FROM " + table, parameters == 1 ? WalkOf(sql, tokens, first) : ""};
}

bool KeyDemand::IsDue(const CountKeys& count) {
  if (is_settled_ || ++asked_ < kSingleReads) return false;
  if (keys_ == 0) {
    is_settled_ = true;
    const std::optional<std::size_t> keys = count();
    if (!keys) return false;
    keys_ = std::max<std::size_t>(1, *keys);
  }
  is_settled_ = asked_ * kKeysForARead >= keys_;
  return is_settled_;
}

bool FindsRowsAlike(const std::vector<PlanStep>& single, const std::vector<PlanStep>& all) {
  const Arrangement one(single);
  const Arrangement every(all);
  if (every.loops.size() < one.loops.size() || one.subqueries != every.subqueries) return false;
  return std::equal(one.loops.rbegin(), one.loops.rend(), every.loops.rbegin());
}

std::vector<PlanStep> PlanOfLast(const std::vector<PlanStep>& plan) {
  const auto last = std::ranges::find(plan.rbegin(), plan.rend(), 0, &PlanStep::depth);
  std::vector<PlanStep> below(last.base(), plan.end());
  for (PlanStep& step : below) --step.depth;
  return below;
}

}  // namespace excelexp
