#pragma once

#include <string>
#include <string_view>

#include "layouts/ReportLayout.h"
#include "services/CellPrinter.h"
#include "services/Population.h"

namespace excelexp {

/// What the information layouts do differently.
struct InformationTraits {
  std::string_view class_name;     ///< as the messages name it
  std::string_view database;       ///< of the layout's queries; "" is the context's
  std::string_view entity_column;  ///< where the frame's entity list holds the id
  const Population& population;
};

/// The body of an employee information report for one entity: one column for each column item that is not
/// main information, one sheet row for each data row of the person; titles above the first entity. A person
/// without data rows, or outside the user's view, gets one row of typed blanks.
class InformationLayout : public ReportLayout {
 public:
  /// `core` and `traits` outlive the layout.
  InformationLayout(BExcelExpEngCore* core, const InformationTraits& traits);

  bool ExecuteOperation() override;
  /// Prints one row of the block at the current row, from the current column on; part of ExecuteOperation.
  bool PrintEmployeeInfo();

  void SetLastPrintedCol(int column) { core_->SetLastPrintedCol(column); }
  void SetLastPrintedRow(int row) { core_->SetLastPrintedRow(row); }

 private:
  OperationName Where(std::string_view operation) const;
  bool OpenReport();
  std::shared_ptr<InformationReport> ReadReport();
  bool OpenData();
  bool PrintColumn(KnownColumnItem& column, bool with_title);

  BExcelExpEngCore* core_;
  const InformationTraits& traits_;
  std::shared_ptr<InformationReport> report_;
  Query EmpRptInfoQry;
  Query ColourSchemeQry;
  CellPrinter cells_;
  int current_col_ = 1;
  int current_row_ = 1;
};

class BExcelExpEngEmployeeRpt final : public InformationLayout {
 public:
  explicit BExcelExpEngEmployeeRpt(BExcelExpEngCore* core);
};

class BExcelExpEngPersonalRpt final : public InformationLayout {
 public:
  explicit BExcelExpEngPersonalRpt(BExcelExpEngCore* core);
};

}  // namespace excelexp
