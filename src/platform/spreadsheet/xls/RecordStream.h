#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace excelexp::xls {

/// Writes BIFF8 records: type, size, data, all little-endian ([MS-XLS] 2.1.4). Bytes go to the sink in large
/// pieces; a value that is known only later is patched, wherever it is by then.
class RecordStream {
 public:
  static constexpr std::size_t kMaxData = 8224;  ///< bytes of data in one record ([MS-XLS] 2.1.4)
  static constexpr std::uint16_t kContinue = 0x003C;

  /// Takes bytes that belong at a position of the stream: the next ones, or a patch of earlier ones.
  using Sink = std::function<void(std::size_t position, std::string_view bytes)>;

  explicit RecordStream(Sink sink);

  void Begin(std::uint16_t type);
  void End();
  /// Ends the record and goes on in a CONTINUE record.
  void Continue();
  /// Bytes that the open record still takes.
  std::size_t Room() const { return static_cast<std::size_t>(limit_ - end_); }

  RecordStream& U8(std::uint32_t value) { return Put<1>(value); }
  RecordStream& U16(std::uint32_t value) { return Put<2>(value); }
  RecordStream& U32(std::uint32_t value) { return Put<4>(value); }
  RecordStream& F64(double value);
  RecordStream& Bytes(std::string_view bytes);
  RecordStream& Zeros(std::size_t count);

  /// Bytes outside any record.
  void Pad(std::size_t count);

  /// Where the next byte will stand in the stream.
  std::size_t Position() const { return flushed_ + static_cast<std::size_t>(end_ - buffer_.data()); }
  void Patch32(std::size_t position, std::size_t value);
  /// Hands everything to the sink, patches last.
  void Finish();

 private:
  struct LatePatch {
    std::size_t position;
    std::uint32_t value;
  };

  template <int kBytes, typename Integer>
  RecordStream& Put(Integer value) {
    if (Room() < kBytes) Overflow();
    for (int i = 0; i < kBytes; ++i) *end_++ = static_cast<char>(value >> 8 * i);
    return *this;
  }
  [[noreturn]] static void Overflow();
  void Flush();

  Sink sink_;
  std::vector<char> buffer_;
  char* end_;               ///< behind the last byte in buffer_
  char* limit_;             ///< behind the last byte that the open record may take
  char* record_ = nullptr;  ///< the open record's header
  std::size_t flushed_ = 0;
  std::vector<LatePatch> late_patches_;
};

/// A record that is complete when the object goes.
class Record {
 public:
  Record(RecordStream& stream, std::uint16_t type) : stream_(stream) { stream_.Begin(type); }
  ~Record() { stream_.End(); }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  RecordStream* operator->() { return &stream_; }

 private:
  RecordStream& stream_;
};

/// A record of nothing but one number of 16 bits.
void WriteFlag(RecordStream& stream, std::uint16_t type, std::uint32_t value);
/// A record without data.
void WriteEmpty(RecordStream& stream, std::uint16_t type);

}  // namespace excelexp::xls
