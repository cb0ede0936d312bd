#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/analysis/BAnalysisRptEng.h"
#include "platform/database/Database.h"

namespace excelexp {

/// The table of the analysis records.
inline constexpr char kAnalysisRecordTable[] = "AnlysItemRecord";
/// What the records of a request have in common: its project and its data key.
RowsToHold::Key AnalysisRecordKey(const AnlysProjectStructure& request);

/// The analysis engine for a database that can tell its own figures: `AnlysSetupId` names a table or view
/// with the columns of `AnlysItemRecord` except `AnlysProjectId` and `AnlysIPAddress`. A run replaces what
/// the project has under the data key by the rows of the period range: all of them, or after a failure none.
///
/// The records are held in the memory of the connection that reports read them through. So no payroll figure
/// is written to the database a second time, the database may be one that cannot be written, and nothing
/// stays behind, however the process ends.
///
/// A bound (year, period, sub period) of zeros is open; a zero below a year counts as the lowest, in the
/// upper bound as the highest. With an as-of date both bounds are that day. At summary level "SumLevelEmpee"
/// only employees of the user's view table are copied.
class SetupTableAnalysisEngine final : public BAnalysisRptEng {
 public:
  /// `request` outlives the object.
  SetupTableAnalysisEngine(const AnlysProjectStructure& request, std::shared_ptr<Database> database);

  void SetQueryViewTable(const BQueryViewTable* view_table) override { view_table_ = view_table; }
  int ExecuteOperation() override;
  void DeleteOperation() override;

  /// Told why an ExecuteOperation failed, which its result does not say.
  void SetOnFailure(std::function<void(const std::string& message)> on_failure) {
    on_failure_ = std::move(on_failure);
  }

 private:
  std::string SelectOfSetup() const;
  std::string SetupName() const;
  RowsToHold::Restriction EmployeesOfView() const;

  const AnlysProjectStructure& request_;
  std::shared_ptr<Database> database_;
  const BQueryViewTable* view_table_ = nullptr;
  std::function<void(const std::string&)> on_failure_;
};

}  // namespace excelexp
