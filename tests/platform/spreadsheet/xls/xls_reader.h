#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/spreadsheet/Workbook.h"

namespace excelexp::xls {

/// A record of a workbook stream as it stands there.
struct ReadRecord {
  std::size_t position;
  std::uint16_t type;
  std::string data;

  std::uint32_t U16(std::size_t offset) const;
  std::uint32_t U32(std::size_t offset) const;
};

/// The stream of a name out of a compound file, by libgsf's reader.
std::string ReadStream(const std::string& file, const char* name);
/// Checks the framing on the way: whole records of at most 8,224 bytes.
std::vector<ReadRecord> ReadRecords(const std::string& stream);
/// The records of a workbook's .xls file.
std::vector<ReadRecord> SavedRecords(const Workbook& workbook);
std::vector<ReadRecord> OfType(const std::vector<ReadRecord>& records, std::uint16_t type);

struct ReadString {
  std::u16string text;
  std::size_t position;   ///< in the stream
  std::size_t in_record;  ///< from the start of its record
};

/// Reads the shared strings and fails the test where a header, a first character or a surrogate pair is
/// parted.
std::vector<ReadString> ReadSharedStrings(const std::vector<ReadRecord>& records);

}  // namespace excelexp::xls
