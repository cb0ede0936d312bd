#include "platform/spreadsheet/xlsx/Styles.h"

#include <string>
#include <vector>

#include "platform/spreadsheet/FormatCensus.h"
#include "platform/spreadsheet/Palette.h"
#include "platform/spreadsheet/xlsx/Package.h"
#include "platform/spreadsheet/xlsx/XmlText.h"

namespace excelexp::xlsx {
namespace {

std::string_view UnderlineElement(Underline underline) {
  switch (underline) {
    case Underline::kNone:
      return "";
    case Underline::kSingle:
      return "<u/>";
    case Underline::kDouble:
      return "<u val=\"double\"/>";
    case Underline::kSingleAccounting:
      return "<u val=\"singleAccounting\"/>";
    case Underline::kDoubleAccounting:
      return "<u val=\"doubleAccounting\"/>";
  }
  return "";
}

void AppendColour(std::string& xml, int index) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  xml += "<color rgb=\"FF";
  for (int shift = 20; shift >= 0; shift -= 4) xml += kDigits[PaletteColour(index) >> shift & 15];
  xml += "\"/>";
}

std::string FontElement(const CellFormat& format) {
  std::string xml = "<font>";
  if (format.bold) xml += "<b/>";
  if (format.italic) xml += "<i/>";
  if (format.strikethrough) xml += "<strike/>";
  xml += UnderlineElement(format.underline);
  if (format.superscript || format.subscript) {
    xml += format.superscript ? "<vertAlign val=\"superscript\"/>" : "<vertAlign val=\"subscript\"/>";
  }
  xml += "<sz val=\"";
  AppendNumber(xml, format.font_size);
  xml += "\"/>";
  if (format.font_colour != 0) AppendColour(xml, format.font_colour);
  xml += "<name val=\"";
  AppendAttribute(xml, format.font_name);
  return xml + "\"/></font>";
}

std::string CellFormatElement(const CellFormat& format, const FormatCensus::Entry& entry) {
  std::string xml = "<xf numFmtId=\"" + std::to_string(entry.number_format) + "\" fontId=\"" +
                    std::to_string(entry.font) + "\" fillId=\"0\" borderId=\"0\" xfId=\"0\"";
  if (entry.number_format != 0) xml += " applyNumberFormat=\"1\"";
  if (entry.font != 0) xml += " applyFont=\"1\"";
  if (!format.centred && !format.word_wrap) return xml + "/>";
  xml += " applyAlignment=\"1\"><alignment";
  if (format.centred) xml += " horizontal=\"center\"";
  if (format.word_wrap) xml += " wrapText=\"1\"";
  return xml + "/></xf>";
}

std::string NumberFormatElement(int number, const std::string& code) {
  std::string xml = "<numFmt numFmtId=\"" + std::to_string(number) + "\" formatCode=\"";
  AppendAttribute(xml, code);
  return xml + "\"/>";
}

/// A list element with its count; a list without entries is left out.
std::string ListElement(const std::string& name, const std::vector<std::string>& entries) {
  if (entries.empty()) return "";
  std::string xml = "<" + name + " count=\"" + std::to_string(entries.size()) + "\">";
  for (const std::string& entry : entries) xml += entry;
  return xml + "</" + name + ">";
}

template <typename Pool, typename Element>
std::vector<std::string> Elements(const Pool& pool, const Element& element) {
  std::vector<std::string> elements;
  for (std::uint32_t i = 0; i < pool.Size(); ++i) elements.push_back(element(i, pool[i]));
  return elements;
}

}  // namespace

void WriteStyles(Package& package, const Workbook& workbook, const FormatCensus& formats) {
  std::vector<std::string> cell_formats;
  for (const FormatCensus::Entry& entry : formats.Entries()) {
    cell_formats.push_back(CellFormatElement(workbook.Format(entry.id), entry));
  }
  std::string xml(kXmlHeader);
  xml += "<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">";
  xml +=
      ListElement("numFmts", Elements(formats.NumberFormats(), [](std::uint32_t i, const std::string& code) {
                    return NumberFormatElement(FormatCensus::kFirstCustom + static_cast<int>(i), code);
                  }));
  xml += ListElement("fonts", Elements(formats.Fonts(), [](std::uint32_t, const CellFormat& font) {
                       return FontElement(font);
                     }));
  xml += ListElement("fills", {"<fill><patternFill patternType=\"none\"/></fill>",
                               "<fill><patternFill patternType=\"gray125\"/></fill>"});
  xml += ListElement("borders", {"<border><left/><right/><top/><bottom/><diagonal/></border>"});
  xml += ListElement("cellStyleXfs", {"<xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/>"});
  xml += ListElement("cellXfs", cell_formats);
  xml += ListElement("cellStyles", {"<cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/>"});
  package.AddPart("xl/styles.xml", xml + "</styleSheet>");
}

}  // namespace excelexp::xlsx
