#include "platform/spreadsheet/xls/XlsStyles.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/spreadsheet/Palette.h"
#include "platform/spreadsheet/xls/RecordTypes.h"
#include "platform/spreadsheet/xls/XlsText.h"

namespace excelexp::xls {
namespace {

constexpr double kTwipsPerPoint = 20;

/// A file has no font 4 ([MS-XLS] 2.5.129 FontIndex).
std::uint16_t FontIndex(std::uint32_t index) {
  return static_cast<std::uint16_t>(index < 4 ? index : index + 1);
}

std::uint16_t ColourIndex(int palette_index) {
  constexpr std::uint16_t kAutomatic = 0x7FFF;
  return palette_index == 0 ? kAutomatic : static_cast<std::uint16_t>(palette_index + 7);
}

/// [MS-XLS] 2.4.122 Font, field uls.
std::uint8_t UnderlineByte(Underline kind) {
  switch (kind) {
    case Underline::kNone:
      return 0x00;
    case Underline::kSingle:
      return 0x01;
    case Underline::kDouble:
      return 0x02;
    case Underline::kSingleAccounting:
      return 0x21;
    case Underline::kDoubleAccounting:
      return 0x22;
  }
  return 0x00;
}

void WriteFont(RecordStream& stream, const CellFormat& font) {
  constexpr std::uint32_t kBoldFlag = 0x01, kItalicFlag = 0x02, kStrikeFlag = 0x08;
  constexpr std::uint32_t kNormalWeight = 400, kBoldWeight = 700;
  constexpr std::uint32_t kNoFamily = 0, kDefaultCharacterSet = 1;
  const std::uint32_t flags =
      (font.bold ? kBoldFlag : 0) | (font.italic ? kItalicFlag : 0) | (font.strikethrough ? kStrikeFlag : 0);
  const std::uint32_t escapement = font.subscript ? 2 : font.superscript ? 1 : 0;
  Record record(stream, kFont);
  record->U16(static_cast<std::uint32_t>(std::lround(font.font_size * kTwipsPerPoint))).U16(flags);
  record->U16(ColourIndex(font.font_colour)).U16(font.bold ? kBoldWeight : kNormalWeight).U16(escapement);
  record->U8(UnderlineByte(font.underline)).U8(kNoFamily).U8(kDefaultCharacterSet).U8(0);
  XlsText(font.font_name).PutShort(stream);
}

void WriteNumberFormat(RecordStream& stream, int number, const std::string& code) {
  Record record(stream, kFormat);
  record->U16(static_cast<std::uint32_t>(number));
  XlsText(code).PutLong(stream);
}

/// The fields of an XF record that we vary.
struct Xf {
  std::uint32_t font;
  int number_format;
  std::uint32_t type_and_parent;
  std::uint32_t alignment;
  std::uint32_t used_groups;
};

void WriteXf(RecordStream& stream, const Xf& xf) {
  constexpr std::uint32_t kNoPatternColours = 0x20C0;  // system foreground (0x40) and background (0x41)
  Record record(stream, kXf);
  record->U16(xf.font).U16(static_cast<std::uint32_t>(xf.number_format)).U16(xf.type_and_parent);
  record->U8(xf.alignment).U8(0).U8(0).U8(xf.used_groups).U32(0).U32(0).U16(kNoPatternColours);
}

constexpr std::uint32_t kBottom = 0x20;

/// "Normal" and the fourteen outline level styles, two bold, two italic ([MS-XLS] 2.4.353 XF).
void WriteStyleXfs(RecordStream& stream) {
  constexpr std::uint32_t kLockedStyle = 0xFFF5;
  for (std::uint32_t i = 0; i < XlsStyles::kStyleXfs; ++i) {
    const std::uint32_t font = i >= 1 && i <= 4 ? (i + 1) / 2 : 0;
    const std::uint32_t unused_groups = i == 0 ? 0x00 : 0xF4;
    WriteXf(stream, {font, 0, kLockedStyle, kBottom, unused_groups});
  }
}

void WriteCellXf(RecordStream& stream, const CellFormat& format, const FormatCensus::Entry& entry) {
  constexpr std::uint32_t kLockedCell = 0x0001;
  constexpr std::uint32_t kCentre = 0x02, kWrap = 0x08;
  constexpr std::uint32_t kUsesNumber = 0x04, kUsesFont = 0x08, kUsesAlignment = 0x10;
  const std::uint32_t alignment = kBottom | (format.centred ? kCentre : 0) | (format.word_wrap ? kWrap : 0);
  const std::uint32_t used = (entry.number_format != 0 ? kUsesNumber : 0) |
                             (entry.font != 0 ? kUsesFont : 0) | (alignment != kBottom ? kUsesAlignment : 0);
  WriteXf(stream, {FontIndex(entry.font), entry.number_format, kLockedCell, alignment, used});
}

void WriteNormalStyle(RecordStream& stream) {
  constexpr std::uint32_t kBuiltInOfXf0 = 0x8000, kNormal = 0x00, kNoLevel = 0xFF;
  Record(stream, kStyle)->U16(kBuiltInOfXf0).U8(kNormal).U8(kNoLevel);
}

void WritePalette(RecordStream& stream) {
  Record record(stream, kPalette);
  record->U16(kPaletteColours);
  for (int index = 1; index <= kPaletteColours; ++index) {
    const std::uint32_t colour = PaletteColour(index);
    record->U8(colour >> 16).U8(colour >> 8).U8(colour).U8(0);
  }
}

}  // namespace

XlsStyles::XlsStyles(const Workbook& workbook) : census_(workbook), workbook_(workbook) {
  census_.AddAll();
  for (const FormatCensus::Entry& entry : census_.Entries()) {
    // 25.5 twips a point give 10 points their 12.75; a row is as high as its highest font needs.
    const double height = std::ceil(workbook.Format(entry.id).font_size * kDefaultHeight / 10.0);
    heights_.push_back(
        std::max(kDefaultHeight, static_cast<std::uint16_t>(std::min(height, 409 * kTwipsPerPoint))));
  }
}

void XlsStyles::Write(RecordStream& stream) const {
  for (std::uint32_t i = 0; i < census_.Fonts().Size(); ++i) WriteFont(stream, census_.Fonts()[i]);
  for (std::uint32_t i = 0; i < census_.NumberFormats().Size(); ++i) {
    WriteNumberFormat(stream, FormatCensus::kFirstCustom + static_cast<int>(i), census_.NumberFormats()[i]);
  }
  WriteStyleXfs(stream);
  for (const FormatCensus::Entry& entry : census_.Entries())
    WriteCellXf(stream, workbook_.Format(entry.id), entry);
  WriteNormalStyle(stream);
  WritePalette(stream);
}

}  // namespace excelexp::xls
