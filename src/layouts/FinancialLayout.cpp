#include "layouts/FinancialLayout.h"

#include "engine/DefinitionTables.h"
#include "platform/database/SqlText.h"
#include "platform/host/CommonLibrary.h"
#include "platform/host/Format.h"
#include "services/BExcelExpEngCalcFields.h"
#include "services/BankPayments.h"

namespace excelexp {
namespace {

const std::string kGap(17, ' ');

}  // namespace

bool IsWholeNumber(const ValueColumn& value) {
  return value.type == "integer" || value.type == "smallint";
}

bool IsAmount(const ValueColumn& value) {
  return value.type == "double" || value.type == "decimal";
}

FinancialLayout::FinancialLayout(BExcelExpEngCore* core, const FinancialTraits& traits)
    : core_(core),
      traits_(traits),
      AnlysItemRecQry(core->DatabaseName),
      ExcelRptLayoutQry(core->DatabaseName),
      FinanceColItemQry(core->DatabaseName),
      ColourSchemeQry(core->DatabaseName),
      AllFormulaQry(core->DatabaseName),
      cells_(core, &ColourSchemeQry),
      formulas_(core),
      lookup_(core, &AnlysItemRecQry, traits.lookup) {}

bool FinancialLayout::Fail(const OperationName& where, std::string_view text) {
  core_->WriteErrorEntry(where.Text() + " Error: " + std::string(text));
  return false;
}

bool FinancialLayout::ReadReport() {
  const std::string question = Joined({core_->DatabaseName, "\n", core_->ExcelWSItemRptId});
  if (const std::string* known = core_->Memory->report_projects.Find(question)) {
    project_id_ = *known;
    return true;
  }
  const OperationName where = Where("ExecuteOperation");
  if (!core_->ExecuteSQL(
          Joined({"SELECT * FROM FinancialRpt WHERE FinancialRptId = ", SqlText(core_->ExcelWSItemRptId)}))) {
    return Fail(where, "Error in getting Financial Report Information.");
  }
  if (core_->SQLQry->RowCount() == 0) return Fail(where, "Empty Financial Report Information.");
  project_id_ = core_->Memory->report_projects.Keep(question, Text(*core_->SQLQry, "FinancialAnalysProjId"));
  return true;
}

bool FinancialLayout::ReadProject() {
  const std::string question = Joined({core_->DatabaseName, "\n", project_id_});
  if (const KnownProject* known = core_->Memory->projects.Find(question)) {
    project_ = *known;
    return true;
  }
  const OperationName where = Where("ExecuteOperation");
  if (!core_->ExecuteSQL(
          Joined({"SELECT * FROM AnlysProject WHERE AnlysProjectId = ", SqlText(project_id_)}))) {
    return Fail(where, "Error in getting Analysis Project Information.");
  }
  if (core_->SQLQry->RowCount() == 0) return Fail(where, "Empty Analysis Project Information.");
  const auto text = [this](std::string_view field) { return Text(*core_->SQLQry, field); };
  project_ = core_->Memory->projects.Keep(
      question, {text("AnlysProjectSubType"), text("CycleGroupBy"), text("CycleSubGroupBy")});
  return true;
}

bool FinancialLayout::ReadCycle(const OperationName& where) {
  if (!core_->ExecuteSQL(
          Joined({"SELECT * FROM AnlysProject WHERE AnlysProjectId = ", SqlText(project_id_)}))) {
    return Fail(where, "Unable to get Analysis Project Details.");
  }
  if (core_->SQLQry->RowCount() == 0) return Fail(where, "Empty Analysis Project Details.");
  project_.cycle_group_by = Text(*core_->SQLQry, "CycleGroupBy");
  project_.cycle_sub_group_by = Text(*core_->SQLQry, "CycleSubGroupBy");
  return true;
}

std::string FinancialLayout::DataCondition() const {
  return Joined({"WHERE AnlysProjectId = ", SqlText(project_id_), kGap,
                 "AND AnlysIPAddress = ", SqlText(core_->DataKey(core_->ExcelWSItemOrdering))});
}

std::string FinancialLayout::EntityCondition() const {
  const bool company = core_->ExcelWkSheetRptSumLvl == summary_level::kCompany;
  if (company && traits_.records != EntityRecords::kAlwaysAll) return "";
  const auto text = [this](std::string_view basis) { return SqlText(Text(*core_->EmpCoyBasisQry, basis)); };
  const bool first_only =
      traits_.records == EntityRecords::kByLevel && core_->ExcelWkSheetRptSumLvl == summary_level::kEmployee;
  if (first_only) return Joined({kGap, "AND Basis1Id = ", text("Basis1Id")});
  return Joined({kGap, "AND Basis1Id = ", text("Basis1Id"), kGap, "AND Basis2Id = ", text("Basis2Id"), kGap,
                 "AND Basis3Id = ", text("Basis3Id")});
}

bool FinancialLayout::OpenRecords() {
  return core_->OpenOrLog(AnlysItemRecQry,
                          Joined({"SELECT * FROM AnlysItemRecord JOIN AnlysDispSection JOIN AnlysItemSetup",
                                  kGap, DataCondition(), EntityCondition()}),
                          Where(traits_.records_operation), "AnlysItemRecQry", Rows::kOptional);
}

std::string FinancialLayout::ChosenPeriodsSql() const {
  static const std::string gap(36, ' ');
  return Joined({"SELECT * FROM ExcelWSItemRptLayout", gap, "WHERE WkSheetItemSysId = ",
                 std::to_string(core_->ExcelWSItemSysId), gap, "ORDER BY WSRptLayoutOrder"});
}

std::string FinancialLayout::DataPeriodsSql() const {
  static const std::string gap(42, ' ');
  return Joined(
      {"SELECT DISTINCT AnlysItemRecYear AS WSRptLayoutYear,", gap,
       "AnlysItemRecPeriodMonth AS WSRptLayoutMthPeriod,", gap,
       "AnlysItemRecSubPeriod AS WSRptLayoutSubPeriod,", gap, "AnlysPayRecBasis AS WSRptLayoutPayRecIdType",
       gap, "FROM AnlysItemRecord", gap, DataCondition(), gap,
       "ORDER BY AnlysItemRecYear, AnlysItemRecPeriodMonth, AnlysItemRecSubPeriod, AnlysPayRecBasis"});
}

bool FinancialLayout::OpenPeriods(const std::string& select) {
  return core_->OpenOrLog(ExcelRptLayoutQry, select, Where("ExecuteOperation"), "ExcelRptLayoutQry",
                          Rows::kOptional);
}

bool FinancialLayout::FailNoPeriods() {
  return Fail(Where("ExecuteOperation"), "Empty ExcelRptLayoutQry RecordSet.");
}

std::string FinancialLayout::ColumnItemsSql(std::string_view condition) const {
  static const std::string gap(36, ' ');
  return Joined({"SELECT * FROM FinanceColItem", gap,
                 "WHERE FinancialRptId = ", SqlText(core_->ExcelWSItemRptId), gap,
                 "AND FinColIsRptMainInfo = 0", condition, " ORDER BY FinColItemOrder"});
}

bool FinancialLayout::WarnItemsNotSet(std::string_view kind) {
  core_->WriteUserEntry("Warning: " + std::string(kind) + " Items are not set for " +
                        core_->ExcelWSItemRptId + ".");
  return true;
}

std::shared_ptr<std::vector<KnownColumnItem>> FinancialLayout::ItemsOf(Query& rows, std::string_view prefix) {
  return core_->Memory->ItemsOf(rows, core_->ExcelWkSheetTitleColourSchemeId, [&] {
    const auto text = [&](std::string_view name) { return Text(rows, Joined({prefix, name})); };
    KnownColumnItem item;
    item.type = text("ItemType");
    item.item = text("Item");
    item.grouping = text("Grouping");
    item.component = text("Component");
    item.title = text("ItemTitle");
    item.scheme = Text(rows, "ColourSchemeId");
    item.formula = text("ExcelFormula");
    return item;
  });
}

const ValueColumn* FinancialLayout::ValueColumnOf(KnownColumnItem& item, const OperationName& where,
                                                  std::string_view map_column) {
  if (const auto known = item.values.find(map_column); known != item.values.end()) return &known->second;
  ValueColumn value;
  if (!ReadValueColumn(item.grouping, item.component, where, value, map_column)) return nullptr;
  return &item.values.emplace(map_column, std::move(value)).first->second;
}

bool FinancialLayout::ReadValueColumn(const std::string& grouping, const std::string& component,
                                      const OperationName& where, ValueColumn& value,
                                      std::string_view map_column) {
  const std::string question = grouping + '\n' + component + '\n' + std::string(map_column);
  if (const ValueColumn* known = core_->Memory->value_columns.Find(question)) {
    value = *known;
    return true;
  }
  if (!core_->ExecuteSQL("SELECT * FROM AnItemLookup WHERE AnlysItemTypeId = " + SqlText(grouping) + kGap +
                         "AND AnlysLookupId = " + SqlText(component))) {
    return Fail(where, "Unable to get Analysis Item Details.");
  }
  if (core_->SQLQry->RowCount() == 0) return Fail(where, "Empty Analysis Item Details.");
  value.column = Text(*core_->SQLQry, map_column);
  value.type = FGetSystemColumnType("AnlysItemRecord", value.column);
  core_->Memory->value_columns.Keep(question, value);
  return true;
}

bool FinancialLayout::OpenAllItems(const std::string& grouping, const OperationName& where) {
  try {
    AllFormulaQry.SetSql(AllItemsSql(grouping));
    AllFormulaQry.Open();
    return true;
  } catch (...) {
    return Fail(where, "Error in AllFormulaQry Query");
  }
}

void FinancialLayout::WarnNoItems(const std::string& grouping, std::string_view prefix) {
  core_->WriteUserEntry(std::string(prefix) + ": Empty Formula Code for " + grouping + ".");
}

void FinancialLayout::PrintEntityField(const std::string& grouping, const std::string& component, int row,
                                       int column) {
  core_->CalcFields->Search(grouping, component, 1, nullptr);
  cells_.WriteField(core_->CalcFields->GetFieldType(), component, *core_->CurEmpCoyBasisQry, row, column);
}

void FinancialLayout::PrintValue(bool found, const ValueColumn& value, int row, int column) {
  if (found) {
    cells_.WriteAnalysisValue(AnlysItemRecQry, value.column, value.type, row, column, value_style_);
  } else {
    cells_.FieldType().OutputBlank(GetCellName(row, column), value.type, row, column, true);
    // Totals show where the first entity's cell has such a format, be it blank.
    if (IsWholeNumber(value)) cells_.WriteIntegerFormat(row, column, value_style_);
  }
}

void FinancialLayout::PrintBankValue(bool found, const ValueColumn& value, int row, int column) {
  if (found && value.column == "AnlysItem5Id") {
    cells_.WriteText(row, column, ShownPaymentCategory(Text(AnlysItemRecQry, value.column)));
  } else {
    PrintValue(found, value, row, column);
  }
}

PeriodKey FinancialLayout::PeriodOf(const Query& periods) {
  PeriodKey key;
  key.year = periods.FieldByName("WSRptLayoutYear").AsInteger();
  key.period_month = periods.FieldByName("WSRptLayoutMthPeriod").AsInteger();
  key.sub_period = periods.FieldByName("WSRptLayoutSubPeriod").AsInteger();
  key.pay_record_basis = Text(periods, "WSRptLayoutPayRecIdType");
  return key;
}

}  // namespace excelexp
