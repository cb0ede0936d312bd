#pragma once

namespace excelexp {

/// How many employees each database of the comparisons has.
struct Sizes {
  int listing = 10'000;  ///< the month-end of 400,000 cells
  int small = 1'000;     ///< the two ends of the cost per cell
  int large = 40'000;
  int demo = 4'000;  ///< where the layouts print
};

/// The sizes of this run.
const Sizes& RunSizes();

/// Makes every size smaller, to try something out: the ratios of such a run say little.
void DivideSizes(int by);

}  // namespace excelexp
