#include "engine/BExcelExpEngCore.h"

#include "engine/ExcelExpEngineFail.h"
#include "platform/host/CommonLibrary.h"
#include "services/BExcelExpEngCalcFields.h"
#include "services/DefinitionMemory.h"

namespace excelexp {
namespace {

constexpr std::size_t kBannerWidth = 48;

bool Run(Query* query, const std::string& sql) {
  if (query == nullptr) return false;
  try {
    query->SetSql(sql);
    query->Open();
    return true;
  } catch (...) {
    query->Close();
    return false;
  }
}

}  // namespace

BExcelExpEngCore::BExcelExpEngCore()
    : CalcFields(std::make_unique<BExcelExpEngCalcFields>()),
      Memory(std::make_unique<DefinitionMemory>()),
      NumberFormat(GetDBCountry("") == "Indonesia" ? "#,0;-#,0" : "#,0.00;-#,0.00") {}

BExcelExpEngCore::~BExcelExpEngCore() = default;

void BExcelExpEngCore::SetDatabaseName(const std::string& name) {
  DatabaseName = name;
  SQLQry = std::make_unique<Query>(name);
  EmpCoyBasisQry = std::make_unique<Query>(name);
  CurEmpCoyBasisQry = std::make_unique<Query>(name);
}

bool BExcelExpEngCore::ExecuteSQL(const std::string& sql) {
  return Run(SQLQry.get(), sql);
}

bool BExcelExpEngCore::ExecuteEmpCoyBasisSQL(const std::string& sql) {
  return Run(EmpCoyBasisQry.get(), sql);
}

bool BExcelExpEngCore::ExecuteCurEmpCoyBasisSQL(const std::string& sql) {
  return Run(CurEmpCoyBasisQry.get(), sql);
}

int BExcelExpEngCore::FindsRows(const std::string& sql) {
  if (const std::optional<bool> found = SQLQry->HasRows(sql)) return *found ? 1 : 0;
  if (!ExecuteSQL(sql)) return -1;
  const int found = SQLQry->IsEmpty() ? 0 : 1;
  SQLQry->Close();
  return found;
}

bool BExcelExpEngCore::OpenOrLog(Query& query, const std::string& sql, const OperationName& where,
                                 std::string_view name, Rows rows) {
  if (!Run(&query, sql)) {
    WriteErrorEntry(where.Text() + " Error: Error in " + std::string(name) + " Query.");
    return false;
  }
  if (rows == Rows::kRequired && query.IsEmpty()) {
    WriteErrorEntry(where.Text() + " Error: Empty " + std::string(name) + " Recordset.");
    return false;
  }
  return true;
}

void BExcelExpEngCore::WriteBanner(Memo memo, std::initializer_list<std::string_view> titles) {
  memo == Memo::kAll ? WriteAllMemo("") : WriteInternalMemo("");
  WriteFramed(memo, titles);
}

void BExcelExpEngCore::WriteFramed(Memo memo, std::initializer_list<std::string_view> titles) {
  static const std::string stars(kBannerWidth, '*');
  static const std::string blanks(kBannerWidth, ' ');
  const auto write = [this, memo](std::string_view line) {
    memo == Memo::kAll ? WriteAllMemo(line) : WriteInternalMemo(line);
  };
  write(stars);
  write(blanks);
  for (const std::string_view title : titles) write(title);
  write(blanks);
  write(stars);
  write("");
}

void BExcelExpEngCore::WriteErrorEntry(std::string_view text) {
  WriteInternalMemo("");
  WriteInternalMemo(text);
  WriteInternalMemo("");
}

void BExcelExpEngCore::WriteUserEntry(std::string_view text) {
  WriteAllMemo("");
  WriteAllMemo(text);
  WriteAllMemo("");
}

std::string BExcelExpEngCore::DataKey(int item_ordering) const {
  return (QueryViewTable == nullptr ? "" : QueryViewTable->sGetIPAddress()) + "_" +
         std::to_string(item_ordering);
}

void BExcelExpEngCore::ReportProgress(int entity, int entities) {
  if (Host == nullptr || cancelled_) return;
  Progress progress;
  progress.worksheet_name = ExcelWorksheetName;
  progress.worksheet = worksheet_number_;
  progress.worksheets = worksheet_count_;
  progress.entity = entity;
  progress.entities = entities;
  cancelled_ = !Host->OnProgress(progress);
  if (cancelled_) throw ExcelExpEngineFail{};
}

}  // namespace excelexp
