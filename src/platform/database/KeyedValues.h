#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

struct sqlite3_value;

namespace excelexp {

struct SqliteValueFreer {
  void operator()(sqlite3_value* value) const;
};
/// A value that outlives the row it was read from; nullptr is NULL.
using OwnedSqliteValue = std::unique_ptr<sqlite3_value, SqliteValueFreer>;

/// Equal keys mean equal values of equal types. Appends to `key`.
void AppendKeyOf(sqlite3_value* value, std::string& key);

/// Values by integer key. Alike values are kept once.
class KeyedValues {
 public:
  /// A key that was added before keeps its value.
  void Add(std::int64_t key, sqlite3_value* value);
  /// Ends adding; before, nothing is found. False when a key was added twice.
  bool Finish();
  /// nullptr for a key without a value here; a pointer to nullptr is a NULL.
  const OwnedSqliteValue* Find(std::int64_t key) const;
  /// How many keys were added.
  std::size_t Size() const { return codes_.size(); }
  std::size_t Bytes() const { return bytes_; }

 private:
  std::vector<std::pair<std::int64_t, std::uint32_t>> codes_;  // of the keys, ascending once finished
  std::vector<OwnedSqliteValue> values_;
  std::unordered_map<std::string, std::uint32_t> added_;
  std::string content_;  // of the value that is added
  std::size_t bytes_ = 0;
  bool finished_ = false;
};

}  // namespace excelexp
