#include "platform/database/UnionFilter.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <span>
#include <vector>

#include "platform/database/HeldTable.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

using Tokens = std::span<const SqlToken>;

// Where one of these stands among the conditions, ANDs do not part what must all hold.
constexpr std::array<std::string_view, 4> kLoosens = {"or", "not", "between", "case"};
constexpr std::array<std::string_view, 8> kEndsWhere = {"group", "having",    "window", "order",
                                                        "limit", "intersect", "except", "union"};

template <std::size_t N>
bool IsOneOf(const SqlToken& token, const std::array<std::string_view, N>& words) {
  return std::ranges::any_of(words, [&](std::string_view word) { return token.IsWord(word); });
}

/// The first token outside of parentheses that meets the condition; one behind the last without one.
template <typename Condition>
std::size_t FindOutside(Tokens tokens, const Condition& meets) {
  int depth = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].IsMark(')') && --depth < 0) return tokens.size();
    if (depth == 0 && meets(tokens[i])) return i;
    depth += tokens[i].IsMark('(') ? 1 : 0;
  }
  return tokens.size();
}

/// The parenthesis that closes what the tokens stand in; one behind the last without one.
std::size_t FindClose(Tokens tokens) {
  int depth = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].IsMark(')') && depth-- == 0) return i;
    depth += tokens[i].IsMark('(') ? 1 : 0;
  }
  return tokens.size();
}

std::size_t FindWord(Tokens tokens, std::string_view word) {
  return FindOutside(tokens, [word](const SqlToken& token) { return token.IsWord(word); });
}

struct Equality {
  std::string table;
  std::string column;
  std::string parameter;
};

/// "table.column = ?1" between ANDs.
std::vector<Equality> EqualitiesOf(Tokens conditions) {
  std::vector<Equality> equalities;
  while (!conditions.empty()) {
    const std::size_t end = FindWord(conditions, "and");
    const Tokens term = conditions.first(end);
    if (term.size() == 6 && term[0].IsName() && term[1].IsMark('.') && term[2].IsName() &&
        term[3].IsMark('=') && term[4].IsMark('?') && term[5].kind == SqlToken::Kind::kNumber) {
      equalities.push_back({NameOf(term[0]), NameOf(term[2]), "?" + std::string(term[5].text)});
    }
    conditions = conditions.subspan(std::min(end + 1, conditions.size()));
  }
  return equalities;
}

/// What is to be written where.
using Insertions = std::map<std::size_t, std::string>;

/// `derived` begins behind the parenthesis of "(SELECT * FROM T [WHERE ...] UNION SELECT ...) AS T".
void FilterDerived(Tokens derived, const std::vector<Equality>& equalities, const FindTable& find_table,
                   Insertions& insertions) {
  if (derived.size() < 5 || !derived[0].IsWord("select") || !derived[1].IsMark('*') ||
      !derived[2].IsWord("from") || !derived[3].IsName()) {
    return;
  }
  const bool has_conditions = derived[4].IsWord("where");
  const std::size_t end = FindWord(derived, "union");
  if (end == derived.size() || (!has_conditions && end != 4) || derived[end + 1].IsWord("all")) return;
  const Tokens conditions = derived.subspan(4, end - 4);
  if (FindOutside(conditions, [](const SqlToken& token) { return IsOneOf(token, kLoosens); }) <
      conditions.size()) {
    return;
  }
  const TableShape* const table = find_table(NameOf(derived[3]));
  std::string added;
  for (const Equality& equality : equalities) {
    const TableShape::Column* column = table == nullptr ? nullptr : table->Find(equality.column);
    if (column == nullptr || AffinityOf(column->declared_type) != Affinity::kText) continue;
    added += (added.empty() ? " " : " AND ") + QuoteName(equality.column) + " = " + equality.parameter;
  }
  if (added.empty()) return;
  has_conditions ? insertions.emplace(derived[4].End(), added + " AND")
                 : insertions.emplace(derived[3].End(), " WHERE" + added);
}

/// Goes through what stands between FROM and WHERE.
void FilterTables(Tokens tables, const std::vector<Equality>& equalities, const FindTable& find_table,
                  Insertions& insertions) {
  const auto opens = [](const SqlToken& token) { return token.IsMark('('); };
  for (std::size_t open = FindOutside(tables, opens); open < tables.size();
       open = FindOutside(tables, opens)) {
    tables = tables.subspan(open + 1);
    const std::size_t close = FindClose(tables);
    const Tokens behind = tables.subspan(std::min(close + 1, tables.size()));
    if (behind.size() >= 2 && behind[0].IsWord("as") && behind[1].IsName()) {
      std::vector<Equality> own;
      std::ranges::copy_if(equalities, std::back_inserter(own), [&](const Equality& equality) {
        return SameName(equality.table, NameOf(behind[1]));
      });
      FilterDerived(tables.first(close), own, find_table, insertions);
    }
    tables = behind;
  }
}

}  // namespace

std::string FilterInsideUnions(std::string_view sql, const FindTable& find_table) {
  const std::vector<SqlToken> all = TokenizeSql(sql);
  const Tokens tokens(all);
  const std::size_t from = FindWord(tokens, "from");
  const std::size_t where = FindWord(tokens, "where");
  if (from >= where || where == tokens.size()) return std::string(sql);
  Tokens conditions = tokens.subspan(where + 1);
  conditions = conditions.first(
      FindOutside(conditions, [](const SqlToken& token) { return IsOneOf(token, kEndsWhere); }));
  const bool all_must_hold = FindOutside(conditions, [](const SqlToken& token) {
                               return IsOneOf(token, kLoosens);
                             }) == conditions.size();
  const std::vector<Equality> equalities = all_must_hold ? EqualitiesOf(conditions) : std::vector<Equality>{};
  Insertions insertions;
  if (!equalities.empty())
    FilterTables(tokens.subspan(from + 1, where - from - 1), equalities, find_table, insertions);
  std::string filtered;
  std::size_t copied = 0;
  for (const auto& [place, text] : insertions) {
    filtered.append(sql.substr(copied, place - copied)).append(text);
    copied = place;
  }
  return filtered.append(sql.substr(copied));
}

}  // namespace excelexp
