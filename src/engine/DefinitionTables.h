#pragma once

#include <string_view>

// Values of the definition tables that more than one class compares with. Comparisons are exact.

namespace excelexp {

namespace summary_level {
inline constexpr std::string_view kBasis = "SumLevelBasis";
inline constexpr std::string_view kCompany = "SumLevelCompany";
inline constexpr std::string_view kEmployee = "SumLevelEmpee";
}  // namespace summary_level

namespace report_type {
inline constexpr std::string_view kFinancial = "FinancialRpt";
inline constexpr std::string_view kEmployee = "EmployeeRpt";
inline constexpr std::string_view kPersonal = "PersonalRpt";
}  // namespace report_type

namespace item_type {
inline constexpr std::string_view kSummaryLevel = "SummLvlItem";
inline constexpr std::string_view kAnalysis = "AnlysItem";
inline constexpr std::string_view kCalculated = "CalculatedItem";
inline constexpr std::string_view kBlank = "BlankItem";
}  // namespace item_type

/// In the place of an item id: every analysis item of the grouping.
inline constexpr std::string_view kAllItems = "<ALL>";

namespace project_sub_type {
inline constexpr std::string_view kPayRecord = "ProjSubTypePayRec";
inline constexpr std::string_view kTimesheetRecord = "ProjSubTypeTsRec";
inline constexpr std::string_view kTimesheetSummary = "ProjSubTypeTsSumm";
inline constexpr std::string_view kMovement = "ProjSubTypeMovement";
inline constexpr std::string_view kLeaveSummary = "ProjSubTypeLveSumm";
}  // namespace project_sub_type

/// The cycle method of projects that tell balances as of a day.
inline constexpr std::string_view kCycleAsOfDate = "CycMtdLveAsOfDate";

}  // namespace excelexp
