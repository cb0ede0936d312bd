#include "platform/spreadsheet/xlsx/SharedStrings.h"

#include "platform/spreadsheet/xlsx/Package.h"
#include "platform/spreadsheet/xlsx/XmlText.h"

namespace excelexp::xlsx {

SharedStrings::SharedStrings(const Workbook& workbook)
    : workbook_(workbook), numbers_(workbook.TextCount(), kUnused) {}

std::uint32_t SharedStrings::Use(std::uint32_t text) {
  ++uses_;
  std::uint32_t& number = numbers_[text];
  if (number == kUnused) {
    number = static_cast<std::uint32_t>(texts_.size());
    texts_.push_back(text);
  }
  return number;
}

void SharedStrings::Write(Package& package) const {
  package.BeginPart("xl/sharedStrings.xml");
  std::string xml(kXmlHeader);
  xml += "<sst xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" count=\"" +
         std::to_string(uses_) + "\" uniqueCount=\"" + std::to_string(texts_.size()) + "\">";
  for (const std::uint32_t index : texts_) {
    const std::string& text = workbook_.Text(index);
    xml += HasOuterBlanks(text) ? "<si><t xml:space=\"preserve\">" : "<si><t>";
    AppendText(xml, text);
    xml += "</t></si>";
    if (xml.size() < kBufferBytes) continue;
    package.Write(xml);
    xml.clear();
  }
  package.Write(xml + "</sst>");
}

}  // namespace excelexp::xlsx
