#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "engine/BExcelExpEngCore.h"
#include "layouts/ReportLayout.h"
#include "services/FieldColumns.h"

namespace excelexp {

/// Where a frame finds the grouping, sorting and main-information definitions of the first item's report.
struct DefinitionNames {
  std::string_view report_key;  ///< the column that holds the report's id in all three tables

  std::string_view group_table;
  std::string_view group_sys_id;
  std::string_view group_order;
  std::string_view group_field_table;  ///< with group_field, what the calculated-fields service searches
  std::string_view group_field;
  std::string_view group_title;
  std::string_view group_level_title;    ///< of the subtotal's label; "" for frames whose label has none
  std::string_view group_has_sub_total;  ///< "" for frames without subtotals
  std::string_view group_has_emp_count;

  std::string_view sort_table;
  std::string_view sort_order;
  std::string_view sort_field_table;
  std::string_view sort_field;

  std::string_view column_table;
  std::string_view column_order;
  std::string_view column_is_main_info;
  FieldColumnNames columns;
};

/// Whether a row of the layout table or of the summing layouts is for projects that tell balances as of a
/// day.
enum class AsOfDate { kAny, kNo, kYes };

bool Fits(AsOfDate condition, std::string_view cycle_method);

/// One layout that a frame can print an item by.
struct LayoutRow {
  std::string_view scheme;  ///< FinancialRpt.LayoutSchemeId; for information reports the item type
  AsOfDate as_of;
  std::string_view operation;  ///< as messages name it
  std::string_view banner;
  std::string_view report;  ///< "Error in printing " + this
  std::unique_ptr<ReportLayout> (*make)(BExcelExpEngCore* core);
};

/// A layout whose columns are summed, from which column of its block on.
struct SummingLayout {
  std::string_view scheme;
  AsOfDate as_of;
  int first_column;  ///< descriptive columns before it are not summed
};

/// When a total shows.
enum class SumRule {
  kAmounts,      ///< the column's first cell has one of the two amount formats
  kTwoDecimals,  ///< it has the one with decimals
  kAlways
};

/// What the frames' subtotals and grand totals do differently.
struct TotalTraits {
  bool label_names_level;  ///< "Sub Total(title)" instead of "Sub Total"
  SumRule rule;
  bool asks_cycle_method;            ///< of an item's project, beside its layout scheme
  std::string_view layout_database;  ///< of that question; "" is the context's
  std::span<const SummingLayout> summing;
};

/// What the report frames do differently; the steps are those of BandedFrame.
struct FrameTraits {
  std::string_view class_name;  ///< as the messages name it
  std::string_view database;    ///< of the frame's own queries; "" is the context's
  int by_employee;              ///< calculated fields are keyed on the employee (1) or the person (0)
  int first_band_gap;           ///< from the last printed row to the first entity's band

  std::string_view groups_operation;
  std::string_view groups_banner[2];  ///< the second is empty for a banner of one title
  std::string_view entities_operation;
  std::string_view entities_banner[2];
  std::string_view entities_name;  ///< "Error in getting " / "Empty " + this

  DefinitionNames names;
  std::span<const LayoutRow> layouts;       ///< of financial items, by scheme
  std::span<const LayoutRow> item_layouts;  ///< of other items, by item type
  TotalTraits totals;
};

}  // namespace excelexp
