#include "platform/spreadsheet/FormatChange.h"

#include <bit>

namespace excelexp {
namespace {

std::int64_t Flags(bool first, bool second, bool third) {
  return first | second << 1 | third << 2;
}

}  // namespace

FormatChange FormatChange::Font(std::uint32_t name, double points) {
  return {Property::kFont, name, std::bit_cast<std::int64_t>(points)};
}

FormatChange FormatChange::Colour(int palette_index) {
  return {Property::kColour, 0, palette_index};
}

FormatChange FormatChange::Style(bool bold, bool underline, bool italic) {
  return {Property::kStyle, 0, Flags(bold, underline, italic)};
}

FormatChange FormatChange::Underlined(Underline kind) {
  return {Property::kUnderline, 0, static_cast<std::int64_t>(kind)};
}

FormatChange FormatChange::Effects(bool strikethrough, bool superscript, bool subscript) {
  return {Property::kEffects, 0, Flags(strikethrough, superscript && !subscript, subscript)};
}

FormatChange FormatChange::Number(std::uint32_t name) {
  return {Property::kNumberFormat, name, 0};
}

void FormatChange::Apply(CellFormat& format, const Workbook& workbook) const {
  const bool first = (value & 1) != 0;
  const bool second = (value & 2) != 0;
  const bool third = (value & 4) != 0;
  switch (property) {
    case Property::kFont:
      format.font_name = workbook.Name(name);
      format.font_size = std::bit_cast<double>(value);
      return;
    case Property::kColour:
      format.font_colour = static_cast<int>(value);
      return;
    case Property::kStyle:
      format.bold = first;
      if (second) format.underline = Underline::kSingle;
      format.italic = third;
      return;
    case Property::kUnderline:
      format.underline = static_cast<Underline>(value);
      return;
    case Property::kEffects:
      format.strikethrough = first;
      format.superscript = second;
      format.subscript = third;
      return;
    case Property::kNumberFormat:
      format.number_format = workbook.Name(name);
      return;
    case Property::kWordWrap:
      format.word_wrap = first;
      return;
    case Property::kCentred:
      format.centred = first;
      return;
    case Property::kAll:
      for (const FormatChange& change : workbook.Changes(name)) change.Apply(format, workbook);
      return;
  }
}

}  // namespace excelexp
