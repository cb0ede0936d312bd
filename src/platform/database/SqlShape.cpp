#include "platform/database/SqlShape.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

// Numbers of so many digits fit into 64 bits.
constexpr std::size_t kMostDigits = 18;
// A connection allows more; no statement of the engine has nearly as many.
constexpr std::size_t kMostComparands = 64;

constexpr std::array<std::string_view, 11> kNotPlain = {"distinct", "with",   "union", "intersect",
                                                        "except",   "values", "group", "having",
                                                        "window",   "order",  "limit"};
constexpr std::array<std::string_view, 8> kEndsCondition = {"select", "from",  "group", "having",
                                                            "window", "order", "limit", "union"};
constexpr std::array<std::string_view, 4> kFollowsComparand = {"and", "order", "group", "union"};

template <std::size_t N>
bool IsOneOf(const SqlToken& token, const std::array<std::string_view, N>& words) {
  return std::ranges::any_of(words, [&](std::string_view word) { return token.IsWord(word); });
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Takes the text literal at the front of `rest`, its quotes included; false when there is none.
bool TakeText(std::string_view& rest, SqlComparand& value) {
  if (!rest.starts_with('\'')) return false;
  std::size_t end = rest.find('\'', 1);
  while (end != std::string_view::npos && end + 1 < rest.size() && rest[end + 1] == '\'')
    end = rest.find('\'', end + 2);
  if (end == std::string_view::npos) return false;
  value = {true, 0, rest.substr(1, end - 1)};
  rest.remove_prefix(end + 1);
  return true;
}

bool TakeNumber(std::string_view& rest, SqlComparand& value) {
  std::size_t end = 0;
  while (end < rest.size() && IsDigit(rest[end])) ++end;
  // What continues the number, or the name, makes another token of it.
  const bool goes_on = end < rest.size() && (rest[end] == '.' || rest[end] == '_' || rest[end] == '$' ||
                                             static_cast<unsigned char>(rest[end]) >= 0x80 ||
                                             std::isalpha(static_cast<unsigned char>(rest[end])) != 0);
  if (end == 0 || end > kMostDigits || goes_on) return false;
  value = {};
  std::from_chars(rest.data(), rest.data() + end, value.number);
  rest.remove_prefix(end);
  return true;
}

// A text that is not closed may end with a quote all the same: 'it''
bool IsValue(const SqlToken& token) {
  std::string_view rest = token.text;
  SqlComparand value;
  if (token.kind == SqlToken::Kind::kNumber) return TakeNumber(rest, value) && rest.empty();
  return token.kind == SqlToken::Kind::kString && TakeText(rest, value) && rest.empty();
}

/// Walks the tokens once and tells which are comparands.
class Comparands {
 public:
  explicit Comparands(const std::vector<SqlToken>& tokens) : tokens_(tokens) {}

  std::vector<std::size_t> Find() {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      if (IsParameter(tokens_[i])) return {};
      Follow(tokens_[i]);
      if (levels_.back().in_condition && !levels_.back().in_name && StandsAlone(i)) found.push_back(i);
    }
    return found.size() > kMostComparands ? std::vector<std::size_t>{} : found;
  }

 private:
  static bool IsParameter(const SqlToken& token) {
    return token.IsMark('?') || token.IsMark(':') || token.IsMark('@') || token.IsMark('$');
  }

  /// What is between two parentheses.
  struct Level {
    bool in_condition = false;
    bool in_list = false;  ///< of what a select selects
    bool in_name = false;  ///< inside such a list: a column without AS is named by its text
  };

  void Follow(const SqlToken& token) {
    Level& level = levels_.back();
    if (token.IsMark('(')) {
      levels_.push_back({.in_name = level.in_list || level.in_name});
    } else if (token.IsMark(')')) {
      if (levels_.size() > 1) levels_.pop_back();
    } else if (token.IsWord("where")) {
      level.in_condition = true;
    } else if (IsOneOf(token, kEndsCondition)) {
      level.in_condition = false;
      level.in_list = token.IsWord("select");
    }
  }

  bool StandsAlone(std::size_t i) const {
    const bool behind_column = i > 2 && tokens_[i - 1].IsMark('=') && tokens_[i - 2].IsName();
    const bool ends =
        i + 1 == tokens_.size() || tokens_[i + 1].IsMark(')') || IsOneOf(tokens_[i + 1], kFollowsComparand);
    return behind_column && ends && IsValue(tokens_[i]);
  }

  const std::vector<SqlToken>& tokens_;
  std::vector<Level> levels_ = {{}};
};

/// The values of a select that names each and has nothing behind its one table.
std::vector<std::size_t> NamedValues(const std::vector<SqlToken>& tokens) {
  const std::size_t end = tokens.size();
  const bool selects =
      end > 5 && tokens.front().IsWord("select") && tokens[end - 2].IsWord("from") && tokens.back().IsName();
  if (!selects) return {};
  std::vector<std::size_t> found;
  for (std::size_t i = 1; i < end - 2; i += 4) {
    const bool is_item = tokens[i].kind != SqlToken::Kind::kMark && tokens[i + 1].IsWord("as") &&
                         tokens[i + 2].IsName() && (tokens[i + 3].IsMark(',') || i + 3 == end - 2);
    if (!is_item) return {};
    if (IsValue(tokens[i])) found.push_back(i);
  }
  return found.size() > kMostComparands ? std::vector<std::size_t>{} : found;
}

bool IsPlainSelect(const std::vector<SqlToken>& tokens) {
  if (tokens.empty() || !tokens.front().IsWord("select")) return false;
  int depth = 0;
  for (const SqlToken& token : tokens) {
    depth += token.IsMark('(') ? 1 : token.IsMark(')') ? -1 : 0;
    if (depth == 0 && IsOneOf(token, kNotPlain)) return false;
  }
  return true;
}

/// DISTINCT and maybe sorted, and nothing else.
bool IsDistinctSelect(const std::vector<SqlToken>& tokens) {
  constexpr std::array<std::string_view, 9> kOthers = {"with",  "union",  "intersect", "except", "values",
                                                       "group", "having", "window",    "limit"};
  if (tokens.size() < 2 || !tokens[0].IsWord("select") || !tokens[1].IsWord("distinct")) return false;
  int depth = 0;
  return std::ranges::none_of(tokens, [&](const SqlToken& token) {
    depth += token.IsMark('(') ? 1 : token.IsMark(')') ? -1 : 0;
    return depth == 0 && IsOneOf(token, kOthers);
  });
}

}  // namespace

SqlShape::SqlShape(std::string_view sql) {
  const std::vector<SqlToken> tokens = TokenizeSql(sql);
  plain_ = IsPlainSelect(tokens);
  std::vector<std::size_t> values = NamedValues(tokens);
  if (values.empty()) values = Comparands(tokens).Find();
  std::size_t copied = 0;
  for (const std::size_t i : values) {
    const SqlToken& token = tokens[i];
    pieces_.emplace_back(sql.substr(copied, token.begin - copied));
    kinds_.push_back(token.kind == SqlToken::Kind::kString ? Kind::kText : Kind::kNumber);
    text_ += pieces_.back() + "?" + std::to_string(kinds_.size());
    copied = token.End();
  }
  pieces_.emplace_back(sql.substr(copied));
  text_ += pieces_.back();
  if (IsDistinctSelect(tokens)) {
    // No value stands before it.
    without_distinct_ = text_;
    without_distinct_.erase(tokens[1].begin, tokens[1].text.size());
  }
}

bool SqlShape::Matches(std::string_view sql, std::vector<SqlComparand>& values) const {
  values.clear();
  if (!sql.starts_with(pieces_.front())) return false;
  sql.remove_prefix(pieces_.front().size());
  for (std::size_t i = 0; i < kinds_.size(); ++i) {
    SqlComparand& value = values.emplace_back();
    const bool taken = kinds_[i] == Kind::kText ? TakeText(sql, value) : TakeNumber(sql, value);
    if (!taken || !sql.starts_with(pieces_[i + 1])) return false;
    sql.remove_prefix(pieces_[i + 1].size());
  }
  return sql.empty();
}

std::string TextOf(const SqlComparand& text) {
  std::string unquoted;
  unquoted.reserve(text.raw.size());
  for (std::size_t i = 0; i < text.raw.size(); ++i) {
    unquoted += text.raw[i];
    if (text.raw[i] == '\'') ++i;
  }
  return unquoted;
}

}  // namespace excelexp
