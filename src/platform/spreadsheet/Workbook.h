#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/DateTime.h"
#include "platform/spreadsheet/CellName.h"

namespace excelexp {

struct FormatChange;
namespace formula {
class Expression;
struct FormulaSource;

/// How far the relative references of a shared expression are to be moved.
struct Moves {
  int rows = 0;
  int columns = 0;
  bool Any() const { return rows != 0 || columns != 0; }
};
}  // namespace formula

/// Underline kinds; the values are the spreadsheet application's automation constants.
enum class Underline : int {
  kNone = -4142,
  kSingle = 2,
  kDouble = -4119,
  kSingleAccounting = 4,
  kDoubleAccounting = 5,
};

/// Whether the value is one of the application's constants.
bool IsUnderline(Underline kind);

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

struct TextHash {
  std::size_t operator()(std::string_view text) const;
};
struct CellFormatHash {
  std::size_t operator()(const CellFormat& format) const;
};

using FormatId = std::uint32_t;  ///< index into the workbook's formats; 0 is the default format

/// Error values as the application shows them.
enum class ErrorCode : std::uint8_t { kNull, kDivZero, kValue, kRef, kName, kNum, kNotAvailable };

/// "#DIV/0!" and so on.
std::string_view ErrorText(ErrorCode code);

enum class CellType : std::uint8_t { kEmpty, kNumber, kText, kFormula };

/// One cell in 16 bytes: a value and a format. An empty cell with a format is a formatted blank.
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

/// A formula in a cell. Formulas that say the same of different cells share their source.
struct Formula {
  /// Says what `source` says, with its relative references moved.
  Formula(std::shared_ptr<const formula::FormulaSource> said, formula::Moves moved);
  /// With a source of its own; `text` with the leading "=", `expression` may be nullptr.
  Formula(std::string text, std::shared_ptr<const formula::Expression> expression, FormulaResult shown = {});

  std::string Text() const;  ///< as given, with the leading "="
  /// The parsed text, before it is moved (formula::ExpressionOf gives the formula's own).
  const std::shared_ptr<const formula::Expression>& SharedExpression() const;

  std::shared_ptr<const formula::FormulaSource> source;
  formula::Moves moves = {};
  FormulaResult result = {};
};

/// Whether two sheet names are the same without regard to case, by Unicode's simple case mappings.
bool SameSheetName(std::string_view a, std::string_view b);

/// One worksheet. Rows and columns are 1-based.
class Sheet {
 public:
  /// `placeholder`: a blank sheet of a new workbook, which gives way to the first sheet that is added.
  explicit Sheet(std::string name, bool placeholder = false)
      : name_(std::move(name)), placeholder_(placeholder) {}

  const std::string& Name() const { return name_; }
  bool IsUnusedPlaceholder() const { return placeholder_ && rows_.empty(); }

  /// The cell for writing; the sheet grows as needed. Row and column must lie within kMaxRows x kMaxColumns.
  /// The reference is good until the sheet grows again.
  Cell& At(int row, int column) {
    const auto row_index = static_cast<std::size_t>(row - 1);
    const auto column_index = static_cast<std::size_t>(column - 1);
    if (row_index >= rows_.size() || column_index >= rows_[row_index].size()) {
      GrowRow(row_index, column_index + 1);
    }
    return rows_[row_index][column_index];
  }
  /// nullptr where nothing was written or formatted.
  const Cell* Find(int row, int column) const;

  int LastRow() const { return static_cast<int>(rows_.size()); }  ///< 0 for an empty sheet
  int LastColumn() const { return last_column_; }
  /// The cells of a row from column 1 on; shorter than LastColumn() where the row ends earlier.
  const std::vector<Cell>& Row(int row) const { return rows_[static_cast<std::size_t>(row - 1)]; }

  const std::vector<CellRange>& Merges() const { return merges_; }
  /// No merge touches a row below this one.
  int LastMergedRow() const { return static_cast<int>(merges_by_row_.size()); }
  /// Keeps overlapping merges as well: whoever adds asks FirstOverlap before.
  void AddMerge(const CellRange& range);
  /// The first merge that shares a cell with the range, among those numbered below `before`.
  std::optional<std::size_t> FirstOverlap(const CellRange& range, std::size_t before = SIZE_MAX) const;

  /// Width in characters of the default font; 0 where none was set, and for a hidden column.
  double ColumnWidth(int column) const { return column_widths_.Size(column); }
  /// Height in points; 0 where none was set, and for a hidden row.
  double RowHeight(int row) const { return row_heights_.Size(row); }
  /// Setting a width or height of 0 hides the column or row, as in the application.
  bool ColumnHidden(int column) const { return column_widths_.Hidden(column); }
  bool RowHidden(int row) const { return row_heights_.Hidden(row); }
  /// The last column or row that a size was set for; it may lie beyond the last cell.
  int LastSizedColumn() const { return column_widths_.Last(); }
  int LastSizedRow() const { return row_heights_.Last(); }

  void SetColumnWidth(int column, double characters) { column_widths_.Set(column, characters); }
  void SetRowHeight(int row, double points) { row_heights_.Set(row, points); }

 private:
  /// Sizes by column or row number; a negative entry was never set.
  class Sizes {
   public:
    int Last() const { return static_cast<int>(sizes_.size()); }
    double Size(int number) const { return IsSet(number) ? sizes_[Index(number)] : 0.0; }
    bool Hidden(int number) const { return IsSet(number) && sizes_[Index(number)] == 0.0; }
    void Set(int number, double size) {
      if (number > Last()) sizes_.resize(static_cast<std::size_t>(number), -1.0);
      sizes_[Index(number)] = size;
    }

   private:
    static std::size_t Index(int number) { return static_cast<std::size_t>(number - 1); }
    bool IsSet(int number) const { return number >= 1 && number <= Last() && sizes_[Index(number)] >= 0.0; }

    std::vector<double> sizes_;
  };

  void GrowRow(std::size_t row_index, std::size_t columns);
  std::size_t RoomFor(std::size_t columns, std::size_t row_index) const;

  std::string name_;
  bool placeholder_;
  std::vector<std::vector<Cell>> rows_;
  std::vector<CellRange> merges_;
  std::vector<std::vector<std::uint32_t>> merges_by_row_;  ///< indices of merges_ that touch a row
  Sizes column_widths_;
  Sizes row_heights_;
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
  Sheet* FindSheet(std::string_view name) const {
    // Everything is printed sheet by sheet, so the sheet asked for last is most often the one asked for next.
    const bool again = last_found_ < sheets_.size() && sheets_[last_found_]->Name() == name;
    return again ? sheets_[last_found_].get() : SearchSheet(name);
  }

  std::uint32_t InternText(std::string_view text);
  const std::string& Text(std::uint32_t index) const;
  std::size_t TextCount() const;

  FormatId InternFormat(const CellFormat& format);
  const CellFormat& Format(FormatId id) const;
  std::size_t FormatCount() const;
  /// The format that the change makes of a format. Remembered, so that the same change on the next cell is
  /// one look-up.
  FormatId ChangedFormat(FormatId from, const FormatChange& change);
  /// Font names and number formats, numbered for FormatChange.
  std::uint32_t InternName(std::string_view name);
  const std::string& Name(std::uint32_t index) const;

  /// Changes that are made together, numbered for FormatChange.
  std::uint32_t AddChanges(std::vector<FormatChange> changes);
  const std::vector<FormatChange>& Changes(std::uint32_t index) const;

  /// A formula for a cell, `text` with or without the leading "="; it is not added yet. Throws ParseError.
  Formula MakeFormula(std::string_view text, int row, int column);
  std::uint32_t AddFormula(Formula formula);
  Formula& FormulaAt(std::uint32_t index);
  const Formula& FormulaAt(std::uint32_t index) const;
  std::size_t FormulaCount() const;

 private:
  Sheet* SearchSheet(std::string_view name) const;

  struct Pools;
  std::unique_ptr<Pools> pools_;
  std::vector<std::unique_ptr<Sheet>> sheets_;
  mutable std::size_t last_found_ = 0;  ///< where FindSheet looks first
};

}  // namespace excelexp
