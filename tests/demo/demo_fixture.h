#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "demo/DemoDatabase.h"
#include "platform/database/SqliteWriter.h"
#include "support/scenario.h"

namespace excelexp {

/// A demo database of the default size, made once for all tests of a suite that derives from it.
class DemoTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TemporaryFolder;
    WriteDemoDatabase(File());
  }
  static void TearDownTestSuite() {
    delete folder_;
    folder_ = nullptr;
  }

  static std::string File() { return folder_->File("demo.db"); }

  /// The rows of a statement, their values joined by "|".
  static std::vector<std::string> Rows(const std::string& file, const std::string& sql) {
    SqliteWriter reader(file);
    std::vector<std::string> lines;
    for (const auto& row : reader.Rows(sql)) {
      std::string line;
      for (const SqlValue& value : row) line += (line.empty() ? "" : "|") + Text(value);
      lines.push_back(line);
    }
    return lines;
  }
  static std::vector<std::string> Rows(const std::string& sql) { return Rows(File(), sql); }

  static std::string Text(const SqlValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* integer = std::get_if<std::int64_t>(&value)) return std::to_string(*integer);
    if (const auto* number = std::get_if<double>(&value)) return std::to_string(*number);
    return std::holds_alternative<std::monostate>(value) ? "NULL" : "bytes";
  }

 private:
  static inline TemporaryFolder* folder_ = nullptr;
};

}  // namespace excelexp
