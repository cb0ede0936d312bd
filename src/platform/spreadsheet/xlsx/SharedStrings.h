#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp::xlsx {

class Package;

/// The texts that cells show, numbered in the order they were first asked for. Texts of the workbook that no
/// cell shows any more do not get into the file.
class SharedStrings {
 public:
  explicit SharedStrings(const Workbook& workbook);

  /// The number in the file of a text of the workbook.
  std::uint32_t Use(std::uint32_t text);
  void Write(Package& package) const;

 private:
  static constexpr std::uint32_t kUnused = UINT32_MAX;

  const Workbook& workbook_;
  std::vector<std::uint32_t> numbers_;  ///< by text of the workbook
  std::vector<std::uint32_t> texts_;    ///< by number in the file
  std::size_t uses_ = 0;
};

}  // namespace excelexp::xlsx
