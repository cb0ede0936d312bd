#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace excelexp {

/// One token of an SQL text. Blanks and comments are no tokens.
struct SqlToken {
  enum class Kind {
    kWord,    ///< a keyword or a bare name
    kQuoted,  ///< a name in double quotes, backquotes or brackets
    kString,  ///< a text or blob literal
    kNumber,
    kMark,  ///< one character of punctuation
  };
  Kind kind;
  std::string_view text;  ///< as written, quotes included; points into the tokenized text
  std::size_t begin;      ///< offset of the first byte

  std::size_t End() const { return begin + text.size(); }
  bool IsWord(std::string_view word) const;
  bool IsMark(char mark) const { return kind == Kind::kMark && text.front() == mark; }
  bool IsName() const { return kind == Kind::kWord || kind == Kind::kQuoted; }
};

/// Splits a text the way SQLite does. A literal, quoted name or comment that is not closed reaches to the
/// end; what is wrong with the text is left for the database to say.
std::vector<SqlToken> TokenizeSql(std::string_view sql);

/// The name that a token of kind kWord, kQuoted or kString stands for.
std::string NameOf(const SqlToken& token);

/// The name in double quotes, so that it is a name whatever characters it has.
std::string QuoteName(std::string_view name);

}  // namespace excelexp
