#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/database/HeldTable.h"

namespace excelexp {

/// Tells which rows differ, in some columns, from all rows asked for before. Where that would be dear to know
/// (numbers held as they are, a great many combinations), every row counts as new.
class HeldDistinct {
 public:
  /// Bit i stands for column i, the highest bit for all columns from there on.
  explicit HeldDistinct(std::uint64_t columns) : columns_(columns) {}

  /// The rows of the calls of IsNew that follow. Rows of another key count as new.
  void Enter(const HeldRows& rows);
  bool IsNew(std::size_t row);

 private:
  struct Part {
    const HeldColumn* column;
    int bits;
  };
  void Grow();

  std::uint64_t columns_;
  const HeldRows* rows_ = nullptr;
  bool knows_ = false;
  std::vector<Part> parts_;          // columns whose values differ
  std::vector<std::uint64_t> seen_;  // combination + 1, or 0; a power of two of them
  std::size_t seen_count_ = 0;
};

}  // namespace excelexp
