#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "platform/spreadsheet/CellName.h"
#include "platform/spreadsheet/CellStyle.h"
#include "platform/spreadsheet/SpreadsheetError.h"
#include "platform/spreadsheet/Workbook.h"

namespace excelexp {

/// A value that crosses the wrapper: nothing, a number, a whole number or a text.
using Variant = std::variant<std::monostate, int, double, std::string>;

/// An automation handle: empty, the application, a workbook or a worksheet. Copies share what they refer to.
class Handle {
 public:
  Handle() = default;
  explicit Handle(std::shared_ptr<Workbook> workbook) : workbook_(std::move(workbook)) {}
  bool IsEmpty() const { return workbook_ == nullptr; }
  Workbook* Get() const { return workbook_.get(); }

 private:
  std::shared_ptr<Workbook> workbook_;
};

/// A style that a workbook knows, for the next cells that get it.
struct PreparedStyle {
  std::uint32_t changes = 0;
  double column_width = 0.0;
  double row_height = 0.0;
};

/// The automation wrapper: the fixed list of operations through which everything is printed. Cells are
/// addressed by workbook, sheet name and either row and column (1-based) or a range text ("B7", "B7:D9").
/// Every operation throws SpreadsheetError, naming sheet and cell, for a sheet that does not exist, a range
/// text that is none, or a value that no file could hold.
///
/// The wrapper holds the workbook in memory; nothing reaches the disk before SaveWorkbook.
class BExcelAPI {
 public:
  BExcelAPI();
  virtual ~BExcelAPI();
  BExcelAPI(const BExcelAPI&) = delete;
  BExcelAPI& operator=(const BExcelAPI&) = delete;

  /// Starts the application: nothing to start here, and an empty handle. `visible` has no meaning without a
  /// window; the engine passes false.
  virtual Handle OpenExcelOLE(bool visible);
  /// A new workbook with `blank_sheets` blank sheets (the engine passes 1), "Sheet1" and so on. A blank sheet
  /// is saved only when no other sheet was created or something was written on it.
  virtual Handle CreateWorkbook(int blank_sheets);
  /// Adds a worksheet after the ones that exist. The name must meet the rules of CheckSheetName.
  virtual Handle CreateNewTable(const Handle& workbook, const std::string& name);
  /// Computes every formula, checks the workbook against the limits of the format that the extension names
  /// and publishes the file. `ask` would make the application ask before it replaces a file; without a window
  /// there is nobody to ask, and the engine passes false.
  virtual void SaveWorkbook(const Handle& workbook, const std::string& file_name, bool ask);
  /// Closes the application and lets go of every workbook; safe to call more than once.
  virtual void TerminateExcel();

  /// Writes a value and keeps the cell's format. A text stays a text whatever it looks like; an empty text
  /// leaves the cell empty. A value in a cell that a merge covers is an error, since nobody would see it.
  virtual void WriteTableCell(const Handle& workbook, const std::string& sheet, int row, int column,
                              const Variant& value);
  virtual void WriteTableCellText(const Handle& workbook, const std::string& sheet, int row, int column,
                                  const std::string& text);
  virtual void WriteTableCellNumber(const Handle& workbook, const std::string& sheet, int row, int column,
                                    double number);
  /// Puts a formula (with or without the leading "=") into every cell of the range; relative references move
  /// along as the application moves them. Throws SpreadsheetError with the position for a formula that does
  /// not parse.
  virtual void FormulaOnRange(const Handle& workbook, const std::string& sheet, const std::string& range,
                              const std::string& formula);
  /// Puts the formula of the cell to the left, which must hold one, into the cell; it moves along as above.
  virtual void FillRight(const Handle& workbook, const std::string& sheet, int row, int column);
  virtual void NumberFormatOnRange(const Handle& workbook, const std::string& sheet, const std::string& range,
                                   const std::string& format);
  /// Merges the range into one cell. `across` would merge each row on its own; `centre` centres the text.
  /// The engine passes false, true. One cell alone is centred and not merged. Overlapping an earlier merge is
  /// an error, and so is hiding a value: only the first cell may hold one.
  virtual void MergeRangeCells(const Handle& workbook, const std::string& sheet, const std::string& range,
                               bool across, bool centre);
  virtual void SetWordWrap(const Handle& workbook, const std::string& sheet, const std::string& range,
                           bool wrap);
  /// `points` 1 to 409.
  virtual void SetFontNameSize(const Handle& workbook, const std::string& sheet, const std::string& range,
                               const std::string& name, double points);
  /// `colour` holds the palette index, 1 to 56; 0 and the application's constant -4105 mean automatic.
  virtual void SetFontColour(const Handle& workbook, const std::string& sheet, const std::string& range,
                             const Variant& colour);
  /// `underline` would underline once; the engine passes false and sets underlines with SetFontUnderline, so
  /// false leaves the underline alone.
  virtual void SetFontStyle(const Handle& workbook, const std::string& sheet, const std::string& range,
                            bool bold, bool underline, bool italic);
  /// `kind` is one of the values of Underline.
  virtual void SetFontUnderline(const Handle& workbook, const std::string& sheet, const std::string& range,
                                int kind);
  virtual void SetFontEffects(const Handle& workbook, const std::string& sheet, const std::string& range,
                              bool strikethrough, bool superscript, bool subscript);
  /// `width` in characters of the default font, 0 to 255; 0 hides the range's columns.
  virtual void SetColumnWidth(const Handle& workbook, const std::string& sheet, const std::string& range,
                              const Variant& width);
  /// `height` in points, 0 to 409; 0 hides the range's rows.
  virtual void SetRowHeight(const Handle& workbook, const std::string& sheet, const std::string& range,
                            const Variant& height);

  /// The seven operations above as one, for one cell at a time, a number with its format, and the number
  /// format of one cell: what a report of many cells does most. A style must be one whose operations were
  /// accepted one by one before.
  virtual PreparedStyle PrepareStyle(const Handle& workbook, const CellStyle& style);
  virtual void ApplyStyle(const Handle& workbook, const std::string& sheet, int row, int column,
                          const PreparedStyle& style);
  virtual void WriteTableCellAmount(const Handle& workbook, const std::string& sheet, int row, int column,
                                    double amount, const std::string& number_format);
  virtual void NumberFormatOnCell(const Handle& workbook, const std::string& sheet, int row, int column,
                                  const std::string& format);

  /// Called before each step of SaveWorkbook: computing, checking and laying out the file, publishing it.
  /// What it throws abandons the save, and nothing is written.
  void SetBeforeSaveStep(std::function<void()> call);

  /// The moment that formulas see as NOW() and that a saved file carries as its creation time.
  void SetMoment(DateTime moment);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace excelexp
