#include "platform/database/SqlClauses.h"

#include <algorithm>
#include <array>

namespace excelexp {
namespace {

// What a token adds to the depth of parentheses.
int DepthOf(const SqlToken& token) {
  return token.IsMark('(') ? 1 : token.IsMark(')') ? -1 : 0;
}

constexpr std::array<std::string_view, 6> kOtherJoins = {"natural", "left",  "right",
                                                         "full",    "outer", "cross"};

/// A question mark with its number.
bool IsParameter(const std::vector<SqlToken>& tokens, std::size_t i) {
  return tokens[i].IsMark('?') && i + 1 < tokens.size() && tokens[i + 1].kind == SqlToken::Kind::kNumber &&
         tokens[i + 1].begin == tokens[i].End();
}

}  // namespace

std::vector<TokenSpan> SplitSpan(const std::vector<SqlToken>& tokens, const TokenSpan& span,
                                 const std::function<bool(const SqlToken&)>& separates) {
  std::vector<TokenSpan> parts;
  int depth = 0;
  std::size_t begin = span.begin;
  for (std::size_t i = span.begin; i < span.end; ++i) {
    depth += DepthOf(tokens[i]);
    if (depth != 0 || !separates(tokens[i])) continue;
    parts.push_back({begin, i});
    begin = i + 1;
  }
  parts.push_back({begin, span.end});
  return parts;
}

std::size_t FindWord(const std::vector<SqlToken>& tokens, const TokenSpan& span, std::string_view word) {
  int depth = 0;
  for (std::size_t i = span.begin; i < span.end; ++i) {
    depth += DepthOf(tokens[i]);
    if (depth == 0 && tokens[i].IsWord(word)) return i;
  }
  return span.end;
}

bool IsColumnName(const std::vector<SqlToken>& tokens, const TokenSpan& span) {
  const bool qualified =
      span.Size() == 3 && tokens[span.begin + 1].IsMark('.') && tokens[span.begin + 2].IsName();
  return (span.Size() == 1 || qualified) && tokens[span.begin].IsName();
}

bool IsValue(const std::vector<SqlToken>& tokens, const TokenSpan& span) {
  if (span.Size() == 2) return IsParameter(tokens, span.begin);
  if (span.Size() != 1) return false;
  const SqlToken::Kind kind = tokens[span.begin].kind;
  return kind == SqlToken::Kind::kString || kind == SqlToken::Kind::kNumber;
}

bool HasOnlyNumberedParameters(const std::vector<SqlToken>& tokens) {
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].IsMark(':') || tokens[i].IsMark('@') || tokens[i].IsMark('$')) return false;
    if (tokens[i].IsMark('?') && !IsParameter(tokens, i)) return false;
  }
  return true;
}

bool HasOtherJoins(const std::vector<SqlToken>& tokens, const TokenSpan& span) {
  const auto is_other = [](const SqlToken& token) {
    return std::ranges::any_of(kOtherJoins, [&](std::string_view word) { return token.IsWord(word); });
  };
  return std::any_of(tokens.begin() + static_cast<std::ptrdiff_t>(span.begin),
                     tokens.begin() + static_cast<std::ptrdiff_t>(span.end), is_other);
}

std::size_t EndOfParentheses(const std::vector<SqlToken>& tokens, std::size_t begin) {
  int depth = 0;
  for (std::size_t i = begin; i < tokens.size(); ++i) {
    depth += DepthOf(tokens[i]);
    if (depth == 0) return i + 1;
  }
  return tokens.size();
}

bool IsParenthesised(const std::vector<SqlToken>& tokens, const TokenSpan& span) {
  return span.Size() > 1 && tokens[span.begin].IsMark('(') &&
         EndOfParentheses(tokens, span.begin) == span.end && tokens[span.end - 1].IsMark(')');
}

}  // namespace excelexp
