#pragma once

#include <cstdint>
#include <vector>

#include "platform/spreadsheet/Workbook.h"
#include "platform/spreadsheet/xls/RecordStream.h"

namespace excelexp::xls {

/// The table of the texts that cells use, in the order of first use.
class SharedStrings {
 public:
  explicit SharedStrings(const Workbook& workbook);

  std::uint32_t IndexOf(std::uint32_t text) const { return index_[text]; }
  /// The SST record, its CONTINUE records and EXTSST; nothing when there is no text.
  void Write(RecordStream& stream) const;

 private:
  const Workbook& workbook_;
  std::vector<std::uint32_t> index_;  ///< by the workbook's text index
  std::vector<std::uint32_t> used_;   ///< the workbook's text index by ours
  std::uint32_t cells_ = 0;           ///< with a text
};

}  // namespace excelexp::xls
