#include "platform/database/ResultCache.h"

#include <utility>

namespace excelexp {
namespace {

constexpr std::size_t kEntryOverhead = 256;  // list and map nodes, the result's own object
constexpr std::size_t kLargestShare = 4;     // of the whole cache, for one result

}  // namespace

std::shared_ptr<const ResultSet> ResultCache::Find(std::string_view sql) {
  const auto found = by_sql_.find(sql);
  if (found == by_sql_.end()) return nullptr;
  if (found->second != entries_.begin()) entries_.splice(entries_.begin(), entries_, found->second);
  return found->second->result;
}

void ResultCache::Put(const std::string& sql, std::shared_ptr<const ResultSet> result) {
  const std::size_t bytes = result->Bytes() + sql.size() + kEntryOverhead;
  if (bytes > max_bytes_ / kLargestShare || by_sql_.contains(sql)) return;
  entries_.push_front({sql, std::move(result), bytes});
  by_sql_.emplace(entries_.front().sql, entries_.begin());
  bytes_ += bytes;
  while (bytes_ > max_bytes_) {
    bytes_ -= entries_.back().bytes;
    by_sql_.erase(entries_.back().sql);
    entries_.pop_back();
  }
}

void ResultCache::Clear() {
  by_sql_.clear();
  entries_.clear();
  bytes_ = 0;
}

}  // namespace excelexp
