#include "platform/spreadsheet/xls/XlsText.h"

#include <algorithm>

#include "platform/spreadsheet/Utf8.h"

namespace excelexp::xls {

void XlsText::Set(std::string_view utf8) {
  const Utf16Size size = MeasureUtf16(utf8);
  wide_ = size.wide;
  bytes_.clear();
  if (size.units == utf8.size()) {
    bytes_.assign(utf8);
    return;
  }
  bytes_.reserve(size.units * UnitBytes());
  const auto put_unit = [this](char32_t unit) {
    bytes_.push_back(static_cast<char>(unit));
    if (wide_) bytes_.push_back(static_cast<char>(unit >> 8));
  };
  while (!utf8.empty()) {
    const char32_t character = DecodeUtf8(utf8);
    if (character > 0xFFFF) {
      put_unit(0xD800 + ((character - 0x10000) >> 10));
      put_unit(0xDC00 + (character & 0x3FF));
    } else {
      put_unit(character);
    }
  }
}

void XlsText::PutShort(RecordStream& stream) const {
  stream.U8(static_cast<std::uint32_t>(Units()));
  PutFlagged(stream);
}

void XlsText::PutLong(RecordStream& stream) const {
  stream.U16(static_cast<std::uint32_t>(Units())).U8(wide_);
  for (std::size_t begin = 0;;) {
    const std::size_t piece = PieceBytes(begin, stream.Room());
    stream.Bytes(std::string_view(bytes_).substr(begin, piece));
    begin += piece;
    if (begin == bytes_.size()) return;
    stream.Continue();
    stream.U8(wide_);
  }
}

std::size_t XlsText::PieceBytes(std::size_t begin, std::size_t room) const {
  std::size_t piece = std::min(room / UnitBytes() * UnitBytes(), bytes_.size() - begin);
  if (!wide_ || piece == 0 || begin + piece == bytes_.size()) return piece;
  // A reader may decode each record on its own, so a surrogate pair is not parted.
  const auto high_byte = static_cast<unsigned char>(bytes_[begin + piece - 1]);
  const bool parts_pair = (high_byte & 0xFC) == 0xD8;
  return parts_pair ? piece - 2 : piece;
}

}  // namespace excelexp::xls
