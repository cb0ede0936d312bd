#include "platform/spreadsheet/xls/CellRecords.h"

#include <optional>
#include <string_view>

#include "platform/spreadsheet/xls/RecordTypes.h"
#include "platform/spreadsheet/xls/RkNumber.h"
#include "platform/spreadsheet/xls/XlsText.h"

namespace excelexp::xls {
namespace {

/// [MS-XLS] 2.5.10 Bes, in the order of ErrorCode.
constexpr std::uint8_t kErrorBytes[] = {0x00, 0x07, 0x0F, 0x17, 0x1D, 0x24, 0x2A};

/// What an 8-byte result is when its last two bytes are 0xFFFF ([MS-XLS] 2.5.133 FormulaValue).
enum class ResultTag : std::uint8_t { kText = 0, kBoolean = 1, kError = 2, kEmptyText = 3 };

void PutTagged(RecordStream& stream, ResultTag tag, std::uint8_t value) {
  stream.U8(static_cast<std::uint32_t>(tag)).U8(0).U8(value).U8(0).U16(0).U16(0xFFFF);
}

void PutResult(RecordStream& stream, const FormulaResult& result) {
  switch (result.type) {
    case FormulaResult::Type::kText:
      return PutTagged(stream, result.text.empty() ? ResultTag::kEmptyText : ResultTag::kText, 0);
    case FormulaResult::Type::kBoolean:
      return PutTagged(stream, ResultTag::kBoolean, result.number != 0);
    case FormulaResult::Type::kError:
      return PutTagged(stream, ResultTag::kError, kErrorBytes[static_cast<std::size_t>(result.error)]);
    case FormulaResult::Type::kNumber:
      stream.F64(result.number);
      return;
    case FormulaResult::Type::kUnknown:
      stream.F64(0.0);
      return;
  }
}

}  // namespace

std::uint32_t CellRecords::Write(std::uint32_t column, std::uint32_t end) {
  switch (cells_[column].type) {
    case CellType::kNumber:
      return WriteNumbers(column, end);
    case CellType::kEmpty:
      return cells_[column].format == 0 ? column + 1 : WriteBlanks(column, end);
    case CellType::kText:
      WriteText(column);
      return column + 1;
    case CellType::kFormula:
      WriteFormula(column);
      return column + 1;
  }
  return column + 1;
}

std::uint32_t CellRecords::WriteNumbers(std::uint32_t column, std::uint32_t end) {
  std::uint32_t run[256];
  std::uint32_t count = 0;
  while (column + count < end && count < 256 && cells_[column + count].type == CellType::kNumber) {
    const std::optional<std::uint32_t> rk = EncodeRk(cells_[column + count].number);
    if (!rk) break;
    run[count++] = *rk;
  }
  if (count == 0) {
    Record record(stream_, kNumber);
    PutCell(column);
    record->F64(cells_[column].number);
    return column + 1;
  }
  if (count == 1) {
    Record record(stream_, kRk);
    PutCell(column);
    record->U32(run[0]);
    return column + 1;
  }
  Record record(stream_, kMulRk);
  record->U16(row_).U16(column);
  for (std::uint32_t i = 0; i < count; ++i) record->U16(XfOf(column + i)).U32(run[i]);
  record->U16(column + count - 1);
  return column + count;
}

std::uint32_t CellRecords::WriteBlanks(std::uint32_t column, std::uint32_t end) {
  std::uint32_t behind = column;
  while (behind < end && cells_[behind].type == CellType::kEmpty && cells_[behind].format != 0) ++behind;
  if (behind - column == 1) {
    Record record(stream_, kBlank);
    PutCell(column);
    return behind;
  }
  Record record(stream_, kMulBlank);
  record->U16(row_).U16(column);
  for (std::uint32_t i = column; i < behind; ++i) record->U16(XfOf(i));
  record->U16(behind - 1);
  return behind;
}

void CellRecords::WriteText(std::uint32_t column) {
  Record record(stream_, kLabelSst);
  PutCell(column);
  record->U32(parts_.strings.IndexOf(cells_[column].text));
}

void CellRecords::WriteFormula(std::uint32_t column) {
  // [MS-XLS] 2.4.127 Formula, fAlwaysCalc; "OpenOffice.org's Documentation" 5.50 names the second bit
  // "calculate on open".
  constexpr std::uint32_t kRecalculate = 0x0003;
  const std::uint32_t index = cells_[column].formula;
  const FormulaResult& result = parts_.workbook.FormulaAt(index).result;
  const std::vector<std::uint8_t> tokens = parts_.links.Tokens(index);
  {
    Record record(stream_, kFormula);
    PutCell(column);
    PutResult(stream_, result);
    record->U16(result.type == FormulaResult::Type::kUnknown ? kRecalculate : 0).U32(0);
    record->U16(static_cast<std::uint32_t>(tokens.size()));
    record->Bytes({reinterpret_cast<const char*>(tokens.data()), tokens.size()});
  }
  if (result.type == FormulaResult::Type::kText && !result.text.empty()) {
    Record record(stream_, kString);
    XlsText(result.text).PutLong(stream_);
  }
}

}  // namespace excelexp::xls
