#include "platform/spreadsheet/xls/RecordTypes.h"
#include "platform/spreadsheet/xls/xls_reader.h"

namespace excelexp::xls {
namespace {

constexpr const char* kOneByte = "\xC3\xA9";       // U+00E9
constexpr const char* kTwoBytes = "\xD0\xB6";      // U+0436
constexpr const char* kPair = "\xF0\x9F\x98\x80";  // U+1F600, two UTF-16 units

std::string Times(const char* piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

std::u16string Utf16(std::string text) {
  std::u16string units;
  for (std::size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const int length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    std::uint32_t character = length == 1 ? lead : lead & (0x7FU >> length);
    for (int k = 1; k < length; ++k)
      character = character << 6 | (text[i + static_cast<std::size_t>(k)] & 0x3F);
    i += static_cast<std::size_t>(length);
    if (character >= 0x10000) {
      units += {static_cast<char16_t>(0xD7C0 + (character >> 10)),
                static_cast<char16_t>(0xDC00 | (character & 0x3FF))};
    } else {
      units.push_back(static_cast<char16_t>(character));
    }
  }
  return units;
}

void ExpectTextsReadBack(const std::vector<std::string>& texts) {
  Workbook workbook;
  Sheet& sheet = *workbook.Sheets().emplace_back(std::make_unique<Sheet>("S"));
  int row = 0;
  for (const std::string& text : texts) {
    Cell& cell = sheet.At(++row, 1);
    cell.type = CellType::kText;
    cell.text = workbook.InternText(text);
  }
  const std::vector<ReadString> strings = ReadSharedStrings(SavedRecords(workbook));
  ASSERT_EQ(strings.size(), texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) ASSERT_EQ(strings[i].text, Utf16(texts[i])) << i;
}

// The first string begins 8 bytes into the record of 8,224; each length moves the seam by one character
// through the end of a string, its neighbour's header and its neighbour's first character.
TEST(SharedStrings, EveryLengthAroundTheSeamReadsBack) {
  const struct {
    const char* piece;
    int units_that_fill;
  } kinds[] = {{kOneByte, 8213}, {"a", 8213}, {kTwoBytes, 4106}, {kPair, 2053}};
  for (const auto& kind : kinds) {
    for (int length = kind.units_that_fill - 12; length <= kind.units_that_fill + 6; ++length) {
      for (const char* next : {"b", kTwoBytes, kPair}) {
        SCOPED_TRACE(std::string(kind.piece) + " x " + std::to_string(length) + next);
        ExpectTextsReadBack({Times(kind.piece, length), std::string(next) + "1", "2"});
      }
    }
  }
}

TEST(SharedStrings, APairMeetsTheSeamAtEitherUnit) {
  for (int shift = 0; shift < 4; ++shift) {
    ExpectTextsReadBack({Times(kTwoBytes, 4100 + shift) + Times(kPair, 4200), "end"});
  }
}

TEST(SharedStrings, TheLongestTextsReadBack) {
  ExpectTextsReadBack({Times("x", 32767), Times(kTwoBytes, 32767), Times(kPair, 16383) + "y", "z"});
}

TEST(SharedStrings, TheIndexPointsToEachBucket) {
  Workbook workbook;
  Sheet& sheet = *workbook.Sheets().emplace_back(std::make_unique<Sheet>("S"));
  workbook.InternText("nobody shows this one");
  for (int row = 1; row <= 6000; ++row) {
    Cell& cell = sheet.At(row, 1);
    cell.type = CellType::kText;
    cell.text = workbook.InternText("text " + std::to_string(row % 5000));
  }
  const std::vector<ReadRecord> records = SavedRecords(workbook);
  const std::vector<ReadString> strings = ReadSharedStrings(records);
  ASSERT_EQ(strings.size(), 5000U);
  EXPECT_EQ(OfType(records, kSst).at(0).U32(0), 6000U) << "cells with a text";
  const ReadRecord index = OfType(records, kExtSst).at(0);
  const std::uint32_t bucket = index.U16(0);
  ASSERT_EQ(index.data.size(), 2 + 8 * ((5000 + bucket - 1) / bucket));
  EXPECT_LE(index.data.size(), 2 + 8 * 128U);
  for (std::size_t i = 0; i * bucket < strings.size(); ++i) {
    EXPECT_EQ(index.U32(2 + 8 * i), strings[i * bucket].position);
    EXPECT_EQ(index.U16(6 + 8 * i), strings[i * bucket].in_record);
  }
}

}  // namespace
}  // namespace excelexp::xls
