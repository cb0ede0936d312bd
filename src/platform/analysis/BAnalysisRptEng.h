#pragma once

#include "platform/analysis/AnlysProjectStructure.h"
#include "platform/host/BQueryViewTable.h"

namespace excelexp {

/// The analysis engine of one request: generates the analysis records of a project under a data key, and
/// deletes them again. The host makes one for each request (HostServices::CreateAnalysisRptEng); it is used
/// once and destroyed.
class BAnalysisRptEng {
 public:
  BAnalysisRptEng() = default;
  BAnalysisRptEng(const BAnalysisRptEng&) = delete;
  BAnalysisRptEng& operator=(const BAnalysisRptEng&) = delete;
  virtual ~BAnalysisRptEng() = default;

  /// The provider stays the caller's and outlives the object.
  virtual void SetQueryViewTable(const BQueryViewTable* view_table) = 0;

  /// Generates the records of the request's project and period range under its data key.
  /// The result: for a project of sub type "ProjSubTypeMovement", 0 is success, -1 a failure, and any other
  /// number the system id of the employee whose processing failed; for every other project 0 is a failure and
  /// anything else success.
  virtual int ExecuteOperation() = 0;

  /// Deletes what the request's project has under its data key. Only `AnlysIPAddress` and `AnlysProjectId`
  /// are read.
  virtual void DeleteOperation() = 0;
};

}  // namespace excelexp
