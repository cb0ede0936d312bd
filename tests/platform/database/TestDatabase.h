#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "platform/database/DatabaseError.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/ResultSet.h"
#include "platform/database/SqliteDatabase.h"
#include "platform/database/SqliteWriter.h"

namespace excelexp::test {

/// A folder of its own with one database file made by a script; both go with the object.
class TestDatabase {
 public:
  explicit TestDatabase(std::string_view script) {
    std::string name = (std::filesystem::temp_directory_path() / "excelexp-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temp folder");
    folder_ = name;
    SqliteWriter(File(), SqliteWriter::Mode::kCreate).ExecuteScript(script);
  }
  ~TestDatabase() { std::filesystem::remove_all(folder_); }
  TestDatabase(const TestDatabase&) = delete;
  TestDatabase& operator=(const TestDatabase&) = delete;

  std::string Folder() const { return folder_.string(); }
  std::string File() const { return (folder_ / "test.db").string(); }
  std::shared_ptr<Database> Open(SqliteOptions options = {}) const {
    return OpenSqliteDatabase(File(), std::move(options));
  }

  std::string Bytes() const {
    std::ifstream stream(File(), std::ios::binary);
    return (std::ostringstream() << stream.rdbuf()).str();
  }
  std::set<std::string> FileNames() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_))
      names.insert(entry.path().filename());
    return names;
  }

 private:
  std::filesystem::path folder_;
};

/// Registers a database under a name for as long as the object lives.
class Registered {
 public:
  Registered(std::string name, std::shared_ptr<Database> database) : name_(std::move(name)) {
    DatabaseRegistry::Register(name_, std::move(database));
  }
  ~Registered() { DatabaseRegistry::Remove(name_); }
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;

 private:
  std::string name_;
};

/// The rows of a result: fields separated by '|', rows by '/'. NULL shows as '~'.
inline std::string Rows(const ResultSet& result) {
  std::string text;
  for (int row = 0; row < result.RowCount(); ++row) {
    if (row > 0) text += '/';
    for (int column = 0; column < result.ColumnCount(); ++column) {
      if (column > 0) text += '|';
      text += result.IsNull(row, column) ? "~" : result.AsText(row, column);
    }
  }
  return text;
}

/// The error of a statement, or "" when it runs.
inline std::string ErrorOf(Database& database, const std::string& sql) {
  try {
    database.Select(sql);
    return "";
  } catch (const DatabaseError& error) {
    return error.Message();
  }
}

}  // namespace excelexp::test
