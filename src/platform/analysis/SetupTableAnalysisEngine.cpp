#include "platform/analysis/SetupTableAnalysisEngine.h"

#include <limits>
#include <vector>

#include "platform/database/DatabaseError.h"

namespace excelexp {
namespace {

constexpr std::string_view kMovementSubType = "ProjSubTypeMovement";

/// What a result means is turned round for movement projects.
int ResultOf(const AnlysProjectStructure& request, bool success) {
  if (request.AnlysProjectSubType == kMovementSubType) return success ? 0 : -1;
  return success ? 1 : 0;
}

std::string Quoted(const std::string& name) {
  std::string quoted = "\"";
  for (const char c : name) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

/// One moment of the period order; comparable as a whole.
struct Period {
  std::int64_t year = 0;
  std::int64_t period = 0;
  std::int64_t sub_period = 0;
};

struct PeriodRange {
  Period from;
  Period to{std::numeric_limits<std::int32_t>::max(), 0, 0};
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
    constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();
    const auto highest_for_zero = [](std::int32_t value) { return value == 0 ? kHighest : value; };
    range.to = {request.WSItemToYear, highest_for_zero(request.WSItemToMthPeriod),
                highest_for_zero(request.WSItemToSubPeriod)};
  }
  return range;
}

std::string TextOf(const SqlValue& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr ? "" : *text;
}

}  // namespace

SetupTableAnalysisEngine::SetupTableAnalysisEngine(const AnlysProjectStructure& request,
                                                   std::shared_ptr<SqliteWriter> writer)
    : request_(request), writer_(std::move(writer)) {}

int SetupTableAnalysisEngine::ExecuteOperation() {
  try {
    writer_->BulkTransaction([this] {
      DeleteRecords();
      CopyRecords();
    });
    return ResultOf(request_, true);
  } catch (const DatabaseError& error) {
    if (on_failure_) on_failure_(error.what());
    return ResultOf(request_, false);
  }
}

void SetupTableAnalysisEngine::DeleteOperation() {
  writer_->BulkTransaction([this] { DeleteRecords(); });
}

void SetupTableAnalysisEngine::DeleteRecords() {
  const std::vector<SqlValue> key = {request_.AnlysProjectId, request_.AnlysIPAddress};
  // A table is emptied as a whole in a fraction of the time that its rows take one by one.
  if (HoldsOnly(key)) {
    writer_->Execute("DELETE FROM AnlysItemRecord");
  } else {
    writer_->Execute("DELETE FROM AnlysItemRecord WHERE AnlysProjectId = ?1 AND AnlysIPAddress = ?2", key);
  }
}

/// Whether the first and the last record, in the order of the keys, have that key: then all of them have.
bool SetupTableAnalysisEngine::HoldsOnly(const std::vector<SqlValue>& key) {
  for (const char* end : {"SELECT AnlysProjectId, AnlysIPAddress FROM AnlysItemRecord "
                          "ORDER BY AnlysIPAddress, AnlysProjectId LIMIT 1",
                          "SELECT AnlysProjectId, AnlysIPAddress FROM AnlysItemRecord "
                          "ORDER BY AnlysIPAddress DESC, AnlysProjectId DESC LIMIT 1"}) {
    const auto record = writer_->Rows(end);
    if (record.empty() || record.front() != key) return false;
  }
  return true;
}

void SetupTableAnalysisEngine::CopyRecords() {
  const std::vector<SqlValue> setup = {request_.AnlysSetupId};
  const auto names = writer_->Rows(
      "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name = ?1 COLLATE NOCASE", setup);
  if (names.empty()) {
    throw DatabaseError("analysis project '" + request_.AnlysProjectId + "' names the setup '" +
                            request_.AnlysSetupId + "', which is no table or view",
                        "");
  }
  std::string columns;
  for (const auto& row :
       writer_->Rows("SELECT record.name FROM pragma_table_info('AnlysItemRecord') AS record JOIN "
                     "pragma_table_info(?1) AS setup ON record.name = setup.name COLLATE NOCASE "
                     "WHERE record.name NOT IN ('AnlysProjectId', 'AnlysIPAddress')",
                     setup)) {
    columns += ", " + Quoted(TextOf(row[0]));
  }
  std::string restriction;
  if (request_.SummaryLevel == "SumLevelEmpee" && view_table_ != nullptr) {
    restriction = " AND Basis1Id IN (SELECT CAST(EmployeeSysId AS TEXT) FROM " +
                  Quoted(view_table_->sGetViewTableName()) + ")";
  }
  const PeriodRange range = RangeOf(request_);
  const std::vector<SqlValue> values = {request_.AnlysProjectId, request_.AnlysIPAddress, range.from.year,
                                        range.from.period,       range.from.sub_period,   range.to.year,
                                        range.to.period,         range.to.sub_period};
  writer_->Execute(
      "INSERT INTO AnlysItemRecord (AnlysProjectId, AnlysIPAddress" + columns + ") SELECT ?1, ?2" + columns +
          " FROM " + Quoted(TextOf(names[0][0])) +
          " WHERE (AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod) >= (?3, ?4, ?5)"
          " AND (AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod) <= (?6, ?7, ?8)" +
          restriction,
      values);
}

}  // namespace excelexp
