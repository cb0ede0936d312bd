#pragma once

#include <cstdint>
#include <optional>

namespace excelexp::xls {

/// The four-byte form of a number, when it has one that gives exactly this number again: 30 bits of an
/// integer or the upper 30 bits of a double, either also as hundredfold ([MS-XLS] 2.5.217 RkNumber).
std::optional<std::uint32_t> EncodeRk(double number);

}  // namespace excelexp::xls
