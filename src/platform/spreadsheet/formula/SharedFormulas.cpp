#include "platform/spreadsheet/formula/SharedFormulas.h"

#include <optional>
#include <utility>

namespace excelexp::formula {
namespace {

// A report has some dozens of formulas that differ by more than their places; totals of many ranges are all
// different and not worth remembering.
constexpr std::size_t kMostKnown = 4096;

}  // namespace

Formula SharedFormulas::Make(std::string_view text, int row, int column) {
  const Moves from_last = last_.To(row, column);
  if (last_.source != nullptr && last_.source->text.Equals(text, from_last)) return {last_.source, from_last};

  FormulaText own(text.starts_with('=') ? std::string(text) : "=" + std::string(text));
  std::optional<std::string> relative = own.RelativeTo(row, column);
  const auto known = relative ? known_.find(*relative) : known_.end();
  if (known == known_.end()) {
    last_ = {std::make_shared<FormulaSource>(FormulaSource{Parse(text), std::move(own)}), row, column};
    if (relative && known_.size() < kMostKnown) known_.emplace(*std::move(relative), last_);
    return {last_.source, {}};
  }
  const Moves moves = known->second.To(row, column);
  const FormulaSource& source = *known->second.source;
  if (!own.IsMovable() || !source.text.IsMovable()) {
    return {std::make_shared<FormulaSource>(FormulaSource{source.expression, std::move(own)}), moves};
  }
  last_ = known->second;
  return {last_.source, moves};
}

}  // namespace excelexp::formula
