#pragma once

#include "layouts/MatrixLayout.h"

namespace excelexp {

/// The statistics report: a matrix of row items by pay periods (the chosen ones, or all in the data), and the
/// year to date as their sum.
class BExcelExpEngStatisticsRpt final : public MatrixLayout {
 public:
  explicit BExcelExpEngStatisticsRpt(BExcelExpEngCore* core);
};

}  // namespace excelexp
