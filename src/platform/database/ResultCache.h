#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/database/ResultSet.h"

namespace excelexp {

/// How a statement's results fared in the cache: kept, and asked for again.
struct CacheUse {
  int kept = 0;
  int hits = 0;
};

/// The results of recent statements by their texts. Holds at most a given number of bytes and drops what was
/// not asked for longest.
class ResultCache {
 public:
  explicit ResultCache(std::size_t max_bytes) : max_bytes_(max_bytes) {}

  /// nullptr when the text's result is not here.
  std::shared_ptr<const ResultSet> Find(std::string_view sql);
  /// Keeps the result, unless it alone would push most of the others out, or results of the same use are
  /// hardly ever asked for again.
  void Put(const std::string& sql, std::shared_ptr<const ResultSet> result,
           std::shared_ptr<CacheUse> use = std::make_shared<CacheUse>());
  void Drop(std::string_view sql);
  /// Says that a result has fetched its rest.
  void NoteGrowth() { grown_ = true; }
  void Clear();

 private:
  struct Entry {
    std::string sql;
    std::shared_ptr<const ResultSet> result;
    std::shared_ptr<CacheUse> use;
    std::size_t bytes;  // as counted in bytes_
  };
  using Entries = std::list<Entry>;
  static std::size_t BytesOf(const Entry& entry);
  void Recount(Entry& entry);
  void Erase(Entries::iterator entry);
  void Shrink();

  std::size_t max_bytes_;
  std::size_t bytes_ = 0;
  bool grown_ = false;
  Entries entries_;  // the one asked for last in front
  std::unordered_map<std::string_view, Entries::iterator> by_sql_;
};

}  // namespace excelexp
