#pragma once

#include <cstdint>
#include <vector>

#include "platform/spreadsheet/FormatCensus.h"
#include "platform/spreadsheet/xls/RecordStream.h"

namespace excelexp::xls {

/// Fonts, number formats and cell formats of a workbook as records.
class XlsStyles {
 public:
  explicit XlsStyles(const Workbook& workbook);

  void Write(RecordStream& stream) const;
  /// The XF record of a cell's format.
  std::uint16_t XfOf(FormatId format) const {
    return static_cast<std::uint16_t>(kStyleXfs + census_.IndexOf(format));
  }
  /// Height in twips of a row whose highest font is the format's, as the application would fit it.
  std::uint16_t FittingHeight(FormatId format) const { return heights_[census_.IndexOf(format)]; }

  static constexpr std::uint16_t kStyleXfs = 15;  ///< come first in every file ([MS-XLS] 2.4.353 XF)
  static constexpr std::uint16_t kDefaultXf = kStyleXfs;
  static constexpr std::uint16_t kDefaultHeight = 255;  ///< twips, for 10 points

 private:
  FormatCensus census_;
  const Workbook& workbook_;
  std::vector<std::uint16_t> heights_;  ///< by census index
};

}  // namespace excelexp::xls
