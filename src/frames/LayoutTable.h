#pragma once

#include <span>
#include <string_view>

#include "frames/FrameTraits.h"

namespace excelexp {

/// The layouts of financial items in the two frames that print these, in the order in which the frame tests
/// them. The next layout is one more row.
std::span<const LayoutRow> FinancialFrameLayouts();
std::span<const LayoutRow> EmployeeFrameLayouts();

/// The layouts of items of that type (a value in report_type) beside financial ones.
std::span<const LayoutRow> InformationLayouts(std::string_view report_type);

}  // namespace excelexp
