#include "platform/database/KeyedValues.h"

#include <sqlite3.h>

#include <algorithm>

namespace excelexp {
namespace {

constexpr std::size_t kValueOverhead = 160;  // map node and value object

}  // namespace

void SqliteValueFreer::operator()(sqlite3_value* value) const {
  sqlite3_value_free(value);
}

void AppendKeyOf(sqlite3_value* value, std::string& key) {
  const int type = sqlite3_value_type(value);
  if (type == SQLITE_FLOAT) {
    const double number = sqlite3_value_double(value);
    key.append(1, 'd').append(reinterpret_cast<const char*>(&number), sizeof number);
    return;
  }
  if (type == SQLITE_INTEGER) {
    const std::int64_t number = sqlite3_value_int64(value);
    key.append(1, 'i').append(reinterpret_cast<const char*>(&number), sizeof number);
    return;
  }
  const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
  const int size = sqlite3_value_bytes(value);
  key.append(1, static_cast<char>('0' + type)).append(reinterpret_cast<const char*>(&size), sizeof size);
  if (bytes != nullptr) key.append(bytes, static_cast<std::size_t>(size));
}

void KeyedValues::Add(std::int64_t key, sqlite3_value* value) {
  content_.clear();
  AppendKeyOf(value, content_);
  const auto [entry, is_new] = added_.try_emplace(content_, static_cast<std::uint32_t>(values_.size()));
  if (is_new) {
    values_.emplace_back(sqlite3_value_type(value) == SQLITE_NULL ? nullptr : sqlite3_value_dup(value));
    bytes_ += 2 * entry->first.size() + kValueOverhead;
  }
  codes_.emplace_back(key, entry->second);
  bytes_ += sizeof codes_.front();
}

bool KeyedValues::Finish() {
  constexpr auto kKey = &std::pair<std::int64_t, std::uint32_t>::first;
  std::ranges::stable_sort(codes_, {}, kKey);
  added_ = {};
  finished_ = true;
  return std::ranges::adjacent_find(codes_, {}, kKey) == codes_.end();
}

const OwnedSqliteValue* KeyedValues::Find(std::int64_t key) const {
  if (!finished_) return nullptr;
  const auto found =
      std::ranges::lower_bound(codes_, key, {}, &std::pair<std::int64_t, std::uint32_t>::first);
  return found == codes_.end() || found->first != key ? nullptr : &values_[found->second];
}

}  // namespace excelexp
