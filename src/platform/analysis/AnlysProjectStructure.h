#pragma once

#include <cstdint>
#include <string>

#include "platform/host/DateTime.h"

namespace excelexp {

/// The request that the analysis engine reads, field by field in its own order.
/// `AnlysIPAddress` is the data key: the workstation address, "_", the ordering of the worksheet item.
struct AnlysProjectStructure {
  std::string AnlysIPAddress;
  std::string AnlysProjectId;
  std::string AnlysSetupId;
  std::string AnlysProjectDesc;
  std::string CycleMethod;
  std::string CycleGroupBy;
  std::string CycleSubGroupBy;
  std::int32_t IsSystemProject = 0;
  std::string Basis1;
  std::string Basis2;
  std::string Basis3;
  std::string AnlysProjectType;
  std::string SummaryLevel;
  std::int32_t WSItemFromYear = 0;  ///< an all-zero bound (year, period, sub period) is open
  std::int32_t WSItemToYear = 0;
  std::int32_t WSItemFromMthPeriod = 0;
  std::int32_t WSItemToMthPeriod = 0;
  std::int32_t WSItemFromSubPeriod = 0;
  std::int32_t WSItemToSubPeriod = 0;
  DateTime AsOfDate;  ///< set for cycle method "CycMtdLveAsOfDate" only
  std::string AnlysProjectSubType;
};

}  // namespace excelexp
