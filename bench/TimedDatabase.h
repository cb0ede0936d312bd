#pragma once

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/database/Database.h"

namespace excelexp {

inline bool IsNameCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// A statement without its values, so that the same question about different employees counts as one.
inline std::string ShapeOf(const std::string& sql) {
  std::string shape;
  for (std::size_t i = 0; i < sql.size(); ++i) {
    if (sql[i] == '\'') {
      i = std::min(sql.find('\'', i + 1), sql.size() - 1);
      shape += "'?'";
    } else if (std::isdigit(static_cast<unsigned char>(sql[i])) != 0 &&
               (shape.empty() || !IsNameCharacter(shape.back()))) {
      while (i + 1 < sql.size() && std::isdigit(static_cast<unsigned char>(sql[i + 1])) != 0) ++i;
      shape += '0';
    } else if (std::isspace(static_cast<unsigned char>(sql[i])) == 0 || shape.empty() ||
               shape.back() != ' ') {
      shape += sql[i];
    }
  }
  return shape;
}

/// Passes on to a database and tells at the end which questions took most of its time.
class TimedDatabase final : public Database {
 public:
  TimedDatabase(std::shared_ptr<Database> real, std::string name)
      : real_(std::move(real)), name_(std::move(name)) {}
  ~TimedDatabase() override {
    std::vector<std::pair<double, std::string>> slowest;
    for (const auto& [shape, use] : uses_) {
      slowest.emplace_back(use.seconds, std::to_string(use.count) + " x " + shape.substr(0, 200));
    }
    std::sort(slowest.rbegin(), slowest.rend());
    std::fprintf(stderr, "slowest statements of %s:\n", name_.c_str());
    for (std::size_t i = 0; i < std::min<std::size_t>(12, slowest.size()); ++i) {
      std::fprintf(stderr, "  %8.1f ms  %s\n", slowest[i].first * 1000, slowest[i].second.c_str());
    }
  }

  std::shared_ptr<const ResultSet> Select(const std::string& sql) override {
    const auto start = std::chrono::steady_clock::now();
    auto result = real_->Select(sql);
    Note(sql, start);
    return result;
  }
  std::string ColumnType(std::string_view table, std::string_view column) override {
    return real_->ColumnType(table, column);
  }
  std::string Country() override { return real_->Country(); }
  std::string DateFormat() override { return real_->DateFormat(); }
  void HoldRows(const RowsToHold& rows) override {
    const auto start = std::chrono::steady_clock::now();
    real_->HoldRows(rows);
    Note(rows.select, start);
  }
  void ReleaseRows(const std::string& table, const RowsToHold::Key& key) override {
    real_->ReleaseRows(table, key);
  }
  void NoteWrite() override { real_->NoteWrite(); }

 private:
  struct Use {
    double seconds = 0;
    int count = 0;
  };
  void Note(const std::string& sql, std::chrono::steady_clock::time_point start) {
    Use& use = uses_[ShapeOf(sql)];
    use.seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    ++use.count;
  }

  std::shared_ptr<Database> real_;
  std::string name_;
  std::unordered_map<std::string, Use> uses_;
};

}  // namespace excelexp
