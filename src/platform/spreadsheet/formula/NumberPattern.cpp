#include "platform/spreadsheet/formula/NumberPattern.h"

#include <algorithm>
#include <charconv>

#include "platform/spreadsheet/formula/Lexis.h"

namespace excelexp::formula {
namespace {

using Kind = PatternToken::Kind;

class PatternReader {
 public:
  explicit PatternReader(std::string_view text) : text_(text) { pattern_.sections.emplace_back(); }

  NumberPattern Run() {
    while (at_ < text_.size()) ReadOne();
    for (PatternSection& section : pattern_.sections) FindMinutes(section);
    return std::move(pattern_);
  }

 private:
  PatternSection& Section() { return pattern_.sections.back(); }
  char Next(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }

  void Add(Kind kind, char symbol = '\0', int count = 1) {
    Section().tokens.push_back({kind, symbol, count, {}});
  }

  void AddLiteral(std::string_view text) {
    if (text.find('(') != std::string_view::npos) Section().parenthesised = true;
    if (text == "$" || text == "€" || text == "£" || text == "¥") Section().currency = true;
    Section().tokens.push_back({Kind::kLiteral, '\0', 1, std::string(text)});
  }

  /// The character at `at`, all its bytes.
  std::string_view Character(std::size_t at) const {
    std::size_t end = at + 1;
    while (end < text_.size() && (static_cast<unsigned char>(text_[end]) & 0xC0U) == 0x80U) ++end;
    return text_.substr(std::min(at, text_.size()), end - at);
  }

  void ReadOne() {
    const char c = Next();
    switch (c) {
      case ';':
        pattern_.sections.emplace_back();
        ++at_;
        return;
      case '"':
        return ReadQuoted();
      case '[':
        return ReadBrackets();
      case '\\':
        return TakeAfter([this](std::string_view character) { AddLiteral(character); });
      case '_':
        return TakeAfter([this](std::string_view) { AddLiteral(" "); });
      case '*':
        return TakeAfter([](std::string_view) {});
      case '0':
      case '#':
      case '?':
        return ReadDigit(c);
      case '.':
        return ReadPoint();
      case ',':
        return ReadComma();
      case '%':
        ++Section().percents;
        Add(Kind::kPercent);
        ++at_;
        return;
      case '@':
        Add(Kind::kText);
        ++at_;
        return;
      case '/':
        if (Section().HasDigits() && !Section().date) pattern_.understood = false;
        break;
      default:
        break;
    }
    if (IsAsciiLetter(c)) return ReadLetters();
    const std::string_view character = Character(at_);
    at_ += character.size();
    AddLiteral(character);
  }

  template <typename Use>
  void TakeAfter(Use use) {
    const std::string_view character = Character(at_ + 1);
    at_ += 1 + character.size();
    use(character);
  }

  void ReadQuoted() {
    const std::size_t end = std::min(text_.find('"', at_ + 1), text_.size());
    AddLiteral(text_.substr(at_ + 1, end - at_ - 1));
    at_ = end + 1;
  }

  void ReadBrackets() {
    const std::size_t end = std::min(text_.find(']', at_), text_.size());
    const std::string_view inside = text_.substr(at_ + 1, end - at_ - 1);
    at_ = end + 1;
    const std::string word = SmallLetters(inside);
    static constexpr std::string_view kColours[] = {"black",   "blue", "cyan",  "green",
                                                    "magenta", "red",  "white", "yellow"};
    if (word.starts_with("color") ||
        std::find(std::begin(kColours), std::end(kColours), word) != std::end(kColours)) {
      Section().coloured = true;
    } else if (word.starts_with('$')) {
      AddLiteral(inside.substr(1, std::min(inside.find('-'), inside.size()) - 1));
      Section().currency = true;
    } else if (word.starts_with('<') || word.starts_with('>') || word.starts_with('=')) {
      ReadCondition(word);
    } else if (!word.empty() && word.find_first_not_of(word.front()) == std::string::npos &&
               std::string_view("hms").find(word.front()) != std::string_view::npos) {
      Section().date = true;
      Add(Kind::kElapsed, word.front() == 'm' ? 'n' : word.front(), static_cast<int>(word.size()));
    } else {
      pattern_.understood = false;
    }
  }

  void ReadCondition(const std::string& word) {
    const std::size_t number = word.find_first_not_of("<>=");
    Section().comparison = word.substr(0, number);
    if (number == std::string::npos) return void(pattern_.understood = false);
    const auto [end, error] =
        std::from_chars(word.data() + number, word.data() + word.size(), Section().bound);
    if (error != std::errc{} || end != word.data() + word.size()) pattern_.understood = false;
  }

  void ReadDigit(char c) {
    PatternSection& section = Section();
    if (InDecimals()) ++section.decimals;
    Add(Kind::kDigit, c);
    ++at_;
  }

  bool InDecimals() {
    bool point = false;
    for (const PatternToken& token : Section().tokens) point = point || token.kind == Kind::kPoint;
    return point && !Section().exponent;
  }

  void ReadPoint() {
    Add(Kind::kPoint);
    ++at_;
  }

  void ReadComma() {
    ++at_;
    PatternSection& section = Section();
    if (!section.HasDigits()) return AddLiteral(",");
    std::size_t ahead = 0;
    while (Next(ahead) == ',') ++ahead;
    const char next = Next(ahead);
    if (next == '0' || next == '#' || next == '?') {
      section.grouped = true;
    } else {
      ++section.thousands;
    }
  }

  void ReadLetters() {
    PatternSection& section = Section();
    const std::string rest = SmallLetters(text_.substr(at_, 7));
    if (rest == "general") {
      section.general = true;
      Add(Kind::kGeneral);
      at_ += 7;
    } else if (rest.starts_with("am/pm") || rest.starts_with("a/p")) {
      section.date = true;
      const bool is_long = rest.starts_with("am");
      Add(Kind::kHalfDay, '\0', is_long ? 2 : 1);
      at_ += is_long ? 5 : 3;
    } else if (rest.front() == 'e' && (Next(1) == '+' || Next(1) == '-') && section.HasDigits()) {
      section.exponent = true;
      Add(Kind::kExponent, Next(1));
      at_ += 2;
    } else if (std::string_view("ymdhs").find(rest.front()) != std::string_view::npos) {
      section.date = true;
      int count = 0;
      for (; (Next() | 0x20) == rest.front(); ++at_) ++count;
      Add(Kind::kDate, rest.front(), count);
    } else {
      pattern_.understood = false;
      ++at_;
    }
  }

  /// m and mm are minutes directly behind hours and directly before seconds.
  static void FindMinutes(PatternSection& section) {
    PatternToken* before = nullptr;
    for (PatternToken& token : section.tokens) {
      if (token.kind != Kind::kDate && token.kind != Kind::kElapsed) continue;
      const bool is_month = token.kind == Kind::kDate && token.symbol == 'm' && token.count <= 2;
      if (is_month && before != nullptr && before->symbol == 'h') token.symbol = 'n';
      if (token.symbol == 's' && before != nullptr && before->symbol == 'm' && before->count <= 2)
        before->symbol = 'n';
      before = &token;
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
  NumberPattern pattern_;
};

std::string DateCode(const PatternSection& section) {
  bool year = false, month_name = false, month = false, day = false, hour = false, second = false,
       half = false;
  for (const PatternToken& token : section.tokens) {
    half = half || token.kind == Kind::kHalfDay;
    if (token.kind != Kind::kDate && token.kind != Kind::kElapsed) continue;
    year = year || token.symbol == 'y';
    month = month || token.symbol == 'm';
    month_name = month_name || (token.symbol == 'm' && token.count > 2);
    day = day || token.symbol == 'd';
    hour = hour || token.symbol == 'h' || token.symbol == 'n';
    second = second || token.symbol == 's';
  }
  if (month_name) return day ? (year ? "D1" : "D2") : "D3";
  if (month && year) return day ? "D4" : "D3";
  if (month && day) return "D5";
  if (year || month || day) return "G";
  if (half) return second ? "D6" : "D7";
  if (second) return "D8";
  return hour ? "D9" : "G";
}

}  // namespace

bool PatternSection::HasDigits() const {
  return std::any_of(tokens.begin(), tokens.end(),
                     [](const PatternToken& token) { return token.kind == Kind::kDigit; });
}

NumberPattern NumberPattern::Parse(std::string_view pattern) {
  return PatternReader(pattern).Run();
}

std::string FormatCode(const NumberPattern& pattern) {
  const PatternSection& first = pattern.sections.front();
  if (!pattern.understood || first.general) return "G";
  if (first.date) return DateCode(first);
  if (!first.HasDigits()) return "G";
  std::string code = first.percents > 0 ? "P"
                     : first.exponent   ? "S"
                     : first.currency   ? "C"
                     : first.grouped    ? ","
                                        : "F";
  code += std::to_string(first.decimals);
  const bool negatives_coloured = pattern.sections.size() > 1 && pattern.sections[1].coloured;
  if (negatives_coloured) code += '-';
  if (first.parenthesised) code += "()";
  return code;
}

}  // namespace excelexp::formula
