#include "dataprep/BExcelExpEngEmpRptInfo.h"

#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqlText.h"

namespace excelexp {
namespace {

constexpr std::string_view kExecute = "BExcelExpEngEmpRptInfo::ExecuteOperation";

}  // namespace

BExcelExpEngEmpRptInfo::BExcelExpEngEmpRptInfo(BExcelExpEngCore* core)
    : core_(core),
      EmployeeRptDetailQry(std::string(kPayrollDatabaseName)),
      ExcelEmpRptDetailQry(std::string(kPayrollDatabaseName)) {}

int BExcelExpEngEmpRptInfo::ExecuteOperation() {
  static const std::string gap(39, ' ');
  if (!core_->OpenOrLog(
          EmployeeRptDetailQry,
          "SELECT * FROM EmployeeRpt WHERE" + gap + "EmpInfoRptId = " + SqlText(core_->ExcelWSItemRptId),
          kExecute, "EmployeeRptDetailQry", Rows::kRequired) ||
      !core_->OpenOrLog(ExcelEmpRptDetailQry,
                        "SELECT * FROM ExcelEmpRpt WHERE" + gap + "ExcelEmpRptId = " +
                            SqlText(EmployeeRptDetailQry.FieldByName("EmpInfoRptType").AsString()),
                        kExecute, "ExcelEmpRptDetailQry", Rows::kRequired)) {
    return -1;
  }
  return CheckEmployeeRptData();
}

int BExcelExpEngEmpRptInfo::CheckEmployeeRptData() {
  core_->WriteBanner(Memo::kInternal, {"       EMPLOYEE RPT DATA CHECK PROCESSING       "});
  const bool employees = EmployeeRptDetailQry.FieldByName("EmployeeRptHasEmpOnly").AsInteger() != 0;
  const Population& population = employees ? kEmployees : kPersons;
  const int has_data = employees ? 1 : 2;
  std::string condition =
      FilterCondition(EmployeeRptDetailQry.FieldByName("EmployeeRptHasFilter").AsInteger(),
                      EmployeeRptDetailQry.FieldByName("EmployeeRptFilterCond").AsString());
  if (!condition.empty()) condition += " AND ";
  condition = " WHERE " + condition + InView(core_, population);

  const std::string data = "SELECT * FROM " + Tables(10) + condition;
  if (const int found = core_->FindsRows(data); found != 1) return found;
  if (!core_->FirstWkSheetItem) {
    BecomeFirst("(SELECT DISTINCT " + QualifiedId(population) + " FROM " + Tables(14) + condition + ")");
    return has_data;
  }
  const int found =
      core_->FindsRows(data + " AND " + QualifiedId(population) + " IN " + core_->FirstWkSheetItemIdSQL);
  return found == 1 ? has_data : found;
}

std::string BExcelExpEngEmpRptInfo::Tables(std::size_t blanks) const {
  const std::string gap(blanks, ' ');
  const auto piece = [this](std::string_view name) {
    return ExcelEmpRptDetailQry.FieldByName(name).AsString();
  };
  return piece("ExcelEmpRptTable1") + gap + piece("ExcelEmpRptTable2") + gap + piece("ExcelEmpRptTable3");
}

void BExcelExpEngEmpRptInfo::BecomeFirst(const std::string& restriction) {
  SetFirstWkSheetItem(true);
  SetFirstWSItemEmpRptType(Tables(1));
  SetFirstWSItemEmpHasFilter(EmployeeRptDetailQry.FieldByName("EmployeeRptHasFilter").AsInteger());
  SetFirstWSItemEmpFilter(EmployeeRptDetailQry.FieldByName("EmployeeRptFilterCond").AsString());
  SetFirstWSItemHasGrandTot(0);
  SetFirstWSItemHasTotEmpCt(EmployeeRptDetailQry.FieldByName("EmployeeRptHasEmpCt").AsInteger());
  SetFirstWkSheetItemSQL(restriction);
  core_->SetFirstWkSheetItemIdSQL(restriction);
}

}  // namespace excelexp
