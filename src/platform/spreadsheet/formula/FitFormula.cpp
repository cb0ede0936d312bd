#include "platform/spreadsheet/formula/FitFormula.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/spreadsheet/SpreadsheetError.h"
#include "platform/spreadsheet/formula/FunctionTable.h"
#include "platform/spreadsheet/formula/Lexis.h"
#include "platform/spreadsheet/formula/Tokens.h"

namespace excelexp::formula {
namespace {

using NodePointer = std::unique_ptr<Node>;
using Nodes = std::vector<NodePointer>;

/// How the arguments of a function may be grouped without changing its value.
struct Splitting {
  std::string_view function;
  bool by_union;             ///< groups are unions of cells; else calls of the function itself
  std::string_view combine;  ///< what puts the groups together
};

// A minimum of cells without numbers is 0, so a minimum of minima would be wrong; the same holds for the
// others that are grouped by unions.
constexpr Splitting kSplittings[] = {
    {"SUM", false, "SUM"},        {"COUNT", false, "SUM"}, {"COUNTA", false, "SUM"},
    {"AVERAGE", true, "AVERAGE"}, {"MIN", true, "MIN"},    {"MAX", true, "MAX"},
    {"PRODUCT", true, "PRODUCT"},
};

const Splitting* FindSplitting(const Node& node) {
  if (node.type != NodeType::kCall) return nullptr;
  const auto* found = std::find_if(std::begin(kSplittings), std::end(kSplittings),
                                   [&](const Splitting& row) { return row.function == node.text; });
  return found == std::end(kSplittings) ? nullptr : found;
}

bool CanJoinUnion(const Node& node) {
  return node.type == NodeType::kReference || node.type == NodeType::kName ||
         (node.type == NodeType::kParentheses && node.children[0]->op == Operator::kUnion);
}

void MakeAbsolute(Node& node, const std::string& sheet) {
  if (node.type == NodeType::kReference) {
    Reference& reference = node.reference;
    if (reference.sheet.empty()) reference.sheet = sheet;
    for (bool* flags : {reference.row_absolute, reference.column_absolute}) flags[0] = flags[1] = true;
  }
  for (const NodePointer& child : node.children) MakeAbsolute(*child, sheet);
}

/// A balanced tree, so that its height stays small.
NodePointer UnionOf(Nodes& members, std::size_t first, std::size_t last) {
  if (last - first == 1) return std::move(members[first]);
  const std::size_t middle = first + (last - first) / 2;
  Nodes pair;
  pair.push_back(UnionOf(members, first, middle));
  pair.push_back(UnionOf(members, middle, last));
  NodePointer both = MakeNode(NodeType::kBinary, std::move(pair));
  both->op = Operator::kUnion;
  return both;
}

NodePointer MakeGroup(const Splitting& splitting, Nodes members) {
  if (members.size() == 1 && splitting.by_union) return std::move(members.front());
  if (!splitting.by_union) return MakeCall(splitting.function, std::move(members));
  Nodes inside;
  inside.push_back(UnionOf(members, 0, members.size()));
  return MakeNode(NodeType::kParentheses, std::move(inside));
}

std::size_t StoredCharacters(const Node& node) {
  return Utf16Length(Print(node, NameStyle::kStored)) + 1;
}

class Fitter {
 public:
  Fitter(const FormulaLimits& limits, const FormulaPosition& position)
      : limits_(limits), position_(position) {}

  FittedFormula Run(std::shared_ptr<const Expression> expression) {
    if (Fits(expression->Root())) return {std::move(expression), {}};
    NodePointer root = Clone(expression->Root());
    for (;;) {
      NodePointer candidate = Clone(*root);
      Nest(*candidate);
      if (limits_.measure(*candidate) <= limits_.max_size) {
        return {std::make_shared<Expression>(std::move(candidate)), std::move(names_)};
      }
      Node* longest = LongestCall(*root);
      if (longest == nullptr || !MoveIntoNames(*longest)) FailTooLong();
    }
  }

  bool Fits(const Node& root) const {
    return ArgumentsFit(root) && limits_.measure(root) <= limits_.max_size;
  }

 private:
  [[noreturn]] static void FailTooLong() {
    throw SpreadsheetError("the formula is too long for the file format and cannot be divided");
  }

  bool TooManyArguments(const Node& node) const {
    if (node.type != NodeType::kCall) return false;
    const FunctionInfo* function = node.function;
    const bool named = function == nullptr || function->index == kCalledByName;
    const std::size_t name_takes = named && limits_.max_arguments == kMaxXlsArguments ? 1 : 0;
    return node.children.size() + name_takes > static_cast<std::size_t>(limits_.max_arguments);
  }

  bool ArgumentsFit(const Node& node) const {
    return !TooManyArguments(node) &&
           std::all_of(node.children.begin(), node.children.end(),
                       [&](const NodePointer& child) { return ArgumentsFit(*child); });
  }

  /// Gives every call below a permitted number of arguments.
  void Nest(Node& node) const {
    for (const NodePointer& child : node.children) Nest(*child);
    if (!TooManyArguments(node)) return;
    const Splitting* splitting = FindSplitting(node);
    if (splitting == nullptr) {
      throw SpreadsheetError("the file format takes at most " + std::to_string(limits_.max_arguments) +
                             " arguments for " + node.text);
    }
    // One level of groups at a time; a second level groups the groups.
    node.children = splitting->by_union ? GroupUnions(std::move(node.children), *splitting)
                                        : GroupCalls(std::move(node.children), *splitting);
    const std::string combine(splitting->combine);
    Node regrouped = std::move(node);
    node = std::move(*MakeCall(combine, std::move(regrouped.children)));
    Nest(node);
  }

  Nodes GroupCalls(Nodes members, const Splitting& splitting) const {
    Nodes groups;
    Nodes group;
    for (NodePointer& member : members) {
      group.push_back(std::move(member));
      if (group.size() < static_cast<std::size_t>(limits_.max_arguments)) continue;
      groups.push_back(MakeGroup(splitting, std::exchange(group, {})));
    }
    if (!group.empty()) groups.push_back(MakeGroup(splitting, std::move(group)));
    return groups;
  }

  /// One union of all the cells; what is no cell stays an argument of its own.
  Nodes GroupUnions(Nodes members, const Splitting& splitting) const {
    const auto others = std::stable_partition(
        members.begin(), members.end(), [](const NodePointer& member) { return CanJoinUnion(*member); });
    Nodes groups(std::make_move_iterator(others), std::make_move_iterator(members.end()));
    members.erase(others, members.end());
    if (members.size() < 2) {
      throw SpreadsheetError("the file format takes at most " + std::to_string(limits_.max_arguments) +
                             " arguments for " + std::string(splitting.function));
    }
    groups.push_back(MakeGroup(splitting, std::move(members)));
    return groups;
  }

  Node* LongestCall(Node& node) const {
    Node* longest = FindSplitting(node) != nullptr && node.children.size() > 1 ? &node : nullptr;
    for (const NodePointer& child : node.children) {
      Node* below = LongestCall(*child);
      if (below != nullptr && (longest == nullptr || below->children.size() > longest->children.size()))
        longest = below;
    }
    return longest;
  }

  /// Replaces the arguments of a call by fewer hidden names; false when that gains nothing.
  bool MoveIntoNames(Node& call) {
    const Splitting& splitting = *FindSplitting(call);
    const std::size_t before = call.children.size();
    Nodes kept;
    Nodes bundle;
    Nodes references;
    std::size_t size = 0;
    const auto close = [&] {
      if (!bundle.empty()) references.push_back(DefineName(splitting, std::exchange(bundle, {})));
      size = 0;
    };
    for (NodePointer& argument : call.children) {
      if (splitting.by_union && !CanJoinUnion(*argument)) {
        kept.push_back(std::move(argument));
        continue;
      }
      MakeAbsolute(*argument, position_.sheet_name);
      const std::size_t weight = limits_.measure(*argument) + kSeparator;
      if (size + weight + FrameSize(splitting, bundle.size() + 1) > limits_.max_size) close();
      size += weight;
      bundle.push_back(std::move(argument));
    }
    close();
    std::move(references.begin(), references.end(), std::back_inserter(kept));
    const bool gained = kept.size() < before;
    call = std::move(*MakeCall(splitting.combine, std::move(kept)));
    return gained;
  }

  /// What the calls around `members` arguments weigh at most, nested as Nest nests them.
  std::size_t FrameSize(const Splitting& splitting, std::size_t members) const {
    const std::size_t call = limits_.measure(*MakeCall(splitting.function, {})) + kSeparator;
    return call * (members / static_cast<std::size_t>(limits_.max_arguments) + 3);
  }

  NodePointer DefineName(const Splitting& splitting, Nodes members) {
    NodePointer piece = MakeGroup(splitting, std::move(members));
    Nest(*piece);
    if (limits_.measure(*piece) > limits_.max_size) FailTooLong();
    names_.push_back({NextName(), std::make_shared<Expression>(std::move(piece))});
    return MakeName(names_.back().name);
  }

  std::string NextName() const {
    return "_TOTAL_S" + std::to_string(position_.sheet_number) + "R" + std::to_string(position_.row) + "C" +
           std::to_string(position_.column) + "_" + std::to_string(names_.size() + 1);
  }

  static constexpr std::size_t kSeparator = 1;  ///< a comma, or the byte of a union operator

  const FormulaLimits& limits_;
  const FormulaPosition& position_;
  std::vector<HiddenName> names_;
};

}  // namespace

const FormulaLimits kXlsLimits = {kMaxXlsArguments, kMaxTokenSize, TokenSize};
const FormulaLimits kXlsxLimits = {kMaxXlsxArguments, 8192, StoredCharacters};

bool FitsAsItIs(const Expression& expression, const FormulaLimits& limits) {
  const FormulaPosition nowhere = {};
  return Fitter(limits, nowhere).Fits(expression.Root());
}

FittedFormula FitFormula(std::shared_ptr<const Expression> expression, const FormulaLimits& limits,
                         const FormulaPosition& position) {
  return Fitter(limits, position).Run(std::move(expression));
}

}  // namespace excelexp::formula
