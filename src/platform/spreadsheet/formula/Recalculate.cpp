#include "platform/spreadsheet/formula/Recalculate.h"

#include <algorithm>
#include <vector>

namespace excelexp::formula {
namespace {

/// One run over all formulas: depth first, with a stack of its own, since chains may be as long as a sheet.
class Recalculation : public ResultSource {
 public:
  Recalculation(Workbook& workbook, DateTime now)
      : workbook_(workbook),
        evaluator_(workbook, now, *this, nullptr),
        states_(workbook.FormulaCount(), State::kNew),
        places_(workbook.FormulaCount(), CellPlace{}) {}

  void Run() {
    const std::vector<std::uint32_t> formulas = FindFormulas();
    for (const std::uint32_t formula : formulas) Compute(formula);
  }

  const FormulaResult* Result(std::uint32_t formula) override {
    if (states_[formula] == State::kDone) return &workbook_.FormulaAt(formula).result;
    if (missing_.size() < kMostMissing || states_[formula] == State::kWaiting) missing_.push_back(formula);
    return nullptr;
  }

 private:
  enum class State : unsigned char { kNew, kWaiting, kDone };

  struct Entry {
    std::uint32_t formula;
    bool waiting;  ///< was tried and waits for the entries above
  };

  /// How many of the missing results are computed before a formula is tried again. A bound keeps the stack
  /// small when every formula of a long column refers to all others below it.
  static constexpr std::size_t kMostMissing = 256;

  std::vector<std::uint32_t> FindFormulas() {
    std::vector<std::uint32_t> formulas;
    for (const std::unique_ptr<Sheet>& sheet : workbook_.Sheets()) {
      for (int row = 1; row <= sheet->LastRow(); ++row) {
        int column = 0;
        for (const Cell& cell : sheet->Row(row)) {
          ++column;
          if (cell.type != CellType::kFormula) continue;
          places_[cell.formula] = {sheet.get(), row, column};
          formulas.push_back(cell.formula);
        }
      }
    }
    return formulas;
  }

  void Compute(std::uint32_t first) {
    stack_.push_back({first, false});
    while (!stack_.empty()) {
      Entry& top = stack_.back();
      if (states_[top.formula] == State::kDone) {
        stack_.pop_back();
        continue;
      }
      top.waiting = true;
      states_[top.formula] = State::kWaiting;
      Try(top.formula);
    }
  }

  void Try(std::uint32_t formula) {
    const Formula& computed = workbook_.FormulaAt(formula);
    if (computed.SharedExpression() == nullptr) return Finish(formula, {});
    missing_.clear();
    std::optional<FormulaResult> result =
        evaluator_.Run(*computed.SharedExpression(), places_[formula], computed.moves);
    if (result) return Finish(formula, std::move(*result));
    for (const std::uint32_t needed : missing_) {
      if (states_[needed] == State::kWaiting) return BreakCycle(needed);
    }
    // The one asked for first is computed first: later ones often build on it.
    for (auto needed = missing_.rbegin(); needed != missing_.rend(); ++needed)
      stack_.push_back({*needed, false});
  }

  /// The formulas that wait from this one on up wait for each other.
  void BreakCycle(std::uint32_t formula) {
    FormulaResult zero;
    zero.type = FormulaResult::Type::kNumber;
    for (auto entry = stack_.rbegin(); entry != stack_.rend(); ++entry) {
      if (!entry->waiting) continue;
      Finish(entry->formula, zero);
      if (entry->formula == formula) return;
    }
  }

  void Finish(std::uint32_t formula, FormulaResult result) {
    workbook_.FormulaAt(formula).result = std::move(result);
    states_[formula] = State::kDone;
  }

  Workbook& workbook_;
  Evaluator evaluator_;
  std::vector<State> states_;
  std::vector<CellPlace> places_;
  std::vector<Entry> stack_;
  std::vector<std::uint32_t> missing_;
};

/// Results as the workbook has them.
class StoredResults : public ResultSource {
 public:
  explicit StoredResults(const Workbook& workbook) : workbook_(workbook) {}
  const FormulaResult* Result(std::uint32_t formula) override { return &workbook_.FormulaAt(formula).result; }

 private:
  const Workbook& workbook_;
};

}  // namespace

void Recalculate(Workbook& workbook, DateTime now) {
  Recalculation(workbook, now).Run();
}

FormulaResult Evaluate(const Workbook& workbook, const Expression& expression, const CellPlace& place,
                       DateTime now, const NameTable& names) {
  StoredResults results(workbook);
  return *Evaluator(workbook, now, results, &names).Run(expression, place);
}

}  // namespace excelexp::formula
