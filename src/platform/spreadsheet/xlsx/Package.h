#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace excelexp::xlsx {

/// Whoever makes XML gathers up to about this many bytes before the package compresses them.
inline constexpr std::size_t kBufferBytes = 1 << 16;

/// A ZIP archive that grows in memory, one compressed part after the other. Its bytes depend on the parts
/// alone: the parts carry no real time. Throws SpreadsheetError where the archive cannot be written.
class Package {
 public:
  Package();
  ~Package();
  Package(const Package&) = delete;
  Package& operator=(const Package&) = delete;

  /// Begins a part ("xl/workbook.xml") after the one before.
  void BeginPart(const std::string& name);
  void Write(std::string_view bytes);
  void AddPart(const std::string& name, std::string_view bytes) {
    BeginPart(name);
    Write(bytes);
  }

  /// The finished archive. Nothing can be added afterwards.
  std::string Finish();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace excelexp::xlsx
