#pragma once

#include <string>

namespace excelexp {

/// One worksheet item that has data. The item processor fills the first four fields, the report frame the
/// rest.
struct WkSheetItem {
  int WkSheetItemSysId = 0;
  int WkSheetItemOrdering = 0;     ///< part of the data key
  std::string WkSheetItemRptType;  ///< one of the values in report_type
  std::string WkSheetItemRptId;
  int FirstCol = 0;          ///< first column of the item's block in the band printed last
  int LastCol = 0;           ///< last column of that block
  bool FirstEntity = false;  ///< the context's flag of that name, as this item left it
};

}  // namespace excelexp
