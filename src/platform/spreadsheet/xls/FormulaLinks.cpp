#include "platform/spreadsheet/xls/FormulaLinks.h"

#include <algorithm>

#include "platform/spreadsheet/SpreadsheetError.h"
#include "platform/spreadsheet/xls/RecordTypes.h"
#include "platform/spreadsheet/xls/XlsText.h"

namespace excelexp::xls {
namespace {

// [MS-XLS] 2.4.150 Lbl: fHidden, fFunc, fProc.
constexpr std::uint16_t kHidden = 0x0001;
constexpr std::uint16_t kHiddenFunction = 0x000B;
// An add-in link's entry of EXTERNSHEET names no sheet ([MS-XLS] 2.5.342 XTI).
constexpr std::uint16_t kNoSheet = 0xFFFE;

std::vector<std::uint8_t> ErrorName() {
  return {0x1C, 0x1D};
}  // PtgErr, #NAME?

/// The position in a list, added at its end when it is new.
template <typename T>
std::size_t NumberIn(std::vector<T>& list, const T& value) {
  const auto found = std::find(list.begin(), list.end(), value);
  if (found != list.end()) return static_cast<std::size_t>(found - list.begin());
  list.push_back(value);
  return list.size() - 1;
}

std::string_view AsText(const std::vector<std::uint8_t>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

FormulaLinks::FormulaLinks(const Workbook& workbook) : workbook_(workbook) {
  for (std::size_t i = 0; i < workbook.Sheets().size(); ++i) {
    const Sheet& sheet = *workbook.Sheets()[i];
    for (int row = 1; row <= sheet.LastRow(); ++row) {
      int column = 0;
      for (const Cell& cell : sheet.Row(row)) {
        ++column;
        if (cell.type == CellType::kFormula) Encode(cell, {i + 1, sheet.Name(), row, column});
      }
    }
  }
}

void FormulaLinks::Encode(const Cell& cell, const formula::FormulaPosition& position) {
  const Formula& formula = workbook_.FormulaAt(cell.formula);
  needs_recalculation_ |= formula.result.type == FormulaResult::Type::kUnknown;
  try {
    const formula::Expression& shared = *formula.SharedExpression();
    const auto [known, is_new] = templates_.try_emplace(&shared);
    std::optional<formula::TokenTemplate>& tokens = known->second;
    if (is_new && formula::FitsAsItIs(shared, formula::kXlsLimits)) {
      tokens.emplace(shared, *this, formula::FormulaPlace::kCell);
    }
    if (tokens) return tokens->Check(formula.moves);
    const formula::FittedFormula fitted =
        formula::FitFormula(formula::ExpressionOf(formula), formula::kXlsLimits, position);
    for (const formula::HiddenName& name : fitted.names) {
      Define(
          {name.name, kHidden, formula::EncodeTokens(*name.expression, *this, formula::FormulaPlace::kName)});
    }
    tokens_[cell.formula] = formula::EncodeTokens(*fitted.expression, *this);
  } catch (const SpreadsheetError& error) {
    FailAt(position.sheet_name, position.row, position.column, error.what());
  }
}

std::vector<std::uint8_t> FormulaLinks::Tokens(std::uint32_t index) const {
  const Formula& formula = workbook_.FormulaAt(index);
  const auto& shared = templates_.at(formula.SharedExpression().get());
  return shared ? shared->Tokens(formula.moves) : tokens_.at(index);
}

std::uint16_t FormulaLinks::Sheets(const std::string& sheet, const std::string& last_sheet) {
  const std::uint16_t first = SheetNumber(sheet);
  const std::uint16_t last = last_sheet.empty() ? first : SheetNumber(last_sheet);
  return SpanNumber({false, std::min(first, last), std::max(first, last)});
}

std::uint16_t FormulaLinks::Name(const std::string& name, NameKind kind) {
  const auto known = name_numbers_.find(name);
  if (known != name_numbers_.end()) return known->second;
  return Define({name, kind == NameKind::kFunction ? kHiddenFunction : kHidden, ErrorName()});
}

formula::TokenContext::ExternalName FormulaLinks::AddInFunction(const std::string& name) {
  const std::size_t number = NumberIn(add_in_functions_, name) + 1;
  return {SpanNumber({true, kNoSheet, kNoSheet}), static_cast<std::uint16_t>(number)};
}

std::uint16_t FormulaLinks::SheetNumber(const std::string& name) const {
  const auto& sheets = workbook_.Sheets();
  const Sheet* const sheet = workbook_.FindSheet(name);
  if (sheet == nullptr)
    throw SpreadsheetError("the formula refers to a sheet \"" + name + "\" that is not there.");
  const auto found =
      std::find_if(sheets.begin(), sheets.end(), [&](const auto& one) { return one.get() == sheet; });
  return static_cast<std::uint16_t>(found - sheets.begin());
}

std::uint16_t FormulaLinks::SpanNumber(const SheetSpan& span) {
  return static_cast<std::uint16_t>(NumberIn(spans_, span));
}

std::uint16_t FormulaLinks::Define(DefinedName name) {
  constexpr std::size_t kMaxNames = 0xFFFF;
  if (names_.size() == kMaxNames)
    throw SpreadsheetError("the workbook needs more than 65,535 defined names.");
  const auto number = static_cast<std::uint16_t>(names_.size() + 1);
  name_numbers_[name.name] = number;
  names_.push_back(std::move(name));
  return number;
}

void FormulaLinks::WriteLinks(RecordStream& stream) const {
  if (spans_.empty()) return;
  // [MS-XLS] 2.4.271 SupBook: this workbook, then the add-ins.
  constexpr std::uint32_t kThisWorkbook = 0x0401, kAddIns = 0x3A01;
  Record(stream, kSupBook)->U16(static_cast<std::uint32_t>(workbook_.Sheets().size())).U16(kThisWorkbook);
  if (!add_in_functions_.empty()) Record(stream, kSupBook)->U16(1).U16(kAddIns);
  for (const std::string& function : add_in_functions_) {
    Record record(stream, kExternName);
    record->U16(0).U32(0);
    XlsText(function).PutShort(stream);
    record->U16(2).U8(0x1C).U8(0x17);  // its formula: the error #REF!
  }
  Record record(stream, kExternSheet);
  record->U16(static_cast<std::uint32_t>(spans_.size()));
  for (const SheetSpan& span : spans_) record->U16(span.of_add_in).U16(span.first).U16(span.last);
}

void FormulaLinks::WriteNames(RecordStream& stream) const {
  for (const DefinedName& name : names_) {
    const XlsText text(name.name);
    Record record(stream, kName);
    record->U16(name.flags).U8(0).U8(static_cast<std::uint32_t>(text.Units()));
    record->U16(static_cast<std::uint32_t>(name.tokens.size())).U16(0).U16(0).U32(0);
    text.PutFlagged(stream);
    record->Bytes(AsText(name.tokens));
  }
}

}  // namespace excelexp::xls
