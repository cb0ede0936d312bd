#include "platform/spreadsheet/xls/RkNumber.h"

#include <bit>
#include <cmath>
#include <limits>

namespace excelexp::xls {
namespace {

/// As [MS-XLS] 2.5.217 says to read one.
double DecodeRk(std::uint32_t rk) {
  const double number = (rk & 2) != 0 ? static_cast<std::int32_t>(rk) >> 2
                                      : std::bit_cast<double>(std::uint64_t{rk & ~3U} << 32);
  return (rk & 1) != 0 ? number / 100 : number;
}

TEST(RkNumber, EncodesTheEdges) {
  const struct {
    double number;
    std::optional<std::uint32_t> rk;
  } cases[] = {
      {0, 0x00000002},
      {1, 0x00000006},
      {-1, 0xFFFFFFFE},
      {0.01, 0x00000007},
      {-0.01, 0xFFFFFFFF},
      {123.45, 12345U << 2 | 3},
      {536870911, 0x7FFFFFFE},  // the greatest integer of 30 bits
      {536870912, 0x41C00000},  // one more has a short double
      {536870913, std::nullopt},
      {-536870912, 0x80000002},
      {-536870913, std::nullopt},
      {5368709.11, 0x7FFFFFFF},
      {5368709.13, std::nullopt},
      {0.5, 0x3FE00000},
      {1.0 / 3, std::nullopt},
      {0.1 + 0.2, std::nullopt},
      {1e300, std::nullopt},
      {std::ldexp(1.0, 1000), 0x7E700000},
      {std::numeric_limits<double>::max(), std::nullopt},
      {std::numeric_limits<double>::denorm_min(), std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(EncodeRk(c.number), c.rk) << c.number;
}

TEST(RkNumber, WhatItEncodesReadsBackExactly) {
  int encoded = 0;
  std::uint64_t state = 1;
  for (int i = 0; i < 200000; ++i) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    const auto random = static_cast<double>(static_cast<std::int64_t>(state) >> (state >> 58));
    for (const double number :
         {random, random / 100, random / 1000, std::bit_cast<double>(state & ~0x3'FFFF'FFFFU)}) {
      if (!std::isfinite(number)) continue;
      if (const auto rk = EncodeRk(number)) {
        ++encoded;
        ASSERT_EQ(DecodeRk(*rk), number);
      }
    }
  }
  EXPECT_GT(encoded, 200000);
}

TEST(RkNumber, EveryAmountInCentsIsShort) {
  for (int cents = -1'000'000; cents <= 1'000'000; cents += 7) ASSERT_TRUE(EncodeRk(cents / 100.0)) << cents;
}

}  // namespace
}  // namespace excelexp::xls
