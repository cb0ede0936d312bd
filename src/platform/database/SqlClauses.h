#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

#include "platform/database/SqlTokens.h"

namespace excelexp {

/// The tokens of a statement from `begin` up to `end`.
struct TokenSpan {
  std::size_t begin;
  std::size_t end;
  std::size_t Size() const { return end - begin; }
};

/// What stands between the tokens of a span that separate, those in parentheses left out: the terms of a list
/// between its commas, or the conditions of a WHERE between its ANDs.
std::vector<TokenSpan> SplitSpan(const std::vector<SqlToken>& tokens, const TokenSpan& span,
                                 const std::function<bool(const SqlToken&)>& separates);

/// The first token of the span, outside of parentheses, that is the word; the span's end when none is.
std::size_t FindWord(const std::vector<SqlToken>& tokens, const TokenSpan& span, std::string_view word);

/// Whether the span is a column name and nothing else, with or without its table.
bool IsColumnName(const std::vector<SqlToken>& tokens, const TokenSpan& span);

/// Whether the span is a literal or a numbered parameter and nothing else.
bool IsValue(const std::vector<SqlToken>& tokens, const TokenSpan& span);

/// False when parts of the statement must not change places: parameters without a number get theirs from
/// where they stand.
bool HasOnlyNumberedParameters(const std::vector<SqlToken>& tokens);

/// Whether one of the words that join tables in another way than an inner join stands in the span. Conditions
/// cannot be moved past an outer join, and a natural one depends on which columns a table has.
bool HasOtherJoins(const std::vector<SqlToken>& tokens, const TokenSpan& span);

/// One past the parenthesis that closes the one at `begin`, or past another token that stands there; the
/// number of tokens when no parenthesis closes it.
std::size_t EndOfParentheses(const std::vector<SqlToken>& tokens, std::size_t begin);

/// Whether the span is one pair of parentheses and what stands in it.
bool IsParenthesised(const std::vector<SqlToken>& tokens, const TokenSpan& span);

}  // namespace excelexp
