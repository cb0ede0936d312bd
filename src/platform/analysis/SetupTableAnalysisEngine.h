#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/analysis/BAnalysisRptEng.h"
#include "platform/database/SqliteWriter.h"

namespace excelexp {

/// The analysis engine for a database that can tell its own figures: `AnlysSetupId` names a table or view
/// with the columns of `AnlysItemRecord` except `AnlysProjectId` and `AnlysIPAddress`. A run replaces what
/// the project has under the data key by the rows of the period range, in one transaction.
///
/// A bound (year, period, sub period) of zeros is open; a zero below a year counts as the lowest, in the
/// upper bound as the highest. With an as-of date both bounds are that day. At summary level "SumLevelEmpee"
/// only employees of the user's view table are copied.
class SetupTableAnalysisEngine final : public BAnalysisRptEng {
 public:
  /// `request` outlives the object.
  SetupTableAnalysisEngine(const AnlysProjectStructure& request, std::shared_ptr<SqliteWriter> writer);

  void SetQueryViewTable(const BQueryViewTable* view_table) override { view_table_ = view_table; }
  int ExecuteOperation() override;
  void DeleteOperation() override;

  /// Told why an ExecuteOperation failed, which its result does not say.
  void SetOnFailure(std::function<void(const std::string& message)> on_failure) {
    on_failure_ = std::move(on_failure);
  }

 private:
  void DeleteRecords();
  bool HoldsOnly(const std::vector<SqlValue>& key);
  void CopyRecords();

  const AnlysProjectStructure& request_;
  std::shared_ptr<SqliteWriter> writer_;
  const BQueryViewTable* view_table_ = nullptr;
  std::function<void(const std::string&)> on_failure_;
};

}  // namespace excelexp
