#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/spreadsheet/CellName.h"
#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// What a workbook shows, held in memory in the shape that libxlsxwriter takes, so that nothing but that
/// library is measured when it is written again.
class LibxlsxwriterPeer {
 public:
  /// Copies; the formulas must have been computed.
  explicit LibxlsxwriterPeer(const Workbook& workbook);

  /// Writes an .xlsx file: the same texts, numbers, formulas with their values, fonts, colours, number
  /// formats, merges, column widths and row heights. Throws std::runtime_error when the library fails.
  void Write(const std::string& file) const;

 private:
  struct Value {
    int row;
    int column;
    CellType type;
    FormatId format;
    double number;     ///< of a number, or the value of a formula
    std::string text;  ///< of a text or a formula
  };
  struct Size {
    int number;  ///< of the column or row
    double size;
  };
  struct Page {
    std::string name;
    std::vector<Value> values;
    std::vector<CellRange> merges;
    std::vector<Size> column_widths;
    std::vector<Size> row_heights;
  };

  static Page PageOf(const Workbook& workbook, const Sheet& sheet);

  std::vector<CellFormat> formats_;
  std::vector<Page> pages_;
};

}  // namespace excelexp
