#include "platform/spreadsheet/xls/RkNumber.h"

#include <bit>

namespace excelexp::xls {
namespace {

constexpr std::uint32_t kHundredfold = 1;
constexpr std::uint32_t kInteger = 2;
constexpr double kLimit = 1 << 29;  // a signed integer of 30 bits

std::optional<std::int32_t> SmallInteger(double number) {
  if (!(number >= -kLimit && number < kLimit)) return std::nullopt;
  return static_cast<std::int32_t>(number < 0 ? number - 0.5 : number + 0.5);
}

std::uint32_t IntegerBits(std::int32_t integer, std::uint32_t flags) {
  return static_cast<std::uint32_t>(integer) << 2 | kInteger | flags;
}

std::optional<std::uint32_t> DoubleBits(double number) {
  const auto bits = std::bit_cast<std::uint64_t>(number);
  if ((bits & 0x3'FFFF'FFFFU) != 0) return std::nullopt;
  return static_cast<std::uint32_t>(bits >> 32);
}

}  // namespace

std::optional<std::uint32_t> EncodeRk(double number) {
  if (const auto integer = SmallInteger(number); integer && *integer == number)
    return IntegerBits(*integer, 0);
  if (const auto bits = DoubleBits(number)) return bits;
  const double hundredfold = number * 100;
  if (const auto integer = SmallInteger(hundredfold); integer && *integer / 100.0 == number) {
    return IntegerBits(*integer, kHundredfold);
  }
  if (const auto bits = DoubleBits(hundredfold); bits && hundredfold / 100 == number)
    return *bits | kHundredfold;
  return std::nullopt;
}

}  // namespace excelexp::xls
