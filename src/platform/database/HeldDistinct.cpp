#include "platform/database/HeldDistinct.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace excelexp {
namespace {

constexpr int kColumnBits = 64;
constexpr int kMostBits = 63;  // one combination more stands for none

std::size_t SlotFor(std::uint64_t combination, const std::vector<std::uint64_t>& slots) {
  const std::uint64_t mixed = combination * 0x9e3779b97f4a7c15u;
  std::size_t slot = (mixed ^ mixed >> 32) & (slots.size() - 1);
  while (slots[slot] != 0 && slots[slot] != combination) slot = (slot + 1) & (slots.size() - 1);
  return slot;
}

}  // namespace

void HeldDistinct::Enter(const HeldRows& rows) {
  if (rows_ == &rows) return;
  rows_ = &rows;
  parts_.clear();
  seen_.assign(64, 0);
  seen_count_ = 0;
  int bits = 0;
  knows_ = (columns_ >> (kColumnBits - 1)) == 0;
  for (int i = 0; knows_ && i < rows.ColumnCount(); ++i) {
    if (i >= kColumnBits || (columns_ >> i & 1) == 0) continue;
    const HeldColumn& column = rows.Column(i);
    knows_ = column.HasCodes();
    if (!knows_ || column.CodeCount() < 2) continue;
    parts_.push_back({&column, static_cast<int>(std::bit_width(column.CodeCount() - 1))});
    bits += parts_.back().bits;
  }
  knows_ = knows_ && bits <= kMostBits;
}

bool HeldDistinct::IsNew(std::size_t row) {
  if (!knows_) return true;
  std::uint64_t combination = 0;
  for (const Part& part : parts_) combination = combination << part.bits | part.column->CodeAt(row);
  ++combination;
  std::uint64_t& seen = seen_[SlotFor(combination, seen_)];
  if (seen == combination) return false;
  seen = combination;
  if (++seen_count_ * 2 > seen_.size()) Grow();
  return true;
}

void HeldDistinct::Grow() {
  const std::vector<std::uint64_t> old = std::exchange(seen_, std::vector<std::uint64_t>(seen_.size() * 4));
  for (const std::uint64_t combination : old) {
    if (combination != 0) seen_[SlotFor(combination, seen_)] = combination;
  }
}

}  // namespace excelexp
