#include "platform/database/ResultCache.h"

#include <utility>

namespace excelexp {
namespace {

constexpr std::size_t kEntryOverhead = 256;  // list and map nodes, the result's own object
constexpr std::size_t kLargestShare = 4;     // of the whole cache, for one result
constexpr int kKeptOnTrial = 100;

}  // namespace

std::shared_ptr<const ResultSet> ResultCache::Find(std::string_view sql) {
  const auto found = by_sql_.find(sql);
  if (found == by_sql_.end()) return nullptr;
  ++found->second->use->hits;
  if (found->second != entries_.begin()) entries_.splice(entries_.begin(), entries_, found->second);
  std::shared_ptr<const ResultSet> result = entries_.front().result;
  // A search may have built an index meanwhile.
  if (const std::size_t bytes = BytesOf(entries_.front()); bytes != entries_.front().bytes) {
    bytes_ += bytes - entries_.front().bytes;
    entries_.front().bytes = bytes;
    Shrink();
  }
  return result;
}

std::size_t ResultCache::BytesOf(const Entry& entry) {
  return entry.result->Bytes() + entry.sql.size() + kEntryOverhead;
}

void ResultCache::Put(const std::string& sql, std::shared_ptr<const ResultSet> result,
                      std::shared_ptr<CacheUse> use) {
  if (use->kept > kKeptOnTrial && use->hits < use->kept) return;
  if (by_sql_.contains(sql)) return;
  ++use->kept;
  Entry entry{sql, std::move(result), std::move(use), 0};
  entry.bytes = BytesOf(entry);
  if (entry.bytes > max_bytes_ / kLargestShare) return;
  bytes_ += entry.bytes;
  entries_.push_front(std::move(entry));
  by_sql_.emplace(entries_.front().sql, entries_.begin());
  Shrink();
}

void ResultCache::Shrink() {
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
