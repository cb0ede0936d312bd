#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/DateTime.h"
#include "platform/spreadsheet/CellName.h"

namespace excelexp {

namespace formula {
class Expression;
}

/// Underline kinds; the values are the spreadsheet application's automation constants.
enum class Underline : int {
  kNone = -4142,
  kSingle = 2,
  kDouble = -4119,
  kSingleAccounting = 4,
  kDoubleAccounting = 5,
};

/// Everything a cell can look like. Compared by value; a workbook keeps each distinct one once.
struct CellFormat {
  std::string font_name = "Arial";
  double font_size = 10.0;  ///< points
  int font_colour = 0;      ///< palette index 1 to 56; 0 is the application's automatic colour
  bool bold = false;
  bool italic = false;
  bool strikethrough = false;
  bool superscript = false;
  bool subscript = false;
  Underline underline = Underline::kNone;
  std::string number_format = "General";
  bool word_wrap = false;
  bool centred = false;

  friend bool operator==(const CellFormat&, const CellFormat&) = default;
};

using FormatId = std::uint32_t;  ///< index into the workbook's formats; 0 is the default format

/// Error values as the application shows them.
enum class ErrorCode : std::uint8_t { kNull, kDivZero, kValue, kRef, kName, kNum, kNotAvailable };

/// "#DIV/0!" and so on.
std::string_view ErrorText(ErrorCode code);

enum class CellType : std::uint8_t { kEmpty, kNumber, kText, kFormula };

/// One cell: a value and a format. An empty cell with a format is a formatted blank.
struct Cell {
  CellType type = CellType::kEmpty;
  FormatId format = 0;
  union {
    double number = 0.0;    ///< kNumber
    std::uint32_t text;     ///< kText: index into the workbook's texts
    std::uint32_t formula;  ///< kFormula: index into the workbook's formulas
  };
};

/// What a formula shows.
struct FormulaResult {
  enum class Type : std::uint8_t {
    kUnknown,  ///< not computed: the application must recalculate
    kNumber,
    kText,
    kBoolean,
    kError
  };
  Type type = Type::kUnknown;
  double number = 0.0;  ///< kNumber; 0 or 1 for kBoolean
  std::string text;
  ErrorCode error = ErrorCode::kNull;
};

struct Formula {
  std::string text;  ///< as given, with the leading "="
  std::shared_ptr<const formula::Expression> expression;
  FormulaResult result;
};

/// One worksheet. Rows and columns are 1-based.
class Sheet {
 public:
  explicit Sheet(std::string name) : name_(std::move(name)) {}

  const std::string& Name() const { return name_; }

  /// The cell for writing; the sheet grows as needed. Row and column must lie within kMaxRows x kMaxColumns.
  Cell& At(int row, int column);
  /// nullptr where nothing was written or formatted.
  const Cell* Find(int row, int column) const;

  int LastRow() const { return static_cast<int>(rows_.size()); }  ///< 0 for an empty sheet
  int LastColumn() const { return last_column_; }
  /// The cells of a row from column 1 on; shorter than LastColumn() where the row ends earlier.
  const std::vector<Cell>& Row(int row) const { return rows_[static_cast<std::size_t>(row - 1)]; }

  const std::vector<CellRange>& Merges() const { return merges_; }
  /// Width in characters of the default font; 0 where none was set.
  double ColumnWidth(int column) const;
  /// Height in points; 0 where none was set.
  double RowHeight(int row) const;

  void SetColumnWidth(int column, double characters);
  void SetRowHeight(int row, double points);
  void AddMerge(const CellRange& range) { merges_.push_back(range); }

 private:
  std::string name_;
  std::vector<std::vector<Cell>> rows_;
  std::vector<CellRange> merges_;
  std::vector<double> column_widths_;
  std::vector<double> row_heights_;
  int last_column_ = 0;
};

/// The in-memory workbook that BExcelAPI fills and the writers read. Texts and formats are kept once each.
class Workbook {
 public:
  static constexpr int kMaxRows = 1048576;  ///< of any file format we write; each writer checks its own
  static constexpr int kMaxColumns = 16384;

  Workbook();
  ~Workbook();
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;

  std::string title;
  DateTime created;  ///< document property; from the clock seam

  std::vector<std::unique_ptr<Sheet>>& Sheets() { return sheets_; }
  const std::vector<std::unique_ptr<Sheet>>& Sheets() const { return sheets_; }
  /// nullptr when there is none; names match without regard to case.
  Sheet* FindSheet(std::string_view name) const;

  std::uint32_t InternText(std::string_view text);
  const std::string& Text(std::uint32_t index) const;
  std::size_t TextCount() const;

  FormatId InternFormat(const CellFormat& format);
  const CellFormat& Format(FormatId id) const;
  std::size_t FormatCount() const;

  std::uint32_t AddFormula(Formula formula);
  Formula& FormulaAt(std::uint32_t index);
  const Formula& FormulaAt(std::uint32_t index) const;
  std::size_t FormulaCount() const;

 private:
  struct Pools;
  std::unique_ptr<Pools> pools_;
  std::vector<std::unique_ptr<Sheet>> sheets_;
};

}  // namespace excelexp
