#pragma once

#include "layouts/MatrixLayout.h"

namespace excelexp {

/// The variance report: a matrix of row items by the chosen pay periods, and the last period minus the first.
class BExcelExpEngVarianceRpt final : public MatrixLayout {
 public:
  explicit BExcelExpEngVarianceRpt(BExcelExpEngCore* core);
};

}  // namespace excelexp
