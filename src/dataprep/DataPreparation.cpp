#include "dataprep/DataPreparation.h"

namespace excelexp {

// Until the preparation stands here, its reports have no data and their worksheets show header and footer
// only.
int PrepareEmployeeReport(BExcelExpEngCore* /*core*/) {
  return 0;
}

}  // namespace excelexp
