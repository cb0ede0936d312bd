#include "platform/spreadsheet/formula/DateFormatter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "platform/spreadsheet/formula/Calendar.h"
#include "platform/spreadsheet/formula/Value.h"

namespace excelexp::formula {
namespace {

using Kind = PatternToken::Kind;

constexpr std::string_view kMonths[] = {"January",   "February", "March",    "April",
                                        "May",       "June",     "July",     "August",
                                        "September", "October",  "November", "December"};
constexpr std::string_view kDays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                      "Thursday", "Friday", "Saturday"};
constexpr std::int64_t kSecondsPerDay = 86400;

std::string Padded(std::int64_t number, int digits) {
  std::string text = std::to_string(number);
  while (static_cast<int>(text.size()) < digits) text.insert(text.begin(), '0');
  return text;
}

class DateWriter {
 public:
  DateWriter(const PatternSection& section, double serial) : section_(section) {
    if (!(serial >= 0.0 && serial < kLastSerial + 1.0)) throw FormulaError{ErrorCode::kValue};
    if (section.decimals > 3) throw UnknownResult{};
    bool seconds = false;
    for (const PatternToken& token : section.tokens) {
      half_day_ = half_day_ || token.kind == Kind::kHalfDay;
      seconds = seconds || token.symbol == 's';
    }
    // Without seconds a tenth of a millisecond keeps 10:20 from becoming 10:19.
    const int decimals = seconds ? section.decimals : 4;
    for (int i = 0; i < decimals; ++i) parts_per_second_ *= 10;
    const double parts = serial * static_cast<double>(kSecondsPerDay * parts_per_second_);
    parts_ = std::llround(parts);
    second_ = parts_ / parts_per_second_;
    day_ = second_ / kSecondsPerDay;
    date_ = DateOf(static_cast<double>(day_));
  }

  std::string Write() {
    for (const PatternToken& token : section_.tokens) Put(token);
    return std::move(out_);
  }

 private:
  std::int64_t Hour() const { return second_ / 3600 % 24; }

  void Put(const PatternToken& token) {
    switch (token.kind) {
      case Kind::kLiteral:
        out_ += token.text;
        return;
      case Kind::kPoint:
        out_ += '.';
        return;
      case Kind::kDigit:
        return PutSecondDigit();
      case Kind::kHalfDay:
        out_ += token.count == 2 ? (Hour() < 12 ? "AM" : "PM") : (Hour() < 12 ? "A" : "P");
        return;
      case Kind::kDate:
        return PutPart(token);
      case Kind::kElapsed: {
        const std::int64_t unit = token.symbol == 'h' ? 3600 : token.symbol == 'n' ? 60 : 1;
        out_ += Padded(second_ / unit, token.count);
        return;
      }
      default:
        throw UnknownResult{};
    }
  }

  void PutSecondDigit() {
    std::int64_t unit = parts_per_second_;
    for (int i = 0; i <= second_digit_; ++i) unit /= 10;
    ++second_digit_;
    out_ += static_cast<char>('0' + parts_ / std::max<std::int64_t>(unit, 1) % 10);
  }

  void PutPart(const PatternToken& token) {
    const int width = token.count > 1 ? 2 : 1;
    switch (token.symbol) {
      case 'y':
        out_ += token.count > 2 ? Padded(date_.year, 4) : Padded(date_.year % 100, 2);
        return;
      case 'm':
        return PutMonth(token.count);
      case 'd':
        if (token.count <= 2) {
          out_ += Padded(date_.day, width);
        } else {
          const std::string_view name = kDays[DayOfWeek(static_cast<double>(day_)) - 1];
          out_ += token.count == 3 ? name.substr(0, 3) : name;
        }
        return;
      case 'h':
        out_ += Padded(half_day_ ? (Hour() + 11) % 12 + 1 : Hour(), width);
        return;
      case 'n':
        out_ += Padded(second_ / 60 % 60, width);
        return;
      default:
        out_ += Padded(second_ % 60, width);
        return;
    }
  }

  void PutMonth(int count) {
    const std::string_view name = kMonths[date_.month - 1];
    if (count <= 2) {
      out_ += Padded(date_.month, count);
    } else {
      out_ += count == 3 ? name.substr(0, 3) : count == 5 ? name.substr(0, 1) : name;
    }
  }

  const PatternSection& section_;
  std::int64_t parts_per_second_ = 1;
  std::int64_t parts_ = 0;   ///< since day 0, in the smallest unit shown
  std::int64_t second_ = 0;  ///< since day 0
  std::int64_t day_ = 0;
  Date date_;
  bool half_day_ = false;
  int second_digit_ = 0;
  std::string out_;
};

}  // namespace

std::string DateText(const PatternSection& section, double serial) {
  return DateWriter(section, serial).Write();
}

}  // namespace excelexp::formula
