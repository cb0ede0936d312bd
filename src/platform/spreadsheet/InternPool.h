#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace excelexp {

/// Keeps each distinct value once and numbers them from 0 in the order they came. A value never moves, so
/// references stay good as long as the pool lives. An open-addressing table of indices: 8 bytes or less per
/// value beside the value itself.
///
/// `Hash` takes what Intern takes; a T must be constructible from it and comparable with it.
template <typename T, typename Hash>
class InternPool {
 public:
  template <typename Key>
  std::uint32_t Intern(const Key& key) {
    if (3 * (values_.size() + 1) > 2 * slots_.size()) Grow();
    std::uint32_t& slot = *FindSlot(key);
    if (slot == kFree) {
      slot = static_cast<std::uint32_t>(values_.size());
      values_.emplace_back(key);
    }
    return slot;
  }

  const T& operator[](std::uint32_t index) const { return values_[index]; }
  std::size_t Size() const { return values_.size(); }

 private:
  static constexpr std::uint32_t kFree = UINT32_MAX;

  /// Where the key is, or the free slot where it belongs.
  template <typename Key>
  std::uint32_t* FindSlot(const Key& key) {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = Hash{}(key)&mask;
    while (slots_[at] != kFree && !(values_[slots_[at]] == key)) at = (at + 1) & mask;
    return &slots_[at];
  }

  void Grow() {
    slots_.assign(slots_.empty() ? 16 : 2 * slots_.size(), kFree);
    const std::size_t mask = slots_.size() - 1;
    std::uint32_t index = 0;
    for (const T& value : values_) {
      std::size_t at = Hash{}(value)&mask;
      while (slots_[at] != kFree) at = (at + 1) & mask;
      slots_[at] = index++;
    }
  }

  std::deque<T> values_;
  std::vector<std::uint32_t> slots_;  ///< size is a power of two, at most two thirds full
};

}  // namespace excelexp
