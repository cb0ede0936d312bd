#include "platform/spreadsheet/xls/SummaryInformation.h"

#include <cmath>
#include <cstdint>
#include <string_view>
#include <vector>

namespace excelexp::xls {
namespace {

// [MS-OLEPS] 2.25.1 names the properties, 2.15 their types.
enum PropertyId : std::uint32_t { kCodePage = 1, kTitle = 2, kCreated = 12, kApplication = 18 };
enum PropertyType : std::uint32_t { kInteger16 = 2, kCodePageString = 30, kFileTime = 64 };

constexpr std::uint32_t kUtf8 = 65001;

void Put(std::string& bytes, std::uint64_t value, int size) {
  for (int i = 0; i < size; ++i) bytes.push_back(static_cast<char>(value >> 8 * i));
}

struct Property {
  PropertyId id;
  std::string bytes;  ///< type and value, a multiple of 4
};

Property CodePage() {
  Property property{kCodePage, {}};
  Put(property.bytes, kInteger16, 4);
  Put(property.bytes, kUtf8, 4);
  return property;
}

Property Text(PropertyId id, std::string_view text) {
  Property property{id, {}};
  Put(property.bytes, kCodePageString, 4);
  Put(property.bytes, text.size() + 1, 4);
  property.bytes.append(text);
  do property.bytes.push_back('\0');
  while (property.bytes.size() % 4 != 0);
  return property;
}

Property Time(PropertyId id, DateTime moment) {
  constexpr double kDaysFrom1601 = 109205;  // 1601-01-01 to 1899-12-30
  constexpr double kMillisecondsPerDay = 86'400'000;
  constexpr std::uint64_t kTicksPerMillisecond = 10'000;
  // The fraction of a day counts forward from midnight, also before day 0.
  const double whole = std::trunc(moment.days);
  const double days = kDaysFrom1601 + whole + std::fabs(moment.days - whole);
  Property property{id, {}};
  Put(property.bytes, kFileTime, 4);
  Put(property.bytes,
      static_cast<std::uint64_t>(std::llround(days * kMillisecondsPerDay)) * kTicksPerMillisecond, 8);
  return property;
}

std::string PropertySet(const std::vector<Property>& properties) {
  std::string header;
  std::string values;
  const std::size_t header_size = 8 + 8 * properties.size();
  for (const Property& property : properties) {
    Put(header, property.id, 4);
    Put(header, header_size + values.size(), 4);
    values += property.bytes;
  }
  std::string set;
  Put(set, header_size + values.size(), 4);
  Put(set, properties.size(), 4);
  return set + header + values;
}

}  // namespace

std::string SummaryInformation(const Workbook& workbook) {
  std::vector<Property> properties = {CodePage()};
  if (!workbook.title.empty()) properties.push_back(Text(kTitle, workbook.title));
  if (workbook.created.days > 0) properties.push_back(Time(kCreated, workbook.created));
  properties.push_back(Text(kApplication, "excelexp"));

  // [MS-OLEPS] 2.21: byte order, version 0, system, no class, one set at offset 48.
  std::string stream;
  Put(stream, 0xFFFE, 2);
  Put(stream, 0, 2);
  Put(stream, 0x00020006, 4);
  stream.append(16, '\0');
  Put(stream, 1, 4);
  // FMTID_SummaryInformation {F29F85E0-4FF9-1068-AB91-08002B27B3D9}
  Put(stream, 0xF29F85E0, 4);
  Put(stream, 0x4FF9, 2);
  Put(stream, 0x1068, 2);
  stream.append("\xAB\x91\x08\x00\x2B\x27\xB3\xD9", 8);
  Put(stream, 48, 4);
  return stream + PropertySet(properties);
}

}  // namespace excelexp::xls
