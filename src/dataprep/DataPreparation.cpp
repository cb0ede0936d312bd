#include "dataprep/DataPreparation.h"

namespace excelexp {

// Until a preparation stands here, its reports have no data and their worksheets show header and footer only.

int PrepareFinancialReport(BExcelExpEngCore* /*core*/) {
  return 0;
}

int PrepareEmployeeReport(BExcelExpEngCore* /*core*/) {
  return 0;
}

}  // namespace excelexp
