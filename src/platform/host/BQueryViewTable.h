#pragma once

#include <string>

namespace excelexp {

/// What the host's security knows of the user: where the export runs and whom the user may see.
class BQueryViewTable {
 public:
  virtual ~BQueryViewTable() = default;
  /// The workstation address; with "_" and an item's ordering it keys that item's analysis records.
  virtual std::string sGetIPAddress() const = 0;
  /// The user's view table of employees and persons (columns EmployeeSysId, PersonalSysId).
  virtual std::string sGetViewTableName() const = 0;
};

/// A provider with two fixed answers.
class FixedViewTable final : public BQueryViewTable {
 public:
  FixedViewTable(std::string address, std::string view_table)
      : address_(std::move(address)), view_table_(std::move(view_table)) {}
  std::string sGetIPAddress() const override { return address_; }
  std::string sGetViewTableName() const override { return view_table_; }

 private:
  std::string address_;
  std::string view_table_;
};

}  // namespace excelexp
