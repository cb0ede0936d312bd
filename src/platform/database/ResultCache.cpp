#include "platform/database/ResultCache.h"

#include <iterator>
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
  Recount(entries_.front());
  Shrink();
  return result;
}

// A search may have built an index meanwhile, or a reader made the result fetch its rest.
void ResultCache::Recount(Entry& entry) {
  const std::size_t bytes = BytesOf(entry);
  bytes_ += bytes - entry.bytes;
  entry.bytes = bytes;
}

std::size_t ResultCache::BytesOf(const Entry& entry) {
  return entry.result->Bytes() + entry.sql.size() + kEntryOverhead;
}

void ResultCache::Put(const std::string& sql, std::shared_ptr<const ResultSet> result,
                      std::shared_ptr<CacheUse> use) {
  if (use->kept > kKeptOnTrial && use->hits < use->kept) return;
  if (by_sql_.contains(sql)) return;
  if (std::exchange(grown_, false)) {
    for (auto each = entries_.begin(); each != entries_.end();) {
      const auto entry = each++;
      Recount(*entry);
      if (entry->bytes > max_bytes_ / kLargestShare) Erase(entry);
    }
  }
  Entry entry{sql, std::move(result), std::move(use), 0};
  entry.bytes = BytesOf(entry);
  if (entry.bytes > max_bytes_ / kLargestShare) return;
  ++entry.use->kept;
  bytes_ += entry.bytes;
  entries_.push_front(std::move(entry));
  by_sql_.emplace(entries_.front().sql, entries_.begin());
  Shrink();
}

void ResultCache::Shrink() {
  while (bytes_ > max_bytes_) Erase(std::prev(entries_.end()));
}

void ResultCache::Drop(std::string_view sql) {
  if (const auto found = by_sql_.find(sql); found != by_sql_.end()) Erase(found->second);
}

void ResultCache::Erase(Entries::iterator entry) {
  bytes_ -= entry->bytes;
  by_sql_.erase(entry->sql);
  entries_.erase(entry);
}

void ResultCache::Clear() {
  by_sql_.clear();
  entries_.clear();
  bytes_ = 0;
}

}  // namespace excelexp
