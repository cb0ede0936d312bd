#pragma once

#include <cstdint>

namespace excelexp {

/// A stream of numbers that is the same on every machine and library, chosen by a seed, whom it is for and
/// what it is for. One stream per purpose keeps a person's history unchanged when another part draws more.
/// The generator is SplitMix64 (Steele, Lea, Flood: Fast Splittable Pseudorandom Number Generators, 2014).
class DemoRandom {
 public:
  DemoRandom(std::uint64_t seed, std::uint64_t whom, std::uint64_t purpose)
      : state_(Mix(Mix(Mix(seed) + whom) + purpose)) {}

  /// 0 to count - 1.
  int Below(int count) {
    return static_cast<int>(((Next() >> 32) * static_cast<std::uint64_t>(count)) >> 32);
  }
  int Between(int lowest, int highest) { return lowest + Below(highest - lowest + 1); }
  bool Chance(int percent) { return Below(100) < percent; }
  template <typename T, std::size_t N>
  const T& Pick(const T (&choices)[N]) {
    return choices[Below(static_cast<int>(N))];
  }

 private:
  static constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15;

  static std::uint64_t Mix(std::uint64_t value) {
    value += kStep;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
    return value ^ (value >> 31);
  }

  std::uint64_t Next() {
    state_ += kStep;
    return Mix(state_);
  }

  std::uint64_t state_;
};

}  // namespace excelexp
