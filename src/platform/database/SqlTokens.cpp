#include "platform/database/SqlTokens.h"

#include "platform/database/Names.h"

namespace excelexp {
namespace {

constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool StartsName(char c) {
  const char folded = FoldLetter(c);
  return (folded >= 'a' && folded <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
constexpr bool ContinuesName(char c) {
  return StartsName(c) || IsDigit(c) || c == '$';
}

class Scanner {
 public:
  explicit Scanner(std::string_view sql) : sql_(sql) {}

  std::vector<SqlToken> Run() {
    std::vector<SqlToken> tokens;
    tokens.reserve(sql_.size() / 5 + 8);
    while (SkipBlanksAndComments()) {
      const std::size_t begin = at_;
      const SqlToken::Kind kind = TakeToken();
      tokens.push_back({kind, sql_.substr(begin, at_ - begin), begin});
    }
    return tokens;
  }

 private:
  char Peek(std::size_t ahead = 0) const { return at_ + ahead < sql_.size() ? sql_[at_ + ahead] : '\0'; }

  void SkipPast(std::string_view end, std::size_t from) {
    const std::size_t found = sql_.find(end, from);
    at_ = found == std::string_view::npos ? sql_.size() : found + end.size();
  }

  bool SkipBlanksAndComments() {
    while (at_ < sql_.size()) {
      if (IsBlank(sql_[at_])) {
        ++at_;
      } else if (Peek() == '-' && Peek(1) == '-') {
        SkipPast("\n", at_);
      } else if (Peek() == '/' && Peek(1) == '*') {
        SkipPast("*/", at_ + 2);
      } else {
        return true;
      }
    }
    return false;
  }

  // A doubled closing quote stands for one quote; brackets know no doubling.
  void TakeQuoted(char close) {
    ++at_;
    while (at_ < sql_.size()) {
      if (sql_[at_++] != close) continue;
      if (close == ']' || Peek() != close) return;
      ++at_;
    }
  }

  SqlToken::Kind TakeToken() {
    const char c = Peek();
    if ((c == 'x' || c == 'X') && Peek(1) == '\'') ++at_;
    if (Peek() == '\'') {
      TakeQuoted('\'');
      return SqlToken::Kind::kString;
    }
    if (c == '"' || c == '`' || c == '[') {
      TakeQuoted(c == '[' ? ']' : c);
      return SqlToken::Kind::kQuoted;
    }
    if (StartsName(c)) {
      while (at_ < sql_.size() && ContinuesName(sql_[at_])) ++at_;
      return SqlToken::Kind::kWord;
    }
    if (IsDigit(c)) {
      TakeNumber();
      return SqlToken::Kind::kNumber;
    }
    ++at_;
    return SqlToken::Kind::kMark;
  }

  void TakeNumber() {
    while (ContinuesName(Peek()) || Peek() == '.') {
      const bool exponent = FoldLetter(Peek()) == 'e' && (Peek(1) == '+' || Peek(1) == '-');
      at_ += exponent ? 2 : 1;
    }
  }

  std::string_view sql_;
  std::size_t at_ = 0;
};

}  // namespace

bool SqlToken::IsWord(std::string_view word) const {
  return kind == Kind::kWord && SameName(text, word);
}

std::vector<SqlToken> TokenizeSql(std::string_view sql) {
  return Scanner(sql).Run();
}

std::string NameOf(const SqlToken& token) {
  if (token.kind == SqlToken::Kind::kWord) return std::string(token.text);
  const char close = token.text.front() == '[' ? ']' : token.text.front();
  std::string name;
  for (std::size_t i = 1; i < token.text.size(); ++i) {
    if (token.text[i] == close && ++i == token.text.size()) break;
    name += token.text[i];
  }
  return name;
}

std::string QuoteName(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

}  // namespace excelexp
