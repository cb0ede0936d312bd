#include "platform/database/DistinctOrder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "platform/database/Names.h"
#include "platform/database/SqlClauses.h"

namespace excelexp {
namespace {

using Tokens = std::vector<SqlToken>;

constexpr std::array<std::string_view, 8> kOtherClauses = {"group",  "having", "limit",     "window",
                                                           "offset", "union",  "intersect", "except"};

bool SameTokens(const Tokens& tokens, const TokenSpan& left, const TokenSpan& right) {
  if (left.Size() != right.Size()) return false;
  for (std::size_t i = 0; i < left.Size(); ++i) {
    const SqlToken& a = tokens[left.begin + i];
    const SqlToken& b = tokens[right.begin + i];
    const bool same =
        a.kind == SqlToken::Kind::kWord ? b.kind == a.kind && SameName(a.text, b.text) : a.text == b.text;
    if (!same) return false;
  }
  return true;
}

std::vector<TokenSpan> Listed(const Tokens& tokens, const TokenSpan& list) {
  return SplitSpan(tokens, list, [](const SqlToken& token) { return token.IsMark(','); });
}

struct Column {
  TokenSpan expression;
  std::string name;  ///< in the result
};

std::optional<std::vector<Column>> ColumnsOf(const Tokens& tokens, const TokenSpan& list) {
  std::vector<Column> columns;
  for (const TokenSpan& item : Listed(tokens, list)) {
    const bool named = item.Size() > 2 && tokens[item.end - 2].IsWord("as") && tokens[item.end - 1].IsName();
    const TokenSpan expression = {item.begin, named ? item.end - 2 : item.end};
    // Nothing that could mean one thing in a list and another in an order.
    if (!IsColumnName(tokens, expression)) return std::nullopt;
    const std::string name = FoldName(NameOf(tokens[item.end - 1]));
    if (std::ranges::any_of(columns, [&](const Column& other) { return other.name == name; }))
      return std::nullopt;
    columns.push_back({expression, name});
  }
  return columns;
}

/// "1, 2 DESC" for the terms; nothing unless each is a column and each column is one of them.
std::optional<std::string> Positions(const Tokens& tokens, const TokenSpan& terms,
                                     const std::vector<Column>& columns) {
  std::string positions;
  std::vector<bool> sorted(columns.size());
  for (TokenSpan term : Listed(tokens, terms)) {
    const bool directed =
        term.Size() > 1 && (tokens[term.end - 1].IsWord("asc") || tokens[term.end - 1].IsWord("desc"));
    const std::string direction = directed ? " " + std::string(tokens[--term.end].text) : "";
    const auto column = std::ranges::find_if(
        columns, [&](const Column& each) { return SameTokens(tokens, each.expression, term); });
    if (column == columns.end()) return std::nullopt;
    const auto position = static_cast<std::size_t>(column - columns.begin());
    sorted[position] = true;
    positions += (positions.empty() ? "" : ", ") + std::to_string(position + 1) + direction;
  }
  const bool all = std::ranges::all_of(sorted, [](bool each) { return each; });
  return all ? std::optional(positions) : std::nullopt;
}

}  // namespace

std::string SortWhatIsDistinct(std::string_view sql) {
  const Tokens tokens = TokenizeSql(sql);
  const bool distinct = tokens.size() > 2 && tokens[0].IsWord("select") && tokens[1].IsWord("distinct");
  if (!distinct) return std::string(sql);
  const std::size_t end = tokens.size();
  const std::size_t from = FindWord(tokens, {2, end}, "from");
  const std::size_t order = FindWord(tokens, {from, end}, "order");
  const bool plain = std::ranges::all_of(kOtherClauses, [&](std::string_view clause) {
    return FindWord(tokens, {2, end}, clause) == end;
  });
  if (!plain || order + 2 >= end || !tokens[order + 1].IsWord("by")) return std::string(sql);
  const auto columns = ColumnsOf(tokens, {2, from});
  if (!columns) return std::string(sql);
  const auto positions = Positions(tokens, {order + 2, end}, *columns);
  if (!positions) return std::string(sql);
  return "SELECT * FROM (" + std::string(sql.substr(0, tokens[order].begin)) + ") ORDER BY " + *positions;
}

}  // namespace excelexp
