#include "platform/spreadsheet/xls/RecordStream.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <string>

#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp::xls {
namespace {

constexpr std::size_t kHeader = 4;
constexpr std::size_t kFlushAt = 64 * 1024;
// [MS-CFB] 2.6.3: a stream of a version 3 file is below 2 GB; file positions in records have 32 bits.
constexpr std::size_t kMaxStream = 0x7FFF0000;

}  // namespace

RecordStream::RecordStream(Sink sink)
    : sink_(std::move(sink)), buffer_(kFlushAt + kHeader + kMaxData), end_(buffer_.data()), limit_(end_) {}

void RecordStream::Begin(std::uint16_t type) {
  if (end_ - buffer_.data() >= static_cast<std::ptrdiff_t>(kFlushAt)) Flush();
  record_ = end_;
  limit_ = end_ + kHeader + kMaxData;
  U16(type).U16(0);
}

void RecordStream::End() {
  const auto size = static_cast<std::size_t>(end_ - record_) - kHeader;
  record_[2] = static_cast<char>(size);
  record_[3] = static_cast<char>(size >> 8);
  limit_ = end_;
}

void RecordStream::Continue() {
  End();
  Begin(kContinue);
}

RecordStream& RecordStream::F64(double value) {
  return Put<8>(std::bit_cast<std::uint64_t>(value));
}

RecordStream& RecordStream::Bytes(std::string_view bytes) {
  if (Room() < bytes.size()) Overflow();
  end_ = std::copy(bytes.begin(), bytes.end(), end_);
  return *this;
}

RecordStream& RecordStream::Zeros(std::size_t count) {
  if (Room() < count) Overflow();
  end_ = std::fill_n(end_, count, '\0');
  return *this;
}

void RecordStream::Pad(std::size_t count) {
  Flush();
  const std::string zeros(count, '\0');
  sink_(flushed_, zeros);
  flushed_ += count;
}

void RecordStream::Patch32(std::size_t position, std::size_t value) {
  if (position < flushed_) {
    late_patches_.push_back({position, static_cast<std::uint32_t>(value)});
    return;
  }
  char* const at = buffer_.data() + (position - flushed_);
  for (int i = 0; i < 4; ++i) at[i] = static_cast<char>(value >> 8 * i);
}

void RecordStream::Finish() {
  Flush();
  for (const LatePatch& patch : late_patches_) {
    char bytes[4];
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<char>(patch.value >> 8 * i);
    sink_(patch.position, std::string_view(bytes, sizeof bytes));
  }
  late_patches_.clear();
}

void RecordStream::Flush() {
  const auto size = static_cast<std::size_t>(end_ - buffer_.data());
  if (flushed_ + size > kMaxStream)
    throw SpreadsheetError("The workbook is larger than an .xls file can be (2 GB).");
  sink_(flushed_, std::string_view(buffer_.data(), size));
  flushed_ += size;
  end_ = limit_ = buffer_.data();
}

void WriteFlag(RecordStream& stream, std::uint16_t type, std::uint32_t value) {
  Record(stream, type)->U16(value);
}

void WriteEmpty(RecordStream& stream, std::uint16_t type) {
  stream.Begin(type);
  stream.End();
}

void RecordStream::Overflow() {
  throw std::logic_error("a record outgrows its 8,224 bytes");
}

}  // namespace excelexp::xls
