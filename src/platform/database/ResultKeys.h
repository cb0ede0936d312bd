#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "platform/database/ValueView.h"

namespace excelexp {

/// One value of a Locate: integers and texts may stand in one list.
using KeyValue = std::variant<std::int64_t, std::string>;
/// The same with texts that stay the caller's.
using KeyView = std::variant<std::int64_t, std::string_view>;

/// Whether the texts of both are the same: 5 equals 5, 5.0 and '5', and '' equals NULL.
bool IsKey(const ValueView& value, const KeyView& key);
bool HaveSameText(const ValueView& a, const ValueView& b);

/// The same for values and keys that are equal.
std::size_t HashOfKey(const ValueView& value);
std::size_t HashOfKey(const KeyView& key);

/// The hash of several keys: with the hash of those before it, that of the next.
inline std::size_t MixKeys(std::size_t hash, std::uint64_t next) {
  hash = (hash ^ next) * 0x9e3779b97f4a7c15u;
  return hash ^ hash >> 32;  // a table takes the low bits, and a product's low bits know little
}

}  // namespace excelexp
