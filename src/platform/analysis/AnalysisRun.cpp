#include "platform/analysis/AnalysisRun.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/database/SqliteWriter.h"
#include "platform/host/ProcessIdentity.h"

namespace excelexp {
namespace {

constexpr char kSuffixMark = '~';  // no workstation address has it
constexpr std::size_t kMaxWorkstation = 39;

bool IsAddressCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == ':' ||
         c == '-' || c == '_';
}

bool IsDecimal(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string NewAddress(std::string_view workstation) {
  static std::atomic<unsigned> runs = 0;
  return std::string(workstation) + kSuffixMark + ToText(CurrentProcess()) + "-" + std::to_string(++runs);
}

/// The process behind a data key "<workstation>~<identity>-<run>_<ordering>"; nothing for any other key.
std::optional<ProcessIdentity> OwnerOf(std::string_view data_key) {
  const std::size_t mark = data_key.rfind(kSuffixMark);
  if (mark == std::string_view::npos || !IsWorkstationAddress(data_key.substr(0, mark))) return std::nullopt;
  const std::string_view suffix = data_key.substr(mark + 1);
  const std::size_t ordering = suffix.rfind('_');
  if (ordering == std::string_view::npos || !IsDecimal(suffix.substr(ordering + 1))) return std::nullopt;
  const std::size_t run = suffix.substr(0, ordering).rfind('-');
  if (run == std::string_view::npos || !IsDecimal(suffix.substr(run + 1, ordering - run - 1)))
    return std::nullopt;
  return ParseProcessIdentity(suffix.substr(0, run));
}

bool HasAnalysisRecords(SqliteWriter& writer) {
  return !writer.Rows("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'AnlysItemRecord'")
              .empty();
}

std::vector<std::string> AbandonedKeys(SqliteWriter& writer) {
  std::vector<std::string> keys;
  for (const auto& row :
       writer.Rows("SELECT DISTINCT AnlysIPAddress FROM AnlysItemRecord WHERE AnlysIPAddress GLOB '*~*'")) {
    const auto* key = std::get_if<std::string>(&row[0]);
    if (key == nullptr) continue;
    const auto owner = OwnerOf(*key);
    if (owner && HasEnded(*owner)) keys.push_back(*key);
  }
  return keys;
}

}  // namespace

AnalysisRun::AnalysisRun(std::string database_file, std::string_view workstation)
    : database_file_(std::move(database_file)) {
  if (!IsWorkstationAddress(workstation)) {
    throw std::invalid_argument("'" + std::string(workstation) +
                                "' is no workstation address: 1 to 39 letters, digits, '.', ':', '-', '_'");
  }
  address_ = NewAddress(workstation);
}

AnalysisRun::~AnalysisRun() {
  try {
    Finish();
  } catch (...) {
    // The records carry this process's identity; the next run removes them.
  }
}

std::int64_t AnalysisRun::RemoveAbandoned(const std::function<bool()>& cancelled) {
  SqliteWriter writer(database_file_);
  writer.SetCancelled(cancelled);
  if (!HasAnalysisRecords(writer)) return 0;
  std::int64_t removed = 0;
  for (const std::string& key : AbandonedKeys(writer)) {
    const std::array<SqlValue, 1> values = {key};
    removed += writer.Execute("DELETE FROM AnlysItemRecord WHERE AnlysIPAddress = ?1", values);
  }
  return removed;
}

void AnalysisRun::Finish(int busy_timeout_ms) {
  if (finished_) return;
  SqliteWriter writer(database_file_, SqliteWriter::Mode::kExisting, busy_timeout_ms);
  if (HasAnalysisRecords(writer)) {
    // All keys that begin with the address and "_"; "`" is the character behind "_".
    const std::string where = " FROM AnlysItemRecord WHERE AnlysIPAddress >= ?1 AND AnlysIPAddress < ?2";
    const std::array<SqlValue, 2> keys = {address_ + "_", address_ + "`"};
    if (!writer.Rows("SELECT 1" + where + " LIMIT 1", keys).empty()) writer.Execute("DELETE" + where, keys);
  }
  finished_ = true;
}

bool IsWorkstationAddress(std::string_view text) {
  return !text.empty() && text.size() <= kMaxWorkstation &&
         std::all_of(text.begin(), text.end(), IsAddressCharacter);
}

std::string DefaultWorkstation() {
  std::array<char, 256> buffer{};
  gethostname(buffer.data(), buffer.size() - 1);
  std::string name = std::string(buffer.data()).substr(0, kMaxWorkstation);
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !IsAddressCharacter(c); }, '-');
  return name.empty() ? "localhost" : name;
}

}  // namespace excelexp
