#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace excelexp {

/// The analysis records of one export on a database that other exports use at the same time: an address that
/// no other run has, and the certainty that nothing stays behind under it.
///
/// The address is the workstation's, "~", the identity of this process and a number for each run in it. So
/// every data key (address, "_", ordering) tells which process it belongs to, and a later run can remove what
/// a killed one left. Records under an address without such an ending are never touched.
///
///   AnalysisRun run(database_file, DefaultWorkstation());
///   run.RemoveAbandoned();
///   FixedViewTable view_table(run.Address(), "ViewEmployee");
///   ... export ...
///   run.Finish();
class AnalysisRun {
 public:
  static constexpr int kBusyTimeoutMs = 5000;

  /// Opens nothing yet. Throws std::invalid_argument for an address that IsWorkstationAddress refuses.
  AnalysisRun(std::string database_file, std::string_view workstation);
  /// Finish, with failures ignored: the next run's RemoveAbandoned repeats what failed.
  ~AnalysisRun();
  AnalysisRun(const AnalysisRun&) = delete;
  AnalysisRun& operator=(const AnalysisRun&) = delete;

  /// What BQueryViewTable::sGetIPAddress must answer for this run.
  const std::string& Address() const { return address_; }

  /// Deletes the records of runs on this machine whose process has ended; returns how many records those
  /// were. `cancelled` stops it. Throws DatabaseError.
  std::int64_t RemoveAbandoned(const std::function<bool()>& cancelled = {});

  /// Deletes this run's records, after which the destructor does nothing. A database without such records is
  /// not written to. Throws DatabaseError, also when the database stays locked for longer than the timeout.
  void Finish(int busy_timeout_ms = kBusyTimeoutMs);

 private:
  std::string database_file_;
  std::string address_;
  bool finished_ = false;
};

/// True for 1 to 39 characters (the longest address in numbers) out of letters, digits, '.', ':', '-', '_'.
bool IsWorkstationAddress(std::string_view text);

/// The host name, made to pass IsWorkstationAddress.
std::string DefaultWorkstation();

}  // namespace excelexp
