#include "platform/database/HeldDistinct.h"

#include <bit>
#include <cstddef>
#include <utility>

namespace excelexp {
namespace {

constexpr int kColumnBits = 64;
constexpr int kMostBits = 63;  // one combination more stands for none

/// Combinations of codes, each plus 1.
class SeenCombinations {
 public:
  /// False for one that was added before.
  bool Add(std::uint64_t combination) {
    std::uint64_t& slot = slots_[SlotFor(combination)];
    if (slot == combination) return false;
    slot = combination;
    if (++count_ * 2 > slots_.size()) Grow();
    return true;
  }

 private:
  std::size_t SlotFor(std::uint64_t combination) const {
    const std::uint64_t mixed = combination * 0x9e3779b97f4a7c15u;
    std::size_t slot = (mixed ^ mixed >> 32) & (slots_.size() - 1);
    while (slots_[slot] != 0 && slots_[slot] != combination) slot = (slot + 1) & (slots_.size() - 1);
    return slot;
  }
  void Grow() {
    const auto old = std::exchange(slots_, std::vector<std::uint64_t>(slots_.size() * 4));
    for (const std::uint64_t combination : old) {
      if (combination != 0) slots_[SlotFor(combination)] = combination;
    }
  }

  std::vector<std::uint64_t> slots_ = std::vector<std::uint64_t>(64);  // or 0; a power of two of them
  std::size_t count_ = 0;
};

}  // namespace

std::optional<std::vector<std::uint32_t>> FirstOfAlike(const HeldRows& rows, const HeldRows::Range& range,
                                                       std::uint64_t columns) {
  if ((columns >> (kColumnBits - 1)) != 0) return std::nullopt;
  std::vector<const HeldColumn*> parts;  // columns whose values differ
  int bits = 0;
  const auto bits_of = [](const HeldColumn& column) { return std::bit_width(column.CodeCount() - 1); };
  for (int i = 0; i < rows.ColumnCount() && i < kColumnBits; ++i) {
    if ((columns >> i & 1) == 0) continue;
    const HeldColumn& column = rows.Column(i);
    if (!column.HasCodes()) return std::nullopt;
    if (column.CodeCount() < 2) continue;
    parts.push_back(&column);
    bits += static_cast<int>(bits_of(column));
  }
  if (bits > kMostBits) return std::nullopt;
  std::vector<std::uint64_t> combinations(range.end - range.begin);
  for (const HeldColumn* part : parts) {
    const auto width = bits_of(*part);
    auto combination = combinations.begin();
    part->EachCode(range.begin, range.end, [&](HeldColumn::Code code) {
      *combination = *combination << width | code;
      ++combination;
    });
  }
  std::vector<std::uint32_t> firsts;
  SeenCombinations seen;
  for (std::size_t i = 0; i < combinations.size(); ++i) {
    const bool repeats = i > 0 && combinations[i] == combinations[i - 1];
    if (!repeats && seen.Add(combinations[i] + 1))
      firsts.push_back(static_cast<std::uint32_t>(range.begin + i));
  }
  return firsts;
}

}  // namespace excelexp
