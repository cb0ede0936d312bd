#include "platform/spreadsheet/WorkbookFile.h"

#include <algorithm>

#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp {
namespace {

bool EndsWithExtension(std::string_view name, std::string_view extension) {
  if (name.size() < extension.size()) return false;
  name.remove_prefix(name.size() - extension.size());
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c; };
  return std::equal(name.begin(), name.end(), extension.begin(),
                    [&](char a, char b) { return lower(a) == b; });
}

}  // namespace

const std::vector<WorkbookFormat>& WorkbookFormats() {
  // The counts are the application's published limits, the smaller one where they vary with its language.
  // .xls: 4,050 XF records at most ([MS-XLS] 2.4.353), 15 of them styles; 510 FONT records (2.1.7.20.3).
  static const std::vector<WorkbookFormat> kFormats = {
      {".xls", 65536, 256, 4000, 510, 200, &SerializeXls},
      {".xlsx", 1048576, 16384, 64000, 510, 200, &SerializeXlsx},
  };
  return kFormats;
}

const WorkbookFormat& WorkbookFormatFor(std::string_view file_name) {
  std::string known;
  for (const WorkbookFormat& format : WorkbookFormats()) {
    if (EndsWithExtension(file_name, format.extension)) return format;
    known.append(known.empty() ? "" : ", ").append(format.extension);
  }
  throw SpreadsheetError("The file name \"" + std::string(file_name) + "\" ends in no known extension (" +
                         known + ").");
}

}  // namespace excelexp
