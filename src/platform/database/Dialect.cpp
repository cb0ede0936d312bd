#include "platform/database/Dialect.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "platform/database/DatabaseError.h"
#include "platform/database/SqlClauses.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

// Deeper than any statement people write, shallow enough for the stack.
constexpr int kMaxNesting = 300;

// Words that end a table's place in a FROM clause, so that none of them is read as an alias.
constexpr std::array<std::string_view, 22> kNoAlias = {
    "on",      "using",   "join",  "left",   "right", "full",   "inner", "cross",
    "natural", "outer",   "where", "group",  "order", "having", "limit", "intersect",
    "except",  "indexed", "union", "window", "not",   "as"};
constexpr std::array<std::string_view, 7> kJoinWords = {"natural", "left",  "right", "full",
                                                        "outer",   "inner", "cross"};
constexpr std::array<std::string_view, 9> kAfterFrom = {"where",     "group",  "order",  "having", "limit",
                                                        "intersect", "except", "window", "union"};

constexpr std::array<std::string_view, 3> kCompound = {"union", "intersect", "except"};
constexpr std::array<std::string_view, 6> kBeforeCondition = {"where", "and", "or", "on", "not", "when"};

template <std::size_t N>
bool IsOneOf(const SqlToken& token, const std::array<std::string_view, N>& words) {
  return std::ranges::any_of(words, [&](std::string_view word) { return token.IsWord(word); });
}

/// One table of a FROM clause.
struct Source {
  std::string name;                   ///< what the statement calls it
  const TableShape* shape = nullptr;  ///< nullptr: its columns are not known (derived table, WITH, function)
  bool missing = false;               ///< a plain name that no table has
};

/// `dropped`'s column always equals `kept`'s: both were joined by USING in an inner join.
struct Merge {
  std::string column;
  std::size_t kept;
  std::size_t dropped;
};

struct FromList {
  std::vector<Source> sources;
  std::vector<Merge> merges;
  bool parenthesised = false;

  void Append(const FromList& more) {
    const std::size_t offset = sources.size();
    sources.insert(sources.end(), more.sources.begin(), more.sources.end());
    for (const Merge& merge : more.merges)
      merges.push_back({merge.column, merge.kept + offset, merge.dropped + offset});
  }
};

/// A foreign key between a source on the left and one on the right of a join.
struct KeyMatch {
  std::size_t left;
  std::size_t right;
  std::vector<std::pair<std::string, std::string>> columns;  ///< left column, right column
};

class JoinRewriter {
 public:
  JoinRewriter(std::string_view sql, const FindTable& find_table)
      : sql_(sql),
        find_table_(find_table),
        tokens_(TokenizeSql(sql)),
        needs_tables_(std::ranges::any_of(
            tokens_, [](const SqlToken& token) { return token.IsWord("join") || token.IsWord("in"); })) {}

  std::string Run() {
    while (at_ < tokens_.size()) {
      Walk();
      if (at_ < tokens_.size()) ++at_;  // an unmatched closing parenthesis; the database will say so
    }
    return Result();
  }

 private:
  /// A text that takes the place of `length` bytes; of none, it is inserted.
  struct Insertion {
    std::size_t position;
    std::string text;
    std::size_t length = 0;
  };

  bool AtWord(std::string_view word) const { return at_ < tokens_.size() && tokens_[at_].IsWord(word); }
  bool AtMark(char mark) const { return at_ < tokens_.size() && tokens_[at_].IsMark(mark); }
  bool TakeWord(std::string_view word) { return AtWord(word) && ++at_ != 0; }
  bool TakeMark(char mark) { return AtMark(mark) && ++at_ != 0; }

  [[noreturn]] void Fail(const std::string& message) const {
    throw DatabaseError(message, std::string(sql_));
  }

  std::string Result() {
    std::ranges::stable_sort(insertions_, {}, &Insertion::position);
    std::string result;
    std::size_t copied = 0;
    for (const Insertion& insertion : insertions_) {
      result.append(sql_.substr(copied, insertion.position - copied)).append(insertion.text);
      copied = insertion.position + insertion.length;
    }
    return result.append(sql_.substr(copied));
  }

  /// Reads on to the closing parenthesis of this level, or to the end. The tables of the level's select; none
  /// for a compound one.
  FromList Walk() {
    FromList from;
    bool compound = false;
    while (at_ < tokens_.size() && !AtMark(')')) {
      if (AtMark('(')) {
        WalkParentheses();
      } else if (AtWord("in") && AsksForItself(at_, from)) {
        ++at_;
      } else if (AtWord("in") && IsTextColumnBefore(at_, from)) {
        ++at_;
        if (AtMark('(')) WalkMembersOfText();
      } else if (AtWord("with")) {
        WalkWith();
      } else if (AtWord("from") && !IsDistinctFrom()) {
        ++at_;
        from = ReadJoins();
      } else {
        compound = compound || IsOneOf(tokens_[at_], kCompound);
        ++at_;
      }
    }
    return compound ? FromList{} : from;
  }

  /// A column as a statement names it: the tokens from `begin` up to `end`.
  struct ColumnName {
    std::size_t begin;
    std::size_t end;
  };

  /// The parentheses after "text column IN". SQLite compares a text with an integer column as numbers and
  /// then cannot use an index on the text; ids are compared as texts, which finds the same rows for ids
  /// written without leading zeros.
  void WalkMembersOfText() {
    Enter();
    ++at_;
    std::size_t begin = at_ + 1;
    const bool select = AtWord("select");
    const bool distinct = select && begin < tokens_.size() && tokens_[begin].IsWord("distinct");
    if (distinct) ++begin;
    const std::size_t end = select ? EndOfColumnName(begin) : begin;
    const bool one_column = end > begin && end < tokens_.size() && tokens_[end].IsWord("from");
    const FromList from = Walk();
    if (one_column && HasAffinity({begin, end}, from, "int")) {
      // A member that is listed twice is a member all the same, unless members are counted.
      if (distinct && FindWord(tokens_, {end, at_}, "limit") == at_)
        insertions_.push_back({tokens_[begin - 1].begin, "", tokens_[begin - 1].text.size()});
      insertions_.push_back({tokens_[begin].begin, "CAST("});
      insertions_.push_back({tokens_[end - 1].End(), " AS TEXT)"});
    }
    TakeMark(')');
    --nesting_;
  }

  /// Whether the tokens of two names are the same.
  bool SameTokens(const ColumnName& left, const ColumnName& right) const {
    if (left.end - left.begin != right.end - right.begin) return false;
    for (std::size_t i = 0; i < left.end - left.begin; ++i) {
      if (!SameName(tokens_[left.begin + i].text, tokens_[right.begin + i].text)) return false;
    }
    return true;
  }

  /// "o.a IN (SELECT b FROM t WHERE b = o.a)" at that IN, with an integer column of an outer table o, is
  /// written as "EXISTS (SELECT b FROM t WHERE b = o.a)", and "o.a IN (SELECT b FROM t WHERE b = ?1)" as
  /// "(o.a = ?1 AND EXISTS (SELECT b FROM t WHERE b = ?1))": the same for every value and for NULL, and the
  /// database makes no list to look into.
  bool AsksForItself(std::size_t in, const FromList& outer) {
    const std::optional<ColumnName> asked = ColumnBefore(in);
    const auto at_word = [this](std::size_t i, std::string_view word) {
      return i < tokens_.size() && tokens_[i].IsWord(word);
    };
    const auto at_mark = [this](std::size_t i, char mark) {
      return i < tokens_.size() && tokens_[i].IsMark(mark);
    };
    if (!asked || asked->end - asked->begin != 3 || !HasAffinity(*asked, outer, "int")) return false;
    if (!at_mark(in + 1, '(') || !at_word(in + 2, "select")) return false;
    const ColumnName listed{in + 3, EndOfColumnName(in + 3)};
    const std::size_t from = listed.end;
    if (!at_word(from, "from") || from + 1 >= tokens_.size() || !tokens_[from + 1].IsName() ||
        !at_word(from + 2, "where")) {
      return false;
    }
    if (SameName(NameOf(tokens_[from + 1]), NameOf(tokens_[asked->begin]))) return false;
    const ColumnName compared{from + 3, EndOfColumnName(from + 3)};
    if (!at_mark(compared.end, '=')) return false;
    const bool parameter = at_mark(compared.end + 1, '?');
    const ColumnName value{compared.end + 1,
                           parameter ? compared.end + 3 : EndOfColumnName(compared.end + 1)};
    if (!at_mark(value.end, ')') || !SameTokens(listed, compared)) return false;
    if (!parameter && !SameTokens(value, *asked)) return false;
    const std::size_t begin = tokens_[asked->begin].begin;
    if (!parameter) {
      insertions_.push_back({begin, "EXISTS", tokens_[in].End() - begin});
    } else {
      const std::string equal(sql_.substr(tokens_[compared.end].begin,
                                          tokens_[value.end - 1].End() - tokens_[compared.end].begin));
      insertions_.push_back({begin, "("});
      insertions_.push_back({tokens_[asked->end - 1].End(), " " + equal + " AND EXISTS",
                             tokens_[in].End() - tokens_[asked->end - 1].End()});
      insertions_.push_back({tokens_[value.end].End(), ")"});
    }
    return true;
  }

  /// The column name that ends before the token, as the whole of a condition's left side.
  std::optional<ColumnName> ColumnBefore(std::size_t end) const {
    if (end == 0 || !tokens_[end - 1].IsName()) return std::nullopt;
    const bool qualified = end > 2 && tokens_[end - 2].IsMark('.') && tokens_[end - 3].IsName();
    const std::size_t begin = end - (qualified ? 3 : 1);
    const bool whole =
        begin > 0 && (tokens_[begin - 1].IsMark('(') || IsOneOf(tokens_[begin - 1], kBeforeCondition));
    return whole ? std::optional(ColumnName{begin, end}) : std::nullopt;
  }

  /// One past the column name that begins there; `begin` when none does.
  std::size_t EndOfColumnName(std::size_t begin) const {
    if (begin >= tokens_.size() || !tokens_[begin].IsName()) return begin;
    const bool qualified =
        begin + 2 < tokens_.size() && tokens_[begin + 1].IsMark('.') && tokens_[begin + 2].IsName();
    return begin + (qualified ? 3 : 1);
  }

  /// Whether "[NOT] IN" at that token follows a condition's text column.
  bool IsTextColumnBefore(std::size_t in, const FromList& from) const {
    const bool negated = in > 0 && tokens_[in - 1].IsWord("not");
    const std::optional<ColumnName> column = ColumnBefore(negated ? in - 1 : in);
    return column && HasAffinity(*column, from, "char");
  }

  /// Whether the column is one of these tables' and its declared type contains that word.
  bool HasAffinity(const ColumnName& column, const FromList& from, std::string_view word) const {
    const bool qualified = column.end - column.begin > 1;
    const std::string name = NameOf(tokens_[column.end - 1]);
    for (const Source& source : from.sources) {
      if (qualified && !SameName(source.name, NameOf(tokens_[column.begin]))) continue;
      if (source.shape == nullptr) return false;  // its columns are not known
      const TableShape::Column* found = source.shape->Find(name);
      if (found != nullptr) return FoldName(found->declared_type).find(word) != std::string::npos;
    }
    return false;
  }

  void WalkParentheses() {
    Enter();
    ++at_;
    Walk();
    TakeMark(')');
    --nesting_;
  }

  void Enter() {
    if (++nesting_ > kMaxNesting) Fail("the statement is nested too deeply");
  }

  /// "a IS [NOT] DISTINCT FROM b" is a comparison.
  bool IsDistinctFrom() const {
    return at_ >= 2 && tokens_[at_ - 1].IsWord("distinct") &&
           (tokens_[at_ - 2].IsWord("is") || tokens_[at_ - 2].IsWord("not"));
  }

  /// Remembers the names that a WITH clause gives to its selects: they hide tables.
  void WalkWith() {
    ++at_;
    TakeWord("recursive");
    do {
      if (at_ >= tokens_.size() || !tokens_[at_].IsName()) return;
      with_names_.push_back(NameOf(tokens_[at_++]));
      if (AtMark('(')) WalkParentheses();
      TakeWord("as");
      TakeWord("not");
      TakeWord("materialized");
      if (AtMark('(')) WalkParentheses();
    } while (TakeMark(','));
  }

  /// Reads the tables of one FROM clause (or of a parenthesised join), completing joins without ON.
  FromList ReadJoins() {
    FromList list = ReadItem();
    std::size_t left_begin = 0;  // a comma binds less than a join: only what follows it takes part
    while (at_ < tokens_.size()) {
      if (TakeMark(',')) {
        left_begin = list.sources.size();
        list.Append(ReadItem());
        SkipCondition();
        continue;
      }
      const std::size_t op = at_;
      if (!TakeJoin()) break;
      const FromList right = ReadItem();
      const std::size_t end = tokens_[at_ - 1].End();
      const bool keyed = !SkipCondition() && !tokens_[op].IsWord("natural") && !tokens_[op].IsWord("cross");
      const bool inner = tokens_[op].IsWord("join") || tokens_[op].IsWord("inner");
      if (keyed) insertions_.push_back({end, KeyCondition(list, left_begin, right, inner)});
      list.Append(right);
    }
    return list;
  }

  bool TakeJoin() {
    std::size_t ahead = at_;
    while (ahead < tokens_.size() && IsOneOf(tokens_[ahead], kJoinWords)) ++ahead;
    if (ahead >= tokens_.size() || !tokens_[ahead].IsWord("join")) return false;
    at_ = ahead + 1;
    return true;
  }

  /// True when the join has a condition of its own, which is then read past.
  bool SkipCondition() {
    if (TakeWord("using")) {
      if (AtMark('(')) WalkParentheses();
      return true;
    }
    if (!TakeWord("on")) return false;
    while (at_ < tokens_.size() && !AtMark(')') && !AtMark(',') && !AtMark(';') &&
           !IsOneOf(tokens_[at_], kAfterFrom)) {
      const std::size_t before = at_;
      if (AtMark('(')) {
        WalkParentheses();
      } else if (TakeJoin()) {
        at_ = before;
        break;
      } else {
        ++at_;
      }
    }
    return true;
  }

  FromList ReadItem() {
    if (AtMark('(')) return ReadParenthesised();
    FromList item;
    if (at_ >= tokens_.size() || !tokens_[at_].IsName()) {
      item.sources.emplace_back();
      return item;
    }
    Source source;
    source.name = NameOf(tokens_[at_++]);
    const bool qualified = AtMark('.') && at_ + 1 < tokens_.size() && tokens_[at_ + 1].IsName();
    if (qualified) source.name = NameOf(tokens_[std::exchange(at_, at_ + 2) + 1]);
    if (AtMark('(')) {
      WalkParentheses();
    } else if (needs_tables_ && (qualified || !IsWithName(source.name))) {
      source.shape = find_table_(source.name);
      source.missing = source.shape == nullptr;
    }
    if (std::string alias = ReadAlias(); !alias.empty()) source.name = std::move(alias);
    if (TakeWord("not") || AtWord("indexed")) {
      TakeWord("indexed");
      if (TakeWord("by")) ++at_;
    }
    item.sources.push_back(std::move(source));
    return item;
  }

  /// A derived table, or a join in parentheses.
  FromList ReadParenthesised() {
    Enter();
    ++at_;
    FromList item;
    if (AtWord("select") || AtWord("with") || AtWord("values")) {
      Walk();
      item.sources.emplace_back();
    } else {
      item = ReadJoins();
      item.parenthesised = true;
    }
    TakeMark(')');
    --nesting_;
    if (std::string alias = ReadAlias(); !alias.empty()) {
      item.sources.assign(1, Source{std::move(alias)});
      item.merges.clear();
    }
    return item;
  }

  std::string ReadAlias() {
    const bool as = TakeWord("as");
    if (at_ >= tokens_.size()) return "";
    const SqlToken& token = tokens_[at_];
    const bool text = token.kind == SqlToken::Kind::kString || token.kind == SqlToken::Kind::kQuoted;
    const bool word = token.kind == SqlToken::Kind::kWord && (as || !IsOneOf(token, kNoAlias));
    if (!text && !word) return "";
    ++at_;
    return NameOf(token);
  }

  bool IsWithName(std::string_view name) const {
    return std::ranges::any_of(with_names_, [&](const std::string& each) { return SameName(each, name); });
  }

  std::string KeyCondition(FromList& list, std::size_t left_begin, const FromList& right, bool inner) const {
    const auto is_missing = [](const Source& source) { return source.missing; };
    if (std::ranges::any_of(list.sources, is_missing) || std::ranges::any_of(right.sources, is_missing))
      return "";  // the database will name the table that does not exist
    const KeyMatch match = OneKey(list, left_begin, right);
    const Source& left_source = list.sources[match.left];
    const Source& right_source = right.sources[match.right];
    std::string text;
    if (MayUse(list, right, match)) {
      for (const auto& [column, same] : match.columns) {
        text += (text.empty() ? " USING(" : ", ") + QuoteName(column);
        if (inner) list.merges.push_back({column, match.left, list.sources.size()});
      }
      return text + ")";
    }
    for (const auto& [left_column, right_column] : match.columns) {
      text += (text.empty() ? " ON " : " AND ") + QuoteName(left_source.name) + "." + QuoteName(left_column) +
              " = " + QuoteName(right_source.name) + "." + QuoteName(right_column);
    }
    return text;
  }

  KeyMatch OneKey(const FromList& list, std::size_t left_begin, const FromList& right) const {
    std::vector<KeyMatch> matches;
    std::string found;
    for (std::size_t l = left_begin; l < list.sources.size(); ++l) {
      for (std::size_t r = 0; r < right.sources.size(); ++r)
        FindKeys(list.sources[l], right.sources[r], l, r, matches, found);
    }
    if (matches.size() == 1) return std::move(matches.front());
    const std::string sides = Names(list, left_begin) + " and " + Names(right, 0);
    if (matches.empty()) Fail("a join without ON needs a foreign key, and none is declared between " + sides);
    Fail("a join without ON needs one foreign key, and more than one is declared between " + sides + ": " +
         found);
  }

  static void FindKeys(const Source& left, const Source& right, std::size_t l, std::size_t r,
                       std::vector<KeyMatch>& matches, std::string& found) {
    if (left.shape == nullptr || right.shape == nullptr) return;
    const auto add = [&](const TableShape& from, const TableShape::ForeignKey& key, KeyMatch match) {
      const bool known = std::ranges::any_of(matches, [&](const KeyMatch& each) {
        return each.left == l && each.right == r && each.columns == match.columns;
      });
      if (known) return;
      matches.push_back(std::move(match));
      found += (found.empty() ? "" : ", ") + from.name + "(";
      for (const auto& [own, other] : key.columns) found += (found.back() == '(' ? "" : ", ") + own;
      found += ") to " + key.target;
    };
    for (const TableShape::ForeignKey& key : left.shape->keys)
      if (SameName(key.target, right.shape->name)) add(*left.shape, key, {l, r, key.columns});
    for (const TableShape::ForeignKey& key : right.shape->keys) {
      if (!SameName(key.target, left.shape->name)) continue;
      KeyMatch match{l, r, {}};
      for (const auto& [own, other] : key.columns) match.columns.emplace_back(other, own);
      add(*right.shape, key, std::move(match));
    }
  }

  static std::string Names(const FromList& list, std::size_t begin) {
    std::string names;
    for (std::size_t i = begin; i < list.sources.size(); ++i) {
      const Source& source = list.sources[i];
      const std::string& name = source.shape != nullptr ? source.shape->name : source.name;
      names += (names.empty() ? "" : ", ") + (name.empty() ? "a derived table" : name);
    }
    return names;
  }

  /// SQLite's USING takes the first table to the left that has a column of that name. That must be the one
  /// the key means, or one that was joined to it by this very column.
  static bool MayUse(const FromList& list, const FromList& right, const KeyMatch& match) {
    if (right.parenthesised || right.sources.size() != 1) return false;
    return std::ranges::all_of(match.columns, [&](const auto& pair) {
      if (!SameName(pair.first, pair.second)) return false;
      for (std::size_t i = 0; i < list.sources.size(); ++i) {
        if (list.sources[i].shape == nullptr) return false;
        if (list.sources[i].shape->Find(pair.first) != nullptr)
          return Root(list, match.left, pair.first) == i;
      }
      return false;
    });
  }

  static std::size_t Root(const FromList& list, std::size_t source, std::string_view column) {
    for (const Merge& merge : list.merges)
      if (merge.dropped == source && SameName(merge.column, column)) return Root(list, merge.kept, column);
    return source;
  }

  std::string_view sql_;
  const FindTable& find_table_;
  std::vector<SqlToken> tokens_;
  const bool needs_tables_;  // to read about a table costs more than to compile a small statement
  std::size_t at_ = 0;
  int nesting_ = 0;
  std::vector<Insertion> insertions_;
  std::vector<std::string> with_names_;
};

}  // namespace

std::string RewriteSql(std::string_view sql, const FindTable& find_table) {
  return JoinRewriter(sql, find_table).Run();
}

}  // namespace excelexp
