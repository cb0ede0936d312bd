#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/spreadsheet/xls/RecordStream.h"

namespace excelexp::xls {

/// A text as BIFF8 stores it: one byte a character when all are below U+0100, else UTF-16 ([MS-XLS] 2.5.293
/// XLUnicodeRichExtendedString). Meant to be refilled, so that its memory is used again.
class XlsText {
 public:
  XlsText() = default;
  explicit XlsText(std::string_view utf8) { Set(utf8); }

  /// The text must be valid UTF-8.
  void Set(std::string_view utf8);

  std::size_t Units() const { return bytes_.size() / UnitBytes(); }
  /// Flag byte and characters, for names shorter than a record.
  void PutFlagged(RecordStream& stream) const { stream.U8(wide_).Bytes(bytes_); }
  /// Length in one byte, flag byte, characters ([MS-XLS] 2.5.240 ShortXLUnicodeString).
  void PutShort(RecordStream& stream) const;
  /// Length in two bytes, flag byte, characters. Goes on in CONTINUE records where the characters do not fit;
  /// each begins with a flag byte of its own. The header and the first character stay together.
  void PutLong(RecordStream& stream) const;

  /// Bytes that must fit behind the current position before PutLong may start.
  std::size_t HeadBytes() const { return 3 + PieceBytes(0, UnitBytes() * 2); }

 private:
  std::size_t UnitBytes() const { return wide_ ? 2 : 1; }
  /// The most bytes from `begin` that fit into `room` without splitting a character.
  std::size_t PieceBytes(std::size_t begin, std::size_t room) const;

  std::string bytes_;
  bool wide_ = false;
};

}  // namespace excelexp::xls
