#include "platform/spreadsheet/xls/xls_reader.h"

#include <gsf/gsf.h>

#include "platform/spreadsheet/WorkbookFile.h"

namespace excelexp::xls {
namespace {

constexpr std::uint16_t kContinueRecord = 0x003C;
constexpr std::uint16_t kSstRecord = 0x00FC;

std::uint32_t Number(const std::string& bytes, std::size_t offset, int size) {
  std::uint32_t number = 0;
  for (int i = size; i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(bytes.at(offset + static_cast<std::size_t>(i)));
  }
  return number;
}

/// The SST record and its CONTINUE records as one sequence that knows its seams.
class SharedStringReader {
 public:
  explicit SharedStringReader(const std::vector<ReadRecord>& records) {
    bool inside = false;
    for (const ReadRecord& record : records) {
      inside = record.type == kSstRecord || (inside && record.type == kContinueRecord);
      if (inside) parts_.push_back(&record);
    }
  }

  std::vector<ReadString> ReadAll() {
    std::vector<ReadString> strings;
    if (parts_.empty()) return strings;
    const std::uint32_t count = parts_[0]->U32(4);
    offset_ = 8;
    while (strings.size() < count) strings.push_back(ReadOne());
    EXPECT_EQ(offset_, Data().size()) << "bytes behind the last string";
    EXPECT_EQ(part_ + 1, parts_.size());
    return strings;
  }

 private:
  const std::string& Data() const { return parts_.at(part_)->data; }

  void NextPart() {
    ++part_;
    offset_ = 0;
  }

  ReadString ReadOne() {
    if (offset_ == Data().size()) NextPart();
    ReadString read{{}, parts_[part_]->position + 4 + offset_, 4 + offset_};
    const std::uint32_t units = Number(Data(), offset_, 2);
    bool wide = Number(Data(), offset_ + 2, 1) == 1;
    offset_ += 3;
    EXPECT_LT(offset_, Data().size()) << "the first character is parted from its header";
    while (read.text.size() < units) {
      if (offset_ == Data().size()) {
        EXPECT_FALSE((read.text.back() & 0xFC00) == 0xD800) << "a surrogate pair is parted";
        NextPart();
        wide = Number(Data(), offset_++, 1) == 1;
      }
      const int size = wide ? 2 : 1;
      read.text.push_back(static_cast<char16_t>(Number(Data(), offset_, size)));
      offset_ += static_cast<std::size_t>(size);
    }
    return read;
  }

  std::vector<const ReadRecord*> parts_;
  std::size_t part_ = 0;
  std::size_t offset_ = 0;
};

}  // namespace

std::uint32_t ReadRecord::U16(std::size_t offset) const {
  return Number(data, offset, 2);
}
std::uint32_t ReadRecord::U32(std::size_t offset) const {
  return Number(data, offset, 4);
}

std::string ReadStream(const std::string& file, const char* name) {
  gsf_init();
  GsfInput* const memory = gsf_input_memory_new(reinterpret_cast<const guint8*>(file.data()),
                                                static_cast<gsf_off_t>(file.size()), FALSE);
  GsfInfile* const container = gsf_infile_msole_new(memory, nullptr);
  GsfInput* const stream = gsf_infile_child_by_name(container, name);
  const auto size = static_cast<std::size_t>(gsf_input_size(stream));
  std::string bytes(size, '\0');
  EXPECT_NE(gsf_input_read(stream, size, reinterpret_cast<guint8*>(bytes.data())), nullptr);
  for (gpointer object :
       {static_cast<gpointer>(stream), static_cast<gpointer>(container), static_cast<gpointer>(memory)}) {
    g_object_unref(object);
  }
  return bytes;
}

std::vector<ReadRecord> ReadRecords(const std::string& stream) {
  std::vector<ReadRecord> records;
  std::size_t last_sheet_end = 0;
  for (std::size_t position = 0; position + 4 <= stream.size();) {
    ReadRecord record{position, static_cast<std::uint16_t>(Number(stream, position, 2)), {}};
    if (record.type == 0) break;  // filled up behind the last sheet
    const std::uint32_t size = Number(stream, position + 2, 2);
    EXPECT_LE(size, 8224U);
    record.data = stream.substr(position + 4, size);
    EXPECT_EQ(record.data.size(), size);
    position += 4 + size;
    last_sheet_end = position;
    records.push_back(std::move(record));
  }
  EXPECT_EQ(stream.find_first_not_of('\0', last_sheet_end), std::string::npos);
  return records;
}

std::vector<ReadRecord> SavedRecords(const Workbook& workbook) {
  return ReadRecords(ReadStream(SerializeXls(workbook), "Workbook"));
}

std::vector<ReadRecord> OfType(const std::vector<ReadRecord>& records, std::uint16_t type) {
  std::vector<ReadRecord> found;
  for (const ReadRecord& record : records) {
    if (record.type == type) found.push_back(record);
  }
  return found;
}

std::vector<ReadString> ReadSharedStrings(const std::vector<ReadRecord>& records) {
  return SharedStringReader(records).ReadAll();
}

}  // namespace excelexp::xls
