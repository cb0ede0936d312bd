#include "platform/database/Query.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "platform/database/DatabaseRegistry.h"

namespace excelexp {

bool Field::IsNull() const {
  return query_->OpenResult().IsNull(query_->row_, column_);
}

std::string Field::AsString() const {
  return query_->OpenResult().AsText(query_->row_, column_);
}

int Field::AsInteger() const {
  const std::int64_t value = query_->OpenResult().AsInteger(query_->row_, column_);
  if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
    throw DatabaseError("column " + query_->OpenResult().ColumnName(column_) + " holds " +
                            std::to_string(value) + ", which is beyond 32 bits",
                        query_->sql_);
  }
  return static_cast<int>(value);
}

double Field::AsFloat() const {
  return query_->OpenResult().AsFloat(query_->row_, column_);
}

DateTime Field::AsDateTime() const {
  try {
    return query_->OpenResult().AsDateTime(query_->row_, column_);
  } catch (const DatabaseError& error) {
    throw DatabaseError(error.Message(), query_->sql_);
  }
}

void Field::SaveToStream(std::string& stream) const {
  stream = query_->OpenResult().AsBytes(query_->row_, column_);
}

Query::Query(std::string database_name) : database_name_(std::move(database_name)) {}

void Query::SetDatabaseName(std::string name) {
  Close();
  database_name_ = std::move(name);
}

void Query::SetSql(std::string sql) {
  Close();
  sql_ = std::move(sql);
}

void Query::Open() {
  Close();
  const std::shared_ptr<Database> database = DatabaseRegistry::Find(database_name_);
  if (database == nullptr)
    throw DatabaseError("no database is registered under the name '" + database_name_ + "'", sql_);
  result_ = database->Select(sql_);
  First();
}

std::optional<bool> Query::HasRows(const std::string& sql) const {
  const std::shared_ptr<Database> database = DatabaseRegistry::Find(database_name_);
  return database == nullptr ? std::nullopt : database->HasRows(sql);
}

void Query::Close() {
  result_.reset();
  row_ = 0;
  bof_ = eof_ = true;
}

const ResultSet& Query::OpenResult() const {
  if (result_ == nullptr) throw DatabaseError("a field is read from a query that is closed", sql_);
  return *result_;
}

int Query::RowCount() const {
  return result_ == nullptr ? 0 : result_->RowCount();
}

void Query::First() {
  row_ = 0;
  bof_ = true;
  eof_ = IsEmpty();
}

void Query::Last() {
  row_ = RowCount() == 0 ? 0 : RowCount() - 1;
  bof_ = RowCount() == 0;
  eof_ = true;
}

void Query::Next() {
  if (IsEmpty()) return;
  bof_ = false;
  eof_ = row_ + 1 == RowCount();
  if (!eof_) ++row_;
}

void Query::Prior() {
  if (IsEmpty()) return;
  eof_ = false;
  bof_ = row_ == 0;
  if (!bof_) --row_;
}

Field Query::FieldByName(std::string_view name) const {
  if (IsEmpty()) {
    const char* state =
        result_ == nullptr ? "' is read from a query that is closed" : "' is read from an empty result";
    throw DatabaseError("field '" + std::string(name) + state, sql_);
  }
  const int column = result_->ColumnIndex(name);
  if (column < 0) throw DatabaseError("there is no field '" + std::string(name) + "'", sql_);
  return Field(*this, column);
}

bool Query::Locate(std::string_view fields, std::span<const KeyValue> values) {
  std::vector<std::string_view> names;
  for (std::size_t begin = 0; begin <= fields.size();) {
    const std::size_t end = std::min(fields.find(';', begin), fields.size());
    names.push_back(fields.substr(begin, end - begin));
    begin = end + 1;
  }
  const std::vector<int> columns = ColumnsOf(names);
  if (columns.size() != values.size()) {
    throw DatabaseError(
        "fields '" + std::string(fields) + "' are located with " + std::to_string(values.size()) + " values",
        sql_);
  }
  std::vector<KeyView> views;
  for (const KeyValue& value : values)
    std::visit([&views](const auto& each) { views.emplace_back(each); }, value);
  return Locate(OpenResult().SearchBy(columns), views);
}

std::vector<int> Query::ColumnsOf(std::span<const std::string_view> fields) const {
  std::vector<int> columns;
  columns.reserve(fields.size());
  for (const std::string_view name : fields) {
    if (result_ == nullptr)
      throw DatabaseError("field '" + std::string(name) + "' is located in a query that is closed", sql_);
    columns.push_back(result_->ColumnIndex(name));
    if (columns.back() < 0) throw DatabaseError("there is no field '" + std::string(name) + "'", sql_);
  }
  return columns;
}

ResultSet::Search Query::SearchBy(std::span<const std::string_view> fields) const {
  const std::vector<int> columns = ColumnsOf(fields);
  return OpenResult().SearchBy(columns);
}

bool Query::Locate(const ResultSet::Search& search, std::span<const KeyView> values) {
  const int row = search.Find(values);
  if (row < 0) return false;
  row_ = row;
  bof_ = eof_ = false;
  return true;
}

}  // namespace excelexp
