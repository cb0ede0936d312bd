#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "engine/OperationName.h"
#include "platform/database/Query.h"
#include "platform/host/BPayEngMemo.h"
#include "platform/host/BQueryViewTable.h"
#include "platform/host/HostServices.h"
#include "platform/spreadsheet/BExcelAPI.h"

namespace excelexp {

class BExcelExpEngCalcFields;
struct DefinitionMemory;

/// Which logs a banner goes to.
enum class Memo { kAll, kInternal };

/// Whether an empty result is a failure.
enum class Rows { kRequired, kOptional };

/// The context of a run: what is being exported, the shared queries, the automation handles, the cell
/// position counters and the logs. Every class of the engine works through one of these and never owns it.
/// The fields are public; each field that a class writes has a setter of its name.
///
/// Rows and columns are 1-based. `LastPrintedRow` and `LastPrintedCol` carry the position from one writer to
/// the next; `StartPrintedRow` and `StartPrintedCol` mark the top left cell of the block being printed.
///
/// Failures are results, not exceptions: an operation that fails writes its entry and returns 0 (false), and
/// so does its caller, so that the internal log holds the chain from the innermost operation outwards.
class BExcelExpEngCore : public BPayEngMemo {
 public:
  BExcelExpEngCore();
  ~BExcelExpEngCore();
  BExcelExpEngCore(const BExcelExpEngCore&) = delete;
  BExcelExpEngCore& operator=(const BExcelExpEngCore&) = delete;

  std::unique_ptr<BExcelExpEngCalcFields> CalcFields;
  std::unique_ptr<DefinitionMemory> Memory;
  std::string DatabaseName;
  std::unique_ptr<Query> SQLQry;  ///< result of the last ExecuteSQL; services called in between replace it
  std::unique_ptr<Query> EmpCoyBasisQry;            ///< the entity list, standing on the current entity
  std::unique_ptr<Query> CurEmpCoyBasisQry;         ///< the current entity's record
  std::string NumberFormat;                         ///< of amount cells
  const BQueryViewTable* QueryViewTable = nullptr;  ///< the host's
  HostServices* Host = nullptr;                     ///< the host's

  std::string ExcelSpreadsheetId;
  int ExcelWorksheetSysId = 0;
  std::string ExcelWorksheetName;  ///< also the sheet argument of every cell operation
  std::string ExcelWkSheetRptSumLvl;
  std::string ExcelWkSheetTitleColourSchemeId;
  std::string ExcelWkSheetRptBasis1;  ///< the three are refreshed for worksheets at "SumLevelBasis" only
  std::string ExcelWkSheetRptBasis2;
  std::string ExcelWkSheetRptBasis3;
  int ExcelWSItemSysId = 0;
  std::string ExcelWSItemRptId;
  int ExcelWSItemOrdering = 0;

  bool FirstWkSheetItem = false;  ///< true once an item of the worksheet had data; its facts follow
  std::string FirstWkSheetItemSQL;
  std::string FirstWkSheetItemIdSQL;  ///< its select of the entities' first ids; all of it below basis level
  std::string FirstWSItemAnalysProj;
  std::string FirstWSItemEmpRptType;
  int FirstWSItemEmpHasFilter = 0;
  std::string FirstWSItemEmpFilter;
  int FirstWSItemHasGrandTot = 0;
  int FirstWSItemHasTotEmpCt = 0;
  bool MultipleWkSheetItems = false;  ///< the worksheet prints two or more items side by side
  bool FirstEntity = false;

  BExcelAPI* ExcelAPI = nullptr;  ///< the engine's
  Handle ExcelWorkbook;
  Handle ExcelWorksheet;

  int LastPrintedCol = 1;
  int LastPrintedRow = 1;
  int StartPrintedCol = 1;
  int StartPrintedRow = 1;

  /// Also replaces the three queries by new ones on that database.
  void SetDatabaseName(const std::string& name);
  void SetQueryViewTable(const BQueryViewTable* view_table) { QueryViewTable = view_table; }
  void SetHost(HostServices* host) { Host = host; }
  void SetExcelSpreadsheetId(const std::string& id) { ExcelSpreadsheetId = id; }
  void SetExcelWorksheetSysId(int id) { ExcelWorksheetSysId = id; }
  void SetExcelWorksheetName(const std::string& name) { ExcelWorksheetName = name; }
  void SetExcelWkSheetRptSumLvl(const std::string& level) { ExcelWkSheetRptSumLvl = level; }
  void SetExcelWkSheetTitleColourSchemeId(const std::string& id) { ExcelWkSheetTitleColourSchemeId = id; }
  void SetExcelWkSheetRptBasis1(const std::string& basis) { ExcelWkSheetRptBasis1 = basis; }
  void SetExcelWkSheetRptBasis2(const std::string& basis) { ExcelWkSheetRptBasis2 = basis; }
  void SetExcelWkSheetRptBasis3(const std::string& basis) { ExcelWkSheetRptBasis3 = basis; }
  void SetExcelWSItemSysId(int id) { ExcelWSItemSysId = id; }
  void SetExcelWSItemRptId(const std::string& id) { ExcelWSItemRptId = id; }
  void SetExcelWSItemOrdering(int ordering) { ExcelWSItemOrdering = ordering; }
  void SetFirstWkSheetItem(bool first) { FirstWkSheetItem = first; }
  void SetFirstWkSheetItemSQL(const std::string& sql) { FirstWkSheetItemSQL = sql; }
  void SetFirstWkSheetItemIdSQL(const std::string& sql) { FirstWkSheetItemIdSQL = sql; }
  void SetFirstWSItemAnalysProj(const std::string& project) { FirstWSItemAnalysProj = project; }
  void SetFirstWSItemEmpRptType(const std::string& type) { FirstWSItemEmpRptType = type; }
  void SetFirstWSItemEmpHasFilter(int has_filter) { FirstWSItemEmpHasFilter = has_filter; }
  void SetFirstWSItemEmpFilter(const std::string& filter) { FirstWSItemEmpFilter = filter; }
  void SetFirstWSItemHasGrandTot(int has) { FirstWSItemHasGrandTot = has; }
  void SetFirstWSItemHasTotEmpCt(int has) { FirstWSItemHasTotEmpCt = has; }
  void SetExcelAPI(BExcelAPI* api) { ExcelAPI = api; }
  void SetExcelWorkbook(const Handle& workbook) { ExcelWorkbook = workbook; }
  void SetExcelWorksheet(const Handle& worksheet) { ExcelWorksheet = worksheet; }
  void SetLastPrintedCol(int column) { LastPrintedCol = column; }
  void SetLastPrintedRow(int row) { LastPrintedRow = row; }
  void SetStartPrintedCol(int column) { StartPrintedCol = column; }
  void SetStartPrintedRow(int row) { StartPrintedRow = row; }

  /// Each runs one statement on its query (SQLQry, EmpCoyBasisQry, CurEmpCoyBasisQry): true when the query is
  /// open on the new result, false (and closed) when anything failed. They write nothing; the caller logs its
  /// own message.
  bool ExecuteSQL(const std::string& sql);
  bool ExecuteEmpCoyBasisSQL(const std::string& sql);
  bool ExecuteCurEmpCoyBasisSQL(const std::string& sql);

  /// Whether the statement finds rows: 1 or 0, -1 when it fails. Leaves SQLQry closed, for a result that is
  /// open when the records of the next item are generated is read to its end first.
  int FindsRows(const std::string& sql);

  /// Opens the query on the statement. When that fails: the error entry `where` + " Error: Error in " +
  /// `name` + " Query." and false; when rows are required and there are none, `where` + " Error: Empty " +
  /// `name` + " Recordset." and false.
  bool OpenOrLog(Query& query, const std::string& sql, const OperationName& where, std::string_view name,
                 Rows rows);

  /// The lines that announce a processing stage: seven, or eight with two titles. Titles are 48 characters
  /// wide.
  void WriteBanner(Memo memo, std::initializer_list<std::string_view> titles);
  /// The same for both logs, without the empty line before it.
  void WriteFrame(std::string_view title) { WriteFramed(Memo::kAll, {title}); }
  /// The text between two empty lines, to the internal log.
  void WriteErrorEntry(std::string_view text);
  /// The text between two empty lines, to both logs.
  void WriteUserEntry(std::string_view text);

  /// The key of the analysis records of one worksheet item: workstation address, "_", ordering.
  std::string DataKey(int item_ordering) const;

  /// Tells the host how far the run is; throws ExcelExpEngineFail when the host cancels.
  void ReportProgress(int entity, int entities);
  /// True once the host has cancelled the run.
  bool Cancelled() const { return cancelled_; }

 protected:
  int worksheet_number_ = 0;  ///< of the worksheet being processed, for the host's progress
  int worksheet_count_ = 0;

 private:
  void WriteFramed(Memo memo, std::initializer_list<std::string_view> titles);

  bool cancelled_ = false;
};

}  // namespace excelexp
