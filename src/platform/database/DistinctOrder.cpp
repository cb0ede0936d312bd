#include "platform/database/DistinctOrder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "platform/database/Names.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

using Tokens = std::vector<SqlToken>;

constexpr std::array<std::string_view, 8> kOtherClauses = {"group",  "having", "limit",     "window",
                                                           "offset", "union",  "intersect", "except"};

/// The tokens from `begin` up to `end`.
struct Span {
  std::size_t begin;
  std::size_t end;
  std::size_t Size() const { return end - begin; }
};

bool SameTokens(const Tokens& tokens, const Span& left, const Span& right) {
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

/// What stands between the commas of a list.
std::vector<Span> Listed(const Tokens& tokens, const Span& list) {
  std::vector<Span> items;
  int depth = 0;
  std::size_t begin = list.begin;
  for (std::size_t i = list.begin; i < list.end; ++i) {
    depth += tokens[i].IsMark('(') ? 1 : tokens[i].IsMark(')') ? -1 : 0;
    if (depth != 0 || !tokens[i].IsMark(',')) continue;
    items.push_back({begin, i});
    begin = i + 1;
  }
  items.push_back({begin, list.end});
  return items;
}

/// The first token from `begin` on, outside of parentheses, that is the word.
std::optional<std::size_t> FindWord(const Tokens& tokens, std::size_t begin, std::string_view word) {
  int depth = 0;
  for (std::size_t i = begin; i < tokens.size(); ++i) {
    depth += tokens[i].IsMark('(') ? 1 : tokens[i].IsMark(')') ? -1 : 0;
    if (depth == 0 && tokens[i].IsWord(word)) return i;
  }
  return std::nullopt;
}

/// A column name, with or without its table: nothing that could mean one thing in a list and another in an
/// order.
bool IsColumn(const Tokens& tokens, const Span& item) {
  const bool qualified =
      item.Size() == 3 && tokens[item.begin + 1].IsMark('.') && tokens[item.begin + 2].IsName();
  return (item.Size() == 1 || qualified) && tokens[item.begin].IsName();
}

struct Column {
  Span expression;
  std::string name;  ///< in the result
};

std::optional<std::vector<Column>> ColumnsOf(const Tokens& tokens, const Span& list) {
  std::vector<Column> columns;
  for (const Span& item : Listed(tokens, list)) {
    const bool named = item.Size() > 2 && tokens[item.end - 2].IsWord("as") && tokens[item.end - 1].IsName();
    const Span expression = {item.begin, named ? item.end - 2 : item.end};
    if (!IsColumn(tokens, expression)) return std::nullopt;
    const std::string name = FoldName(NameOf(tokens[item.end - 1]));
    if (std::ranges::any_of(columns, [&](const Column& other) { return other.name == name; }))
      return std::nullopt;
    columns.push_back({expression, name});
  }
  return columns;
}

/// "1, 2 DESC" for the terms; nothing unless each is a column and each column is one of them.
std::optional<std::string> Positions(const Tokens& tokens, const Span& terms,
                                     const std::vector<Column>& columns) {
  std::string positions;
  std::vector<bool> sorted(columns.size());
  for (Span term : Listed(tokens, terms)) {
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
  const std::optional<std::size_t> from = FindWord(tokens, 2, "from");
  const std::optional<std::size_t> order = from ? FindWord(tokens, *from, "order") : std::nullopt;
  const bool plain = std::ranges::none_of(
      kOtherClauses, [&](std::string_view clause) { return FindWord(tokens, 2, clause).has_value(); });
  if (!order || !plain || *order + 2 >= tokens.size() || !tokens[*order + 1].IsWord("by"))
    return std::string(sql);
  const auto columns = ColumnsOf(tokens, {2, *from});
  if (!columns) return std::string(sql);
  const auto positions = Positions(tokens, {*order + 2, tokens.size()}, *columns);
  if (!positions) return std::string(sql);
  return "SELECT * FROM (" + std::string(sql.substr(0, tokens[*order].begin)) + ") ORDER BY " + *positions;
}

}  // namespace excelexp
