#pragma once

#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/formula/FunctionTable.h"

namespace excelexp::formula {

/// Token numbers, without the class bits where a token has a class ("OpenOffice.org's Documentation of the
/// Microsoft Excel File Format" 1.42, section 3.4).
enum class Token : std::uint8_t {
  kFunction = 0x01,
  kFunctionWithCount = 0x02,
  kName = 0x03,
  kCell = 0x04,
  kArea = 0x05,
  kReferenceExpression = 0x09,
  kExternalName = 0x19,
  kCellOfSheets = 0x1A,
  kAreaOfSheets = 0x1B,
};

enum class PlainToken : std::uint8_t {
  kUnion = 0x10,
  kParentheses = 0x15,
  kMissing = 0x16,
  kText = 0x17,
  kAttribute = 0x19,
  kError = 0x1C,
  kBoolean = 0x1D,
  kInteger = 0x1E,
  kNumber = 0x1F,
};

enum class Attribute : std::uint8_t { kVolatile = 0x01, kIf = 0x02, kChoose = 0x04, kGoto = 0x08 };

/// Bytes of tokens, little endian, and what they weigh against the limit of one formula.
class TokenWriter {
 public:
  std::size_t Place() const { return bytes_.size(); }
  std::size_t Weight() const { return bytes_.size() + extra_weight_; }
  /// Weighs more in the application's memory than in the file.
  void AddWeight(std::size_t extra) { extra_weight_ += extra; }

  void Put(PlainToken token) { Put8(static_cast<std::uint8_t>(token)); }
  void Put(Token token, OperandClass operand_class) {
    const unsigned bits = operand_class == OperandClass::kReference ? 0x20
                          : operand_class == OperandClass::kValue   ? 0x40
                                                                    : 0x60;
    Put8(static_cast<std::uint8_t>(static_cast<unsigned>(token) | bits));
  }
  /// Returns the place of the two bytes after the attribute's kind.
  std::size_t Put(Attribute attribute, std::size_t data = 0) {
    Put(PlainToken::kAttribute);
    Put8(static_cast<std::uint8_t>(attribute));
    Put16(data);
    return Place() - 2;
  }
  void Put8(std::uint8_t byte) { bytes_.push_back(byte); }
  void Put16(std::size_t number) {
    Put8(static_cast<std::uint8_t>(number & 0xFFU));
    Put8(static_cast<std::uint8_t>(number >> 8U & 0xFFU));
  }
  void PutDouble(double number) {
    const auto bits = std::bit_cast<std::uint64_t>(number);
    for (unsigned shift = 0; shift < 64; shift += 8) Put8(static_cast<std::uint8_t>(bits >> shift & 0xFFU));
  }
  void Patch16(std::size_t place, std::size_t number) {
    bytes_[place] = static_cast<std::uint8_t>(number & 0xFFU);
    bytes_[place + 1] = static_cast<std::uint8_t>(number >> 8U & 0xFFU);
  }

  std::vector<std::uint8_t> Take() { return std::move(bytes_); }

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t extra_weight_ = 0;
};

}  // namespace excelexp::formula
