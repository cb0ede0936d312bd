#include "platform/database/InLists.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/database/Names.h"

namespace excelexp {
namespace {

/// The conditions of the WHERE at the token, up to where its select ends or goes on. None where an AND may
/// stand for something else than another condition.
std::vector<TokenSpan> ConditionsOf(const std::vector<SqlToken>& tokens, std::size_t where) {
  constexpr std::array<std::string_view, 8> kNext = {"group", "order",  "having",    "limit",
                                                     "union", "window", "intersect", "except"};
  std::size_t end = where + 1;
  while (end < tokens.size() && !tokens[end].IsMark(')') &&
         std::ranges::none_of(kNext, [&](std::string_view word) { return tokens[end].IsWord(word); })) {
    end = EndOfParentheses(tokens, end);
  }
  const TokenSpan all = {where + 1, end};
  if (FindWord(tokens, all, "case") < end || FindWord(tokens, all, "between") < end) return {};
  return SplitSpan(tokens, all, [](const SqlToken& token) { return token.IsWord("and"); });
}

std::optional<InList> InListOf(const std::vector<SqlToken>& tokens, const TokenSpan& condition,
                               const FindTable& find_table) {
  constexpr std::size_t kListSize = 7;  // IN ( SELECT Id FROM V )
  if (condition.Size() <= kListSize) return std::nullopt;
  const std::size_t in = condition.end - kListSize;
  const bool is_list = tokens[in].IsWord("in") && tokens[in + 1].IsMark('(') &&
                       tokens[in + 2].IsWord("select") && tokens[in + 3].IsName() &&
                       tokens[in + 4].IsWord("from") && tokens[in + 5].IsName() && tokens[in + 6].IsMark(')');
  const InList list = {{condition.begin, in}, in + 3, in + 5, in + 6};
  if (!is_list || !IsColumnName(tokens, list.column)) return std::nullopt;
  const TableShape* const view = find_table(NameOf(tokens[list.view]));
  const TableShape::Column* const id = view == nullptr ? nullptr : view->Find(NameOf(tokens[list.id]));
  const bool is_integer = id != nullptr && FoldName(id->declared_type).find("int") != std::string::npos;
  return is_integer ? std::optional(list) : std::nullopt;
}

}  // namespace

std::vector<InList> InListsOf(const std::vector<SqlToken>& tokens, const FindTable& find_table) {
  std::vector<InList> lists;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (!tokens[i].IsWord("where")) continue;
    for (const TokenSpan& condition : ConditionsOf(tokens, i)) {
      if (const std::optional<InList> list = InListOf(tokens, condition, find_table)) lists.push_back(*list);
    }
  }
  return lists;
}

std::optional<std::string> AsExistence(const std::string& sql, const FindTable& find_table) {
  const std::vector<SqlToken> tokens = TokenizeSql(sql);
  std::string rewritten = "SELECT EXISTS (";
  std::size_t copied = 0;
  for (const InList& list : InListsOf(tokens, find_table)) {
    const std::size_t begin = tokens[list.column.begin].begin;
    const std::string_view view = tokens[list.view].text;
    const std::string_view id = tokens[list.id].text;
    const bool qualified = list.column.Size() > 1;
    if (begin < copied || !qualified ||
        SameName(NameOf(tokens[list.column.begin]), NameOf(tokens[list.view])))
      continue;
    rewritten.append(sql, copied, begin - copied);
    rewritten.append("EXISTS (SELECT ").append(id).append(" FROM ").append(view).append(" WHERE ");
    rewritten.append(sql, begin, tokens[list.column.end - 1].End() - begin);
    rewritten.append(" = ").append(view).append(".").append(id).append(")");
    copied = tokens[list.close].End();
  }
  if (copied == 0) return std::nullopt;
  return rewritten.append(sql, copied).append("\n)");
}

}  // namespace excelexp
