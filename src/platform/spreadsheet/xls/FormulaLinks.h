#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/spreadsheet/formula/FitFormula.h"
#include "platform/spreadsheet/formula/Tokens.h"
#include "platform/spreadsheet/xls/RecordStream.h"

namespace excelexp::xls {

/// The tokens of every formula in a workbook, and the records that tokens refer to by number: sheets of this
/// workbook, defined names, functions of the analysis add-in.
class FormulaLinks : public formula::TokenContext {
 public:
  /// Encodes every formula that a cell holds. Throws SpreadsheetError, naming sheet and cell, for one that
  /// the format cannot hold.
  explicit FormulaLinks(const Workbook& workbook);

  std::vector<std::uint8_t> Tokens(std::uint32_t index) const;
  /// Whether a cell shows a result that nobody has computed.
  bool NeedsRecalculation() const { return needs_recalculation_; }

  void WriteLinks(RecordStream& stream) const;  ///< SUPBOOK, EXTERNNAME, EXTERNSHEET
  void WriteNames(RecordStream& stream) const;

  std::uint16_t Sheets(const std::string& sheet, const std::string& last_sheet) override;
  std::uint16_t Name(const std::string& name, NameKind kind) override;
  ExternalName AddInFunction(const std::string& name) override;

 private:
  struct DefinedName {
    std::string name;
    std::uint16_t flags;
    std::vector<std::uint8_t> tokens;
  };
  struct SheetSpan {
    bool of_add_in;
    std::uint16_t first;
    std::uint16_t last;
    friend bool operator==(const SheetSpan&, const SheetSpan&) = default;
  };

  void Encode(const Cell& cell, const formula::FormulaPosition& position);
  std::uint16_t SheetNumber(const std::string& name) const;
  std::uint16_t SpanNumber(const SheetSpan& span);
  std::uint16_t Define(DefinedName name);

  const Workbook& workbook_;
  /// By the expression that formulas share; nothing where FitFormula would change it.
  std::unordered_map<const formula::Expression*, std::optional<formula::TokenTemplate>> templates_;
  /// Of the formulas without a template, by the workbook's formula index.
  std::unordered_map<std::uint32_t, std::vector<std::uint8_t>> tokens_;
  std::vector<SheetSpan> spans_;  ///< entries of EXTERNSHEET
  std::vector<DefinedName> names_;
  std::unordered_map<std::string, std::uint16_t> name_numbers_;
  std::vector<std::string> add_in_functions_;
  bool needs_recalculation_ = false;
};

}  // namespace excelexp::xls
