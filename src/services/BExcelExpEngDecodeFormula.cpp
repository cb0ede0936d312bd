#include "services/BExcelExpEngDecodeFormula.h"

#include <optional>
#include <utility>

#include "engine/DefinitionTables.h"
#include "platform/database/SqlText.h"
#include "platform/host/CommonLibrary.h"
#include "platform/host/Format.h"
#include "services/AllItems.h"

namespace excelexp {
namespace {

constexpr std::string_view kWhere = "BExcelExpEngDecodeFormula::DecodeExcelFormula Error: ";
constexpr std::string_view kGap = "                 ";
constexpr std::size_t kItemTagLength = 5;
constexpr std::size_t kTotalTagLength = 3;

/// The number of the reference that begins at `start`, and where the text after it goes on; nothing when no
/// complete reference begins there.
struct Reference {
  int number;
  std::size_t end;
};

std::optional<Reference> ReferenceAt(std::string_view formula, std::size_t start, std::size_t tag_length) {
  const std::size_t digits = start + 1 + tag_length;
  std::size_t end = digits;
  while (end < formula.size() && formula[end] >= '0' && formula[end] <= '9') ++end;
  if (end == digits || end >= formula.size() || formula[end] != '>') return std::nullopt;
  const std::string_view tag = formula.substr(start + 1, tag_length);
  if (tag.find_first_of("<>") != std::string_view::npos) return std::nullopt;
  return Reference{CStrToInt(formula.substr(digits, end - digits)), end + 1};
}

/// Copies the formula with every reference replaced by what `name(number, cell_name)` puts into `cell_name`;
/// "" when it fails for one.
template <typename Name>
std::string ReplaceReferences(const std::string& formula, std::size_t tag_length, std::string& cell_name,
                              const Name& name) {
  std::string result;
  result.reserve(formula.size());
  std::size_t position = 0;
  for (std::size_t start = formula.find('<'); start != std::string::npos; start = formula.find('<', start)) {
    const auto reference = ReferenceAt(formula, start, tag_length);
    if (!reference) {
      ++start;
      continue;
    }
    if (!name(reference->number, cell_name)) return {};
    result.append(formula, position, start - position).append(cell_name);
    position = start = reference->end;
  }
  return result.append(formula, position);
}

}  // namespace

/// Columns and rows of a report, as far as the decoding of their references differs.
struct BExcelExpEngDecodeFormula::Items {
  std::string_view sql;        ///< up to the report's id
  std::string_view condition;  ///< after it
  std::string_view title;      ///< "Column", "Row": in messages
  std::string_view order;
  std::string_view type;
  std::string_view item;
  std::string_view grouping;
  bool down;  ///< the items follow each other down the sheet, not to the right
};

std::string BExcelExpEngDecodeFormula::DecodeColExcelFormula(const std::string& formula, Query& expansion,
                                                             std::string& cell_name, int row) {
  static constexpr Items kColumns = {"SELECT * FROM FinanceColItem WHERE FinancialRptId = ",
                                     "AND FinColIsRptMainInfo = 0 ORDER BY FinColItemOrder",
                                     "Column",
                                     "FinColItemOrder",
                                     "FinColItemType",
                                     "FinColItem",
                                     "FinColGrouping",
                                     false};
  core_->WriteBanner(Memo::kInternal, {"          DECODE COLUMN EXCEL FORMULA PROCESS   "});
  return DecodeItems(kColumns, formula, expansion, cell_name, row);
}

std::string BExcelExpEngDecodeFormula::DecodeRowExcelFormula(const std::string& formula, Query& expansion,
                                                             std::string& cell_name, int column) {
  static constexpr Items kRows = {"SELECT * FROM FinanceRowItem WHERE FinancialRptId = ",
                                  "ORDER BY FinRowItemOrder",
                                  "Row",
                                  "FinRowItemOrder",
                                  "FinRowItemType",
                                  "FinRowItem",
                                  "FinRowGrouping",
                                  true};
  core_->WriteBanner(Memo::kInternal, {"          DECODE ROW EXCEL FORMULA PROCESS      "});
  return DecodeItems(kRows, formula, expansion, cell_name, column);
}

std::string BExcelExpEngDecodeFormula::DecodeRptTotalExcelFormula(const std::string& formula,
                                                                  std::string& cell_name, int column) {
  NoteRptTotal();
  return ReplaceReferences(formula, kTotalTagLength, cell_name, [column](int row, std::string& name) {
    name = GetCellName(row, column);
    return true;
  });
}

void BExcelExpEngDecodeFormula::NoteRptTotal() {
  core_->WriteBanner(Memo::kInternal, {"          DECODE EXCEL FORMULA PROCESS          "});
}

std::string BExcelExpEngDecodeFormula::DecodeItems(const Items& items, const std::string& formula,
                                                   Query& expansion, std::string& cell_name, int fixed) {
  const std::shared_ptr<ItemPlaces> places = PlacesOf(items);
  Expansions expanded;
  return ReplaceReferences(formula, kItemTagLength, cell_name, [&](int order, std::string& name) {
    const ItemPlace* const place = FindPlace(items, order, *places);
    int count = 0;
    if (place == nullptr || !CountTo(*place, expansion, expanded, count)) return false;
    name = items.down ? GetCellName(core_->StartPrintedRow + count - 1, fixed)
                      : GetCellName(fixed, core_->StartPrintedCol + count - 1);
    return true;
  });
}

std::shared_ptr<ItemPlaces> BExcelExpEngDecodeFormula::PlacesOf(const Items& items) {
  std::string sql = Joined({items.sql, SqlText(core_->ExcelWSItemRptId), kGap, items.condition});
  const std::string question = Joined({core_->DatabaseName, "\n", sql});
  if (const auto* known = core_->Memory->item_places.Find(question)) return *known;
  return core_->Memory->item_places.Keep(question,
                                         std::make_shared<ItemPlaces>(ItemPlaces{std::move(sql), {}}));
}

/// Read when first asked for; nullptr after a failure.
const ItemPlace* BExcelExpEngDecodeFormula::FindPlace(const Items& items, int order, ItemPlaces& places) {
  if (const auto known = places.by_order.find(order); known != places.by_order.end()) return &known->second;
  const bool opened = core_->ExecuteSQL(places.sql);
  Query& rows = *core_->SQLQry;
  if (!opened || rows.RowCount() == 0) {
    core_->WriteErrorEntry(std::string(kWhere) + (opened ? "Empty" : "Unable to get") + " Finance " +
                           std::string(items.title) + " Items");
    return nullptr;
  }
  ItemPlace place;
  for (rows.First(); !rows.Eof(); rows.Next()) {
    const auto text = [&rows](std::string_view name) { return rows.FieldByName(name).AsString(); };
    if (text(items.type) != item_type::kAnalysis || text(items.item) != kAllItems) {
      ++place.single;
    } else {
      place.expanded.push_back(text(items.grouping));
    }
    if (rows.FieldByName(items.order).AsInteger() == order) break;
  }
  return &places.by_order.emplace(order, std::move(place)).first->second;
}

bool BExcelExpEngDecodeFormula::CountTo(const ItemPlace& place, Query& expansion, Expansions& expanded,
                                        int& count) {
  count = place.single;
  for (const std::string& grouping : place.expanded) {
    const auto [items, is_new] = expanded.try_emplace(grouping, 0);
    if (is_new && !CountAllItems(grouping, expansion, items->second)) return false;
    count += items->second;
  }
  return true;
}

bool BExcelExpEngDecodeFormula::CountAllItems(const std::string& grouping, Query& expansion, int& count) {
  try {
    expansion.SetSql(AllItemsSql(grouping));
    expansion.Open();
  } catch (...) {
    core_->WriteErrorEntry(std::string(kWhere) + "Error in AllFormulaQry Query");
    return false;
  }
  if (expansion.RowCount() == 0) {
    core_->WriteErrorEntry(std::string(kWhere) + "Empty AllFormulaQry Recordset");
    return false;
  }
  count = expansion.RowCount();
  return true;
}

}  // namespace excelexp
