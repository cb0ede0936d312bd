#include "platform/analysis/SetupTableAnalysisEngine.h"

#include <limits>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/Names.h"
#include "platform/database/ResultSet.h"
#include "platform/database/SqlText.h"
#include "platform/database/SqlTokens.h"

namespace excelexp {
namespace {

constexpr std::string_view kMovementSubType = "ProjSubTypeMovement";

/// What a result means is turned round for movement projects.
int ResultOf(const AnlysProjectStructure& request, bool success) {
  if (request.AnlysProjectSubType == kMovementSubType) return success ? 0 : -1;
  return success ? 1 : 0;
}

/// One moment of the period order; comparable as a whole.
struct Period {
  std::int64_t year = 0;
  std::int64_t period = 0;
  std::int64_t sub_period = 0;
};

constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();

struct PeriodRange {
  Period from;
  Period to{kHighest, 0, 0};
};

PeriodRange RangeOf(const AnlysProjectStructure& request) {
  PeriodRange range;
  if (!(request.AsOfDate == DateTime{})) {
    const CivilTime day = DecodeDateTime(request.AsOfDate);
    range.from = {day.year, day.month, day.day};
    range.to = range.from;
    return range;
  }
  range.from = {request.WSItemFromYear, request.WSItemFromMthPeriod, request.WSItemFromSubPeriod};
  if (request.WSItemToYear != 0 || request.WSItemToMthPeriod != 0 || request.WSItemToSubPeriod != 0) {
    const auto highest_for_zero = [](std::int32_t value) { return value == 0 ? kHighest : value; };
    range.to = {request.WSItemToYear, highest_for_zero(request.WSItemToMthPeriod),
                highest_for_zero(request.WSItemToSubPeriod)};
  }
  return range;
}

std::string Tuple(const Period& period) {
  return "(" + std::to_string(period.year) + ", " + std::to_string(period.period) + ", " +
         std::to_string(period.sub_period) + ")";
}

// The tuples are not meant for an index: asked for year and month column by column, the database went through
// a grouped setup of 1,000 employees in another order, which took fourteen times as long.
std::string Condition(const PeriodRange& range) {
  constexpr std::string_view kMoment = "(AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod)";
  return std::string(kMoment) + " >= " + Tuple(range.from) + " AND " + std::string(kMoment) +
         " <= " + Tuple(range.to);
}

}  // namespace

RowsToHold::Key AnalysisRecordKey(const AnlysProjectStructure& request) {
  return {{"AnlysProjectId", request.AnlysProjectId}, {"AnlysIPAddress", request.AnlysIPAddress}};
}

SetupTableAnalysisEngine::SetupTableAnalysisEngine(const AnlysProjectStructure& request,
                                                   std::shared_ptr<Database> database)
    : request_(request), database_(std::move(database)) {}

int SetupTableAnalysisEngine::ExecuteOperation() {
  try {
    database_->HoldRows({.table = kAnalysisRecordTable,
                         .key = AnalysisRecordKey(request_),
                         .order = {"Basis1Id", "Basis2Id", "Basis3Id"},
                         .select = SelectOfSetup(),
                         .only = EmployeesOfView()});
    return ResultOf(request_, true);
  } catch (const DatabaseError& error) {
    if (on_failure_) on_failure_(error.what());
    return ResultOf(request_, false);
  }
}

void SetupTableAnalysisEngine::DeleteOperation() {
  database_->ReleaseRows(kAnalysisRecordTable, AnalysisRecordKey(request_));
}

/// The rows of the period range, with the columns that a record has too.
std::string SetupTableAnalysisEngine::SelectOfSetup() const {
  const std::string setup = QuoteName(SetupName());
  const auto none_of = [this](const std::string& table) {
    return database_->Select("SELECT * FROM " + table + " LIMIT 0");
  };
  const std::shared_ptr<const ResultSet> record = none_of(kAnalysisRecordTable);
  const std::shared_ptr<const ResultSet> figures = none_of(setup);
  std::string columns;
  for (int i = 0; i < record->ColumnCount(); ++i) {
    const std::string& name = record->ColumnName(i);
    const bool is_key = SameName(name, "AnlysProjectId") || SameName(name, "AnlysIPAddress");
    if (is_key || figures->ColumnIndex(name) < 0) continue;
    columns += (columns.empty() ? "" : ", ") + QuoteName(name);
  }
  return "SELECT " + columns + " FROM " + setup + " WHERE " + Condition(RangeOf(request_));
}

/// The setup's name as it was declared.
std::string SetupTableAnalysisEngine::SetupName() const {
  const std::shared_ptr<const ResultSet> names =
      database_->Select("SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name = " +
                        SqlText(request_.AnlysSetupId) + " COLLATE NOCASE");
  if (names->IsEmpty()) {
    throw DatabaseError("analysis project '" + request_.AnlysProjectId + "' names the setup '" +
                            request_.AnlysSetupId + "', which is no table or view",
                        "");
  }
  return names->AsText(0, 0);
}

RowsToHold::Restriction SetupTableAnalysisEngine::EmployeesOfView() const {
  if (request_.SummaryLevel != "SumLevelEmpee" || view_table_ == nullptr) return {};
  return {.column = "Basis1Id",
          .select = "SELECT EmployeeSysId FROM " + QuoteName(view_table_->sGetViewTableName())};
}

}  // namespace excelexp
