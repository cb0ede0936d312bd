#include "platform/database/SqlClauses.h"

namespace excelexp {
namespace {

// What a token adds to the depth of parentheses.
int DepthOf(const SqlToken& token) {
  return token.IsMark('(') ? 1 : token.IsMark(')') ? -1 : 0;
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

bool IsParenthesised(const std::vector<SqlToken>& tokens, const TokenSpan& span) {
  int depth = 0;
  for (std::size_t i = span.begin; i < span.end; ++i) {
    depth += DepthOf(tokens[i]);
    if (depth == 0) return i > span.begin && i + 1 == span.end;
  }
  return false;
}

}  // namespace excelexp
