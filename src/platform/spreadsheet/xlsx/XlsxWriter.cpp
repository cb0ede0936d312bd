#include <cstdio>

#include "platform/spreadsheet/FormatCensus.h"
#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/xlsx/Package.h"
#include "platform/spreadsheet/xlsx/SharedStrings.h"
#include "platform/spreadsheet/xlsx/SheetPart.h"
#include "platform/spreadsheet/xlsx/Styles.h"
#include "platform/spreadsheet/xlsx/XmlText.h"

// The parts of a workbook file: ECMA-376 part 1, 12.3, in a package of part 2 with the property parts of
// part 2, 11 and part 1, 22.2.

namespace excelexp {
namespace {

using xlsx::AppendAttribute;
using xlsx::AppendText;
using xlsx::kXmlHeader;
using xlsx::Package;
using xlsx::SheetPartName;

#define EXCELEXP_PACKAGE_SCHEMA "http://schemas.openxmlformats.org/package/2006/"
#define EXCELEXP_OFFICE_SCHEMA "http://schemas.openxmlformats.org/officeDocument/2006/"
#define EXCELEXP_SHEET_TYPE "application/vnd.openxmlformats-officedocument.spreadsheetml."

std::string Override(const std::string& part, const std::string& type) {
  return "<Override PartName=\"/" + part + "\" ContentType=\"" + type + "\"/>";
}

void WriteContentTypes(Package& package, std::size_t sheets) {
  std::string xml(kXmlHeader);
  xml += "<Types xmlns=\"" EXCELEXP_PACKAGE_SCHEMA
         "content-types\">"
         "<Default Extension=\"rels\" "
         "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
         "<Default Extension=\"xml\" ContentType=\"application/xml\"/>";
  xml +=
      Override("docProps/app.xml", "application/vnd.openxmlformats-officedocument.extended-properties+xml");
  xml += Override("docProps/core.xml", "application/vnd.openxmlformats-package.core-properties+xml");
  xml += Override("xl/workbook.xml", EXCELEXP_SHEET_TYPE "sheet.main+xml");
  xml += Override("xl/styles.xml", EXCELEXP_SHEET_TYPE "styles+xml");
  xml += Override("xl/sharedStrings.xml", EXCELEXP_SHEET_TYPE "sharedStrings+xml");
  for (std::size_t number = 1; number <= sheets; ++number) {
    xml += Override("xl/" + SheetPartName(number), EXCELEXP_SHEET_TYPE "worksheet+xml");
  }
  package.AddPart("[Content_Types].xml", xml + "</Types>");
}

/// The relationships of one part, numbered from rId1 on.
class Relationships {
 public:
  void Add(const std::string& type, const std::string& target) {
    xml_ += "<Relationship Id=\"rId" + std::to_string(++count_) + "\" Type=\"" + type + "\" Target=\"" +
            target + "\"/>";
  }
  void Write(Package& package, const std::string& part) const {
    package.AddPart(part, std::string(kXmlHeader) +
                              "<Relationships xmlns=\"" EXCELEXP_PACKAGE_SCHEMA "relationships\">" + xml_ +
                              "</Relationships>");
  }

 private:
  std::string xml_;
  int count_ = 0;
};

void WritePackageRelationships(Package& package) {
  Relationships relationships;
  relationships.Add(EXCELEXP_OFFICE_SCHEMA "relationships/officeDocument", "xl/workbook.xml");
  relationships.Add(EXCELEXP_PACKAGE_SCHEMA "relationships/metadata/core-properties", "docProps/core.xml");
  relationships.Add(EXCELEXP_OFFICE_SCHEMA "relationships/extended-properties", "docProps/app.xml");
  relationships.Write(package, "_rels/.rels");
}

/// The sheets come first: sheet n is rId n.
void WriteWorkbookRelationships(Package& package, std::size_t sheets) {
  Relationships relationships;
  for (std::size_t number = 1; number <= sheets; ++number) {
    relationships.Add(EXCELEXP_OFFICE_SCHEMA "relationships/worksheet", SheetPartName(number));
  }
  relationships.Add(EXCELEXP_OFFICE_SCHEMA "relationships/styles", "styles.xml");
  relationships.Add(EXCELEXP_OFFICE_SCHEMA "relationships/sharedStrings", "sharedStrings.xml");
  relationships.Write(package, "xl/_rels/workbook.xml.rels");
}

void AppendDefinedNames(std::string& xml, const std::vector<formula::HiddenName>& names) {
  if (names.empty()) return;
  xml += "<definedNames>";
  for (const formula::HiddenName& name : names) {
    xml += "<definedName name=\"";
    AppendAttribute(xml, name.name);
    xml += "\" hidden=\"1\">";
    AppendText(xml, formula::Print(*name.expression, formula::NameStyle::kStored));
    xml += "</definedName>";
  }
  xml += "</definedNames>";
}

/// Readers that calculate are asked to do so when they load the file; the stored results are for the others.
void WriteWorkbookPart(Package& package, const Workbook& workbook,
                       const std::vector<formula::HiddenName>& names) {
  std::string xml(kXmlHeader);
  xml +=
      "<workbook xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" "
      "xmlns:r=\"" EXCELEXP_OFFICE_SCHEMA "relationships\"><bookViews><workbookView/></bookViews><sheets>";
  int number = 0;
  for (const auto& sheet : workbook.Sheets()) {
    const std::string id = std::to_string(++number);
    xml += "<sheet name=\"";
    AppendAttribute(xml, sheet->Name());
    xml.append("\" sheetId=\"").append(id).append("\" r:id=\"rId").append(id).append("\"/>");
  }
  xml += "</sheets>";
  AppendDefinedNames(xml, names);
  package.AddPart("xl/workbook.xml", xml + "<calcPr fullCalcOnLoad=\"1\"/></workbook>");
}

void WriteApplicationProperties(Package& package) {
  package.AddPart("docProps/app.xml", std::string(kXmlHeader) +
                                          "<Properties xmlns=\"" EXCELEXP_OFFICE_SCHEMA
                                          "extended-properties\"><Application>excelexp</Application>"
                                          "</Properties>");
}

std::string TimeElement(const std::string& name, DateTime moment) {
  const CivilTime civil = DecodeDateTime(moment);
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", civil.year, civil.month, civil.day,
                civil.hour, civil.minute, civil.second);
  return "<dcterms:" + name + " xsi:type=\"dcterms:W3CDTF\">" + text + "</dcterms:" + name + ">";
}

void WriteCoreProperties(Package& package, const Workbook& workbook) {
  std::string xml(kXmlHeader);
  xml += "<cp:coreProperties xmlns:cp=\"" EXCELEXP_PACKAGE_SCHEMA
         "metadata/core-properties\" "
         "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" xmlns:dcterms=\"http://purl.org/dc/terms/\" "
         "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">";
  if (!workbook.title.empty()) {
    xml += "<dc:title>";
    AppendText(xml, workbook.title);
    xml += "</dc:title>";
  }
  if (workbook.created != DateTime()) {
    xml += TimeElement("created", workbook.created) + TimeElement("modified", workbook.created);
  }
  package.AddPart("docProps/core.xml", xml + "</cp:coreProperties>");
}

}  // namespace

/// The sheets are written before the parts that hold the texts and names which the sheets turned out to need.
std::string SerializeXlsx(const Workbook& workbook) {
  Package package;
  FormatCensus formats(workbook);
  formats.AddAll();
  xlsx::SharedStrings strings(workbook);
  std::vector<formula::HiddenName> names;
  const std::size_t sheets = workbook.Sheets().size();
  WriteContentTypes(package, sheets);
  WritePackageRelationships(package);
  WriteWorkbookRelationships(package, sheets);
  xlsx::SheetContext context{workbook, package, strings, formats, names};
  for (std::size_t number = 1; number <= sheets; ++number) xlsx::WriteSheet(context, number);
  WriteWorkbookPart(package, workbook, names);
  xlsx::WriteStyles(package, workbook, formats);
  strings.Write(package);
  WriteCoreProperties(package, workbook);
  WriteApplicationProperties(package);
  return package.Finish();
}

}  // namespace excelexp
