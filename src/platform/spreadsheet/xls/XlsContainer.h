#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace excelexp::xls {

/// The compound file ([MS-CFB]) around the workbook stream, in memory. Every operation throws
/// SpreadsheetError when it fails.
class XlsContainer {
 public:
  /// Takes `expected_size` bytes at once; more than enough costs address space and no memory.
  explicit XlsContainer(std::size_t expected_size);
  ~XlsContainer();

  /// Writes into the stream "Workbook", at its end or over what is there.
  void Write(std::size_t position, std::string_view bytes);
  /// Adds the document properties and returns the finished file; call it once.
  std::string Finish(std::string_view summary_information);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace excelexp::xls
