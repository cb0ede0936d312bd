#pragma once

#include <map>
#include <memory>
#include <string>

#include "engine/BExcelExpEngCore.h"
#include "platform/database/Query.h"
#include "services/DefinitionMemory.h"

namespace excelexp {

/// Turns stored formulas into spreadsheet formulas: an item reference becomes the name of the cell where that
/// item is printed.
///
/// A reference to a column or row is "<", five characters of the report designer's, the item's order number,
/// ">"; in the templates of totals it is "<Col", a row number, ">". Only a complete reference is one: "<",
/// ">", "<=", ">=" and "<>" beside references stay operators. All other text is copied.
class BExcelExpEngDecodeFormula {
 public:
  explicit BExcelExpEngDecodeFormula(BExcelExpEngCore* core) : core_(core) {}

  /// The formula for a row of the block that begins in the context's `StartPrintedCol`. An "<ALL>" column
  /// takes one column for each of its items: a reference to it names the last of them. `expansion` is a query
  /// of the caller's that lists those items; `cell_name` receives each name. "" after a failure, whose entry
  /// is in the internal log.
  std::string DecodeColExcelFormula(const std::string& formula, Query& expansion, std::string& cell_name,
                                    int row);

  /// The same down the rows of the block that begins in the context's `StartPrintedRow`.
  std::string DecodeRowExcelFormula(const std::string& formula, Query& expansion, std::string& cell_name,
                                    int column);

  /// Row ranges ("<Col12>:<Col20>, <Col27>:<Col31>") as ranges of one column. Asks no database.
  std::string DecodeRptTotalExcelFormula(const std::string& formula, std::string& cell_name, int column);
  /// Its entry in the internal log alone, for a total that repeats the one to its left.
  void NoteRptTotal();

 private:
  struct Items;
  /// How many items an "<ALL>" item of a grouping stands for, counted for each formula: that depends on the
  /// data, which is another on each worksheet.
  using Expansions = std::map<std::string, int>;
  std::shared_ptr<ItemPlaces> PlacesOf(const Items& items);
  const ItemPlace* FindPlace(const Items& items, int order, ItemPlaces& places);
  bool CountTo(const ItemPlace& place, Query& expansion, Expansions& expanded, int& count);
  bool CountAllItems(const std::string& grouping, Query& expansion, int& count);
  std::string DecodeItems(const Items& items, const std::string& formula, Query& expansion,
                          std::string& cell_name, int fixed);

  BExcelExpEngCore* core_;
};

}  // namespace excelexp
