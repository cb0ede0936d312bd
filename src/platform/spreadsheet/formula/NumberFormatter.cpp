#include "platform/spreadsheet/formula/NumberFormatter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/spreadsheet/formula/DateFormatter.h"
#include "platform/spreadsheet/formula/Decimal.h"
#include "platform/spreadsheet/formula/Value.h"

namespace excelexp::formula {
namespace {

using Kind = PatternToken::Kind;

constexpr double kMostDigits = 1e15;  ///< beyond, applications differ in the digits they show
constexpr int kMostDecimals = 127;

/// The digits of a rounded number, without sign and point; "0.5" has no whole digits.
struct DigitTexts {
  std::string whole;
  std::string fraction;

  bool IsZero() const { return whole.empty() && fraction.find_first_not_of('0') == std::string::npos; }
};

DigitTexts DigitsOf(double value, int decimals) {
  if (value >= kMostDigits || decimals > kMostDecimals) throw UnknownResult{};
  char buffer[400];
  const char* const end = std::to_chars(buffer, buffer + sizeof buffer, RoundHalfAway(value, decimals),
                                        std::chars_format::fixed, std::max(decimals, 0))
                              .ptr;
  const std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
  const std::size_t point = std::min(text.find('.'), text.size());
  DigitTexts digits;
  digits.whole = text.substr(0, point);
  if (digits.whole == "0") digits.whole.clear();
  if (point < text.size()) digits.fraction = text.substr(point + 1);
  return digits;
}

/// Fills the digits of one number into the placeholders of a section.
class SectionWriter {
 public:
  SectionWriter(const PatternSection& section, double value) : section_(section), value_(value) {
    for (int i = 0; i < section.percents; ++i) value_ *= 100.0;
    for (int i = 0; i < section.thousands; ++i) value_ /= 1000.0;
    CountPlaceholders();
    if (section.exponent) {
      SplitExponent();
    } else {
      digits_ = DigitsOf(value_, section.decimals);
    }
  }

  bool IsZero() const { return digits_.IsZero(); }

  std::string Write() {
    for (const PatternToken& token : section_.tokens) Put(token);
    return std::move(out_);
  }

 private:
  enum class Part { kWhole, kFraction, kExponent };

  void CountPlaceholders() {
    Part part = Part::kWhole;
    for (const PatternToken& token : section_.tokens) {
      if (token.kind == Kind::kPoint) part = Part::kFraction;
      if (token.kind == Kind::kExponent) part = Part::kExponent;
      if (token.kind != Kind::kDigit) continue;
      whole_places_ += part == Part::kWhole;
      exponent_places_ += part == Part::kExponent;
    }
  }

  /// The mantissa gets as many whole digits as there are places for, the exponent is a multiple of that.
  void SplitExponent() {
    const int step = std::max(whole_places_, 1);
    int exponent = value_ == 0.0 ? 0 : static_cast<int>(std::floor(std::log10(value_)));
    if (step > 1) exponent = static_cast<int>(std::floor(static_cast<double>(exponent) / step)) * step;
    digits_ = DigitsOf(value_ / std::pow(10.0, exponent), section_.decimals);
    if (digits_.whole.size() > static_cast<std::size_t>(step)) {
      exponent += step;
      digits_ = DigitsOf(value_ / std::pow(10.0, exponent), section_.decimals);
    }
    exponent_negative_ = exponent < 0;
    exponent_ = std::to_string(std::abs(exponent));
  }

  void Put(const PatternToken& token) {
    switch (token.kind) {
      case Kind::kLiteral:
        out_ += token.text;
        return;
      case Kind::kPercent:
        out_ += '%';
        return;
      case Kind::kDigit:
        return PutDigit(token.symbol);
      case Kind::kPoint:
        if (whole_places_ == 0) out_ += digits_.whole;
        out_ += '.';
        part_ = Part::kFraction;
        return;
      case Kind::kExponent:
        out_ += 'E';
        if (exponent_negative_) {
          out_ += '-';
        } else if (token.symbol == '+') {
          out_ += '+';
        }
        part_ = Part::kExponent;
        place_ = 0;
        return;
      case Kind::kGeneral:
      case Kind::kText:
        out_ += NumberText(value_);
        return;
      default:
        return;
    }
  }

  void PutDigit(char symbol) {
    switch (part_) {
      case Part::kWhole:
        return PutAligned(symbol, digits_.whole, whole_places_, section_.grouped);
      case Part::kFraction:
        return PutFraction(symbol);
      case Part::kExponent:
        return PutAligned(symbol, exponent_, exponent_places_, false);
    }
  }

  void PutAligned(char symbol, const std::string& digits, int places, bool grouped) {
    const auto size = static_cast<int>(digits.size());
    // The first place takes all digits that have none of their own.
    const int first = place_ == 0 ? std::max(size, places) - 1 : places - 1 - place_;
    for (int position = first; position >= places - 1 - place_; --position) {
      if (position < size) {
        out_ += digits[static_cast<std::size_t>(size - 1 - position)];
      } else if (symbol == '0') {
        out_ += '0';
      } else {
        if (symbol == '?') out_ += ' ';
        continue;
      }
      if (grouped && position > 0 && position % 3 == 0) out_ += ',';
    }
    ++place_;
  }

  void PutFraction(char symbol) {
    const std::string& digits = digits_.fraction;
    const bool rest_is_zero = digits.find_first_not_of('0', fraction_place_) == std::string::npos;
    if (symbol == '0' || !rest_is_zero) {
      out_ += digits[fraction_place_];
    } else if (symbol == '?') {
      out_ += ' ';
    }
    ++fraction_place_;
  }

  const PatternSection& section_;
  double value_;
  DigitTexts digits_;
  std::string exponent_;
  bool exponent_negative_ = false;
  int whole_places_ = 0;
  int exponent_places_ = 0;
  Part part_ = Part::kWhole;
  int place_ = 0;
  std::size_t fraction_place_ = 0;
  std::string out_;
};

bool Holds(const PatternSection& section, double value) {
  const std::string& comparison = section.comparison;
  if (comparison == "<") return value < section.bound;
  if (comparison == "<=") return value <= section.bound;
  if (comparison == ">") return value > section.bound;
  if (comparison == ">=") return value >= section.bound;
  if (comparison == "=") return value == section.bound;
  return comparison.empty() || value != section.bound;
}

struct Choice {
  const PatternSection* section;
  bool shows_sign;  ///< whether a negative number gets a minus
};

Choice ChooseSection(const NumberPattern& pattern, double value) {
  const std::vector<PatternSection>& sections = pattern.sections;
  const std::size_t numeric = std::min<std::size_t>(sections.size(), 3);
  const bool conditional =
      !sections[0].comparison.empty() || (numeric > 1 && !sections[1].comparison.empty());
  if (conditional) {
    if (value < 0.0) throw UnknownResult{};
    for (std::size_t i = 0; i < numeric; ++i) {
      if (Holds(sections[i], value)) return {&sections[i], false};
    }
    throw UnknownResult{};
  }
  if (value < 0.0 && numeric > 1) return {&sections[1], false};
  if (value == 0.0 && numeric > 2) return {&sections[2], false};
  return {&sections[0], true};
}

}  // namespace

std::string NumberFormatter::Number(double value) const {
  if (!pattern_.understood) throw UnknownResult{};
  const Choice choice = ChooseSection(pattern_, value);
  const PatternSection& section = *choice.section;
  if (section.date) return DateText(section, value);
  const double size = std::fabs(value);
  if (section.general || !section.HasDigits()) {
    if (section.tokens.empty()) return "";
    std::string text = SectionWriter(section, size).Write();
    return value < 0.0 && choice.shows_sign ? "-" + text : text;
  }
  SectionWriter writer(section, size);
  const bool minus = value < 0.0 && choice.shows_sign && !writer.IsZero();
  return minus ? "-" + writer.Write() : writer.Write();
}

std::string NumberFormatter::Text(std::string_view text) const {
  if (!pattern_.understood) throw UnknownResult{};
  const PatternSection& last = pattern_.sections.back();
  const bool has_place = std::any_of(last.tokens.begin(), last.tokens.end(),
                                     [](const PatternToken& token) { return token.kind == Kind::kText; });
  if (!has_place && pattern_.sections.size() < 4) return std::string(text);
  std::string out;
  for (const PatternToken& token : last.tokens) {
    if (token.kind == Kind::kText) out += text;
    if (token.kind == Kind::kLiteral) out += token.text;
  }
  return out;
}

std::string FixedText(double value, int decimals, bool grouped) {
  const DigitTexts digits = DigitsOf(std::fabs(value), decimals);
  std::string text = digits.whole.empty() ? "0" : digits.whole;
  if (grouped) {
    for (std::size_t place = text.size(); place > 3;) text.insert(place -= 3, 1, ',');
  }
  if (decimals > 0) text += "." + digits.fraction;
  return value < 0.0 && !digits.IsZero() ? "-" + text : text;
}

}  // namespace excelexp::formula
