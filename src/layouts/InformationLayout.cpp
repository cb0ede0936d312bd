#include "layouts/InformationLayout.h"

#include "engine/DefinitionTables.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqlText.h"
#include "platform/host/Format.h"
#include "services/FieldColumns.h"

namespace excelexp {
namespace {

constexpr InformationTraits kEmployeeTraits = {"BExcelExpEngEmployeeRpt", kPayrollDatabaseName, "Basis1Id",
                                               kEmployees};
constexpr InformationTraits kPersonalTraits = {"BExcelExpEngPersonalRpt", "", "PersonalSysId", kPersons};

std::string DatabaseOf(const BExcelExpEngCore* core, const InformationTraits& traits) {
  return traits.database.empty() ? core->DatabaseName : std::string(traits.database);
}

std::string SelectList(const std::vector<KnownColumnItem>& columns) {
  std::string list;
  for (const KnownColumnItem& column : columns) {
    if (column.type != item_type::kBlank) list += (list.empty() ? "" : ", ") + column.select;
  }
  return list;
}

}  // namespace

BExcelExpEngEmployeeRpt::BExcelExpEngEmployeeRpt(BExcelExpEngCore* core)
    : InformationLayout(core, kEmployeeTraits) {}

BExcelExpEngPersonalRpt::BExcelExpEngPersonalRpt(BExcelExpEngCore* core)
    : InformationLayout(core, kPersonalTraits) {}

InformationLayout::InformationLayout(BExcelExpEngCore* core, const InformationTraits& traits)
    : core_(core),
      traits_(traits),
      EmpRptInfoQry(DatabaseOf(core, traits)),
      ColourSchemeQry(DatabaseOf(core, traits)),
      cells_(core, &ColourSchemeQry) {}

OperationName InformationLayout::Where(std::string_view operation) const {
  return {traits_.class_name, operation};
}

bool InformationLayout::ExecuteOperation() {
  if (!OpenReport()) return false;
  if (report_->columns->empty()) {
    core_->WriteUserEntry("Warning: Column Items are not set for " + core_->ExcelWSItemRptId + ".");
    return true;
  }
  if (!OpenData()) return false;
  current_row_ = core_->StartPrintedRow;
  do {
    current_col_ = core_->StartPrintedCol;
    if (!PrintEmployeeInfo()) return false;
    ++current_row_;
    EmpRptInfoQry.Next();
  } while (!EmpRptInfoQry.Eof());
  // The row of blanks counts too, or the next entity would be printed over it.
  if (current_row_ - 1 > core_->LastPrintedRow) SetLastPrintedRow(current_row_ - 1);
  SetLastPrintedCol(current_col_);
  return true;
}

bool InformationLayout::OpenReport() {
  const std::string question =
      Joined({traits_.class_name, "\n", EmpRptInfoQry.DatabaseName(), "\n",
              core_->ExcelWkSheetTitleColourSchemeId, "\n", core_->ExcelWSItemRptId});
  const auto* const known = core_->Memory->information_reports.Find(question);
  report_ = known != nullptr ? *known : ReadReport();
  if (known == nullptr && report_ != nullptr) core_->Memory->information_reports.Keep(question, report_);
  return report_ != nullptr;
}

std::shared_ptr<InformationReport> InformationLayout::ReadReport() {
  Query EmployeeRptQry(EmpRptInfoQry.DatabaseName());
  Query ExcelEmpRptDetailQry(EmpRptInfoQry.DatabaseName());
  Query EmployeeColItemQry(EmpRptInfoQry.DatabaseName());
  const OperationName where = Where("ExecuteOperation");
  const std::string report = SqlText(core_->ExcelWSItemRptId);
  if (!core_->OpenOrLog(EmployeeRptQry, "SELECT * FROM EmployeeRpt WHERE EmpInfoRptId = " + report, where,
                        "EmployeeRptQry", Rows::kRequired) ||
      !core_->OpenOrLog(ExcelEmpRptDetailQry,
                        "SELECT * FROM ExcelEmpRpt WHERE" + std::string(39, ' ') + "ExcelEmpRptId = " +
                            SqlText(EmployeeRptQry.FieldByName("EmpInfoRptType").AsString()),
                        where, "ExcelEmpRptDetailQry", Rows::kRequired) ||
      !core_->OpenOrLog(EmployeeColItemQry,
                        "SELECT * FROM EmpColItem WHERE EmpInfoRptId = " + report + std::string(37, ' ') +
                            "AND EmpColIsRptMainInfo = 0 ORDER BY EmpColItemOrder",
                        where, "EmployeeColItemQry", Rows::kOptional)) {
    return nullptr;
  }
  static const std::string gap(11, ' ');
  const auto piece = [&ExcelEmpRptDetailQry](std::string_view name) {
    return ExcelEmpRptDetailQry.FieldByName(name).AsString();
  };
  auto known = std::make_shared<InformationReport>();
  known->columns =
      FieldColumns(core_, EmployeeColItemQry, kEmployeeReportColumns, traits_.population.by_employee);
  known->select = "SELECT DISTINCT " + SelectList(*known->columns) + " FROM " + piece("ExcelEmpRptTable1") +
                  gap + piece("ExcelEmpRptTable2") + gap + piece("ExcelEmpRptTable3") + " WHERE" +
                  std::string(12, ' ') + QualifiedId(traits_.population) + " = ";
  const std::string filter = FilterCondition(EmployeeRptQry.FieldByName("EmployeeRptHasFilter").AsInteger(),
                                             EmployeeRptQry.FieldByName("EmployeeRptFilterCond").AsString());
  known->filter = filter.empty() ? "" : " AND " + filter;
  return known;
}

bool InformationLayout::OpenData() {
  const std::string id =
      std::to_string(core_->EmpCoyBasisQry->FieldByName(traits_.entity_column).AsInteger());
  // In a financial frame the entity need not be an employee of the view: the code of a company, read as a
  // number, may be anybody's id.
  return core_->OpenOrLog(
      EmpRptInfoQry,
      Joined({report_->select, id, report_->filter, " AND ", InViewOneByOne(core_, traits_.population, id)}),
      Where("ExecuteOperation"), "EmpRptInfoQry", Rows::kOptional);
}

bool InformationLayout::PrintEmployeeInfo() {
  core_->WriteBanner(Memo::kInternal, {"      PRINT EMPLOYEE INFORMATION PROCESSING     "});
  const bool with_title = core_->EmpCoyBasisQry->Bof() && EmpRptInfoQry.Bof();
  for (KnownColumnItem& column : *report_->columns) {
    if (!PrintColumn(column, with_title)) return false;
    ++current_col_;
  }
  return true;
}

bool InformationLayout::PrintColumn(KnownColumnItem& column, bool with_title) {
  const OperationName where = Where("PrintEmployeeInfo");
  if (!cells_.OpenSchemes(column, where)) return false;
  if (with_title && !cells_.WriteTitle(current_row_ - 1, current_col_, column.title, where)) return false;
  if (column.type == item_type::kBlank) {
    cells_.WriteText(current_row_, current_col_, "");
  } else if (EmpRptInfoQry.IsEmpty()) {
    cells_.FieldType().OutputBlank(GetCellName(current_row_, current_col_), column.field_type, current_row_,
                                   current_col_, false);
  } else {
    cells_.WriteField(column.field_type, column.component, EmpRptInfoQry, current_row_, current_col_);
  }
  return cells_.Format(column, current_row_, current_col_, where);
}

}  // namespace excelexp
