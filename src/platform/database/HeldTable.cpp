#include "platform/database/HeldTable.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <numeric>
#include <ranges>
#include <stdexcept>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/Names.h"

namespace excelexp {
namespace {

/// 0 for what begins with no number.
double LeadingNumber(const ValueView& value) {
  if (value.kind != ValueView::Kind::kText) return value.AsFloat();
  std::string_view text = value.bytes;
  const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
  text.remove_prefix(begin == std::string_view::npos ? text.size() : begin);
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number == number ? number : 0;
}

}  // namespace

Affinity AffinityOf(const std::string& declared_type) {
  struct Rule {
    std::string_view part;
    Affinity affinity;
  };
  constexpr std::array<Rule, 8> kRules = {{{"int", Affinity::kNumeric},
                                           {"char", Affinity::kText},
                                           {"clob", Affinity::kText},
                                           {"text", Affinity::kText},
                                           {"blob", Affinity::kNone},
                                           {"real", Affinity::kReal},
                                           {"floa", Affinity::kReal},
                                           {"doub", Affinity::kReal}}};
  const std::string folded = FoldName(declared_type);
  for (const Rule& rule : kRules) {
    if (folded.find(rule.part) != std::string::npos) return rule.affinity;
  }
  return folded.empty() ? Affinity::kNone : Affinity::kNumeric;
}

HeldRows::Range HeldRows::Find(std::span<const ValueView> leading) const {
  Range range{0, row_count_};
  for (std::size_t i = 0; i < leading.size(); ++i) {
    const HeldColumn& column = Column(order_[i]);
    const auto code = column.Find(leading[i]);
    if (!code) return {0, 0};
    const auto rows = std::ranges::iota_view(range.begin, range.end);
    const auto found =
        std::ranges::equal_range(rows, *code, {}, [&column](std::size_t row) { return column.CodeAt(row); });
    range = {range.begin + static_cast<std::size_t>(found.begin() - rows.begin()),
             range.begin + static_cast<std::size_t>(found.end() - rows.begin())};
  }
  return range;
}

std::vector<HeldRows::Range> HeldRows::FindNumber(double number) const {
  const HeldColumn& column = Column(order_.front());
  if (numbers_.empty()) {
    for (HeldColumn::Code code = 0; code < column.CodeCount(); ++code)
      numbers_.emplace_back(LeadingNumber(column.ValueOf(code)), code);
    std::ranges::sort(numbers_);
  }
  std::vector<Range> ranges;
  for (const auto& [read, code] :
       std::ranges::equal_range(numbers_, number, {}, &decltype(numbers_)::value_type::first)) {
    const std::array<ValueView, 1> value = {column.ValueOf(code)};
    ranges.push_back(Find(value));
  }
  return ranges;
}

std::size_t HeldRows::Bytes() const {
  return std::accumulate(columns_.begin(), columns_.end(), std::size_t{0},
                         [](std::size_t sum, const HeldColumn& column) { return sum + column.Bytes(); });
}

int HeldTable::FindColumn(std::string_view name) const {
  const auto found =
      std::ranges::find_if(columns_, [&](const Column& column) { return SameName(column.name, name); });
  return found == columns_.end() ? -1 : static_cast<int>(found - columns_.begin());
}

HeldTable::Key HeldTable::KeyOf(const std::vector<std::pair<std::string, std::string>>& values) const {
  Key key;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i >= key_.size() || FindColumn(values[i].first) != key_[i]) break;
    key.push_back(values[i].second);
  }
  if (key.size() != values.size() || key.size() != key_.size())
    throw std::invalid_argument("rows of " + name_ + " are held by another key");
  return key;
}

std::shared_ptr<const HeldRows> HeldTable::Find(const Key& key) const {
  const auto found = batches_.find(key);
  return found == batches_.end() ? nullptr : found->second;
}

void HeldTable::Replace(const Key& key, std::shared_ptr<const HeldRows> rows) {
  batches_.insert_or_assign(key, std::move(rows));
}

std::size_t HeldTable::RowCount() const {
  return std::accumulate(
      batches_.begin(), batches_.end(), std::size_t{0},
      [](std::size_t sum, const Batches::value_type& batch) { return sum + batch.second->RowCount(); });
}

HeldRowsBuilder::HeldRowsBuilder(const HeldTable& table, const HeldTable::Key& key,
                                 std::span<const int> given)
    : table_(table), rows_(std::make_shared<HeldRows>()) {
  rows_->order_ = table.OrderColumns();
  for (int i = 0; i < static_cast<int>(table.Columns().size()); ++i) {
    const bool sorts = std::ranges::find(rows_->order_, i) != rows_->order_.end();
    HeldColumn& column =
        rows_->columns_.emplace_back(sorts ? HeldColumn::Numbers::kByCode : HeldColumn::Numbers::kAsTheyCome);
    const auto key_place = std::ranges::find(table.KeyColumns(), i);
    if (key_place != table.KeyColumns().end()) {
      column.CodeOf(ValueView::Text(key[static_cast<std::size_t>(key_place - table.KeyColumns().begin())]));
    } else if (std::ranges::find(given, i) == given.end()) {
      const HeldTable::Column& stored = table.Columns()[static_cast<std::size_t>(i)];
      if (stored.not_null && stored.default_value.kind == ValueView::Kind::kNull) without_value_ = &stored;
      column.CodeOf(stored.default_value);
    }
  }
  for (const int place : given) {
    const auto column = static_cast<std::size_t>(place);
    given_.push_back({&rows_->columns_[column], &table.Columns()[column]});
  }
}

void HeldRowsBuilder::Restrict(std::size_t given, std::vector<std::string> texts) {
  restricted_ = static_cast<int>(given);
  wanted_texts_ = std::move(texts);
  std::ranges::sort(wanted_texts_);
}

bool HeldRowsBuilder::IsWanted(const ValueView& value) {
  const HeldColumn::Code code = seen_.CodeOf(value);
  if (code == is_wanted_.size()) {
    is_wanted_.push_back(value.kind == ValueView::Kind::kText &&
                         std::ranges::binary_search(wanted_texts_, value.bytes));
  }
  return is_wanted_[code];
}

void HeldRowsBuilder::FailNull(const HeldTable::Column& column) const {
  throw DatabaseError(
      "column " + table_.Name() + "." + column.name + " takes no NULL, and a row to be held has one", "");
}

std::size_t HeldRowsBuilder::Bytes() const {
  return rows_->Bytes();
}

std::shared_ptr<const HeldRows> HeldRowsBuilder::Finish() {
  Sort();
  for (HeldColumn& column : rows_->columns_) column.Shrink();
  return std::move(rows_);
}

/// One stable pass for each order column, the last first, over the numbers of its values.
void HeldRowsBuilder::Sort() {
  std::vector<std::uint32_t> sorted(rows_->row_count_);
  std::iota(sorted.begin(), sorted.end(), 0);
  std::vector<std::uint32_t> next(sorted.size());
  for (auto place = rows_->order_.rbegin(); place != rows_->order_.rend(); ++place) {
    HeldColumn& column = rows_->columns_[static_cast<std::size_t>(*place)];
    column.SortCodes();
    if (column.CodeCount() < 2) continue;
    std::vector<std::uint32_t> begins(column.CodeCount() + 1);
    for (std::size_t row = 0; row < sorted.size(); ++row) ++begins[column.CodeAt(row) + 1];
    std::partial_sum(begins.begin(), begins.end(), begins.begin());
    for (const std::uint32_t row : sorted) next[begins[column.CodeAt(row)]++] = row;
    sorted.swap(next);
  }
  if (std::ranges::is_sorted(sorted)) return;
  for (HeldColumn& column : rows_->columns_) column.Reorder(sorted);
}

}  // namespace excelexp
