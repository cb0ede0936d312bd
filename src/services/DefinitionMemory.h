#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/DatabaseRegistry.h"
#include "platform/database/Query.h"
#include "platform/spreadsheet/BExcelAPI.h"

namespace excelexp {

/// Answers by their questions, forgotten when the databases may have changed.
template <typename Answer>
class Remembered {
 public:
  /// nullptr for a question that was not answered yet. Valid until the next Find.
  const Answer* Find(std::string_view question) {
    if (const std::uint64_t now = DatabaseRegistry::Generation(); now != generation_) {
      answers_.clear();
      generation_ = now;
    }
    const auto found = answers_.find(question);
    return found == answers_.end() ? nullptr : &found->second;
  }
  const Answer& Keep(std::string_view question, Answer answer) {
    return answers_.insert_or_assign(std::string(question), std::move(answer)).first->second;
  }

 private:
  std::uint64_t generation_ = 0;
  std::map<std::string, Answer, std::less<>> answers_;
};

/// Colour schemes that were opened together, and the styles of those that a cell was formatted by.
struct SchemeSet {
  std::string sql;  ///< opens them
  std::vector<std::pair<std::string, PreparedStyle>> styles;

  const PreparedStyle* Find(std::string_view scheme_id) const {
    for (const auto& [id, style] : styles)
      if (id == scheme_id) return &style;
    return nullptr;
  }
};

/// Where an analysis item's value stands in its records.
struct ValueColumn {
  std::string column;
  std::string type;
};

/// What the layouts ask of an analysis project.
struct KnownProject {
  std::string sub_type;
  std::string cycle_group_by;
  std::string cycle_sub_group_by;
};

struct AccumulatedRanges;  // of the layout that sums over them

/// A column item of a report, or a row item, which has the same parts, and what its cells ask for again and
/// again, once the first cell has asked.
struct KnownColumnItem {
  std::string type;
  std::string item;
  std::string grouping;
  std::string component;
  std::string title;
  std::string scheme;
  std::string formula;
  std::string select;      ///< of an entity's field: its item of a select list
  std::string field_type;  ///< of an entity's field
  std::shared_ptr<SchemeSet> schemes;
  std::optional<PreparedStyle> style;                      ///< of its scheme, once a cell was formatted by it
  std::map<std::string, ValueColumn, std::less<>> values;  ///< by the column of AnItemLookup that names them
  std::shared_ptr<AccumulatedRanges> ranges;
};

/// An information report as its layout prints it for one person after the other.
struct InformationReport {
  std::string select;  ///< of a person's data, up to the id
  std::string filter;  ///< what follows the id, "" for a report without filter
  std::shared_ptr<std::vector<KnownColumnItem>> columns;
};

/// What prints up to an item of a report and at it: how many columns or rows it is from the first.
struct ItemPlace {
  int single = 0;                     ///< items that print one
  std::vector<std::string> expanded;  ///< groupings of "<ALL>" items, which print one for each of theirs
};

/// The places of a report's items that formulas referred to.
struct ItemPlaces {
  std::string sql;  ///< lists the items
  std::map<int, ItemPlace> by_order;
};

/// What a run has learnt from the definition tables, so that it asks them once instead of for every cell.
struct DefinitionMemory {
  Remembered<std::shared_ptr<SchemeSet>> scheme_sets;  ///< by database and ids, one a line
  Remembered<ValueColumn> value_columns;               ///< by grouping, component and column, one a line
  Remembered<std::string> report_projects;             ///< by database and report
  Remembered<KnownProject> projects;                   ///< by database and id
  Remembered<std::shared_ptr<std::vector<KnownColumnItem>>> column_items;  ///< see ItemsOf
  Remembered<std::shared_ptr<ItemPlaces>> item_places;                     ///< by database and statement
  Remembered<std::shared_ptr<InformationReport>>
      information_reports;  ///< by layout, database, title scheme, id

  /// The items of the query's rows, in their order; `read` makes one of the row that the query stands on.
  /// Read once for a statement and a context: what else is remembered with an item, such as schemes that were
  /// opened together with the worksheet's title scheme.
  template <typename Read>
  std::shared_ptr<std::vector<KnownColumnItem>> ItemsOf(Query& rows, const std::string& context,
                                                        const Read& read) {
    const std::string question = rows.DatabaseName() + "\n" + context + "\n" + rows.Sql();
    if (const auto* known = column_items.Find(question)) return *known;
    auto items = std::make_shared<std::vector<KnownColumnItem>>();
    for (rows.First(); !rows.Eof(); rows.Next()) items->push_back(read());
    return column_items.Keep(question, std::move(items));
  }
};

}  // namespace excelexp
