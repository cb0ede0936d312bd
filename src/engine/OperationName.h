#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// An operation as the messages name it, "Class::Operation". Every cell carries one along and only a failure
/// needs the text, so it is put together then. The parts are constants and not copied.
class OperationName {
 public:
  OperationName(std::string_view whole) : operation_(whole) {}
  OperationName(const char* whole) : operation_(whole) {}
  OperationName(std::string_view class_name, std::string_view operation)
      : class_name_(class_name), operation_(operation) {}

  /// Nobody is to be named: the failure says nothing.
  bool IsEmpty() const { return class_name_.empty() && operation_.empty(); }
  std::string Text() const {
    if (class_name_.empty()) return std::string(operation_);
    return std::string(class_name_) + "::" + std::string(operation_);
  }

 private:
  std::string_view class_name_;
  std::string_view operation_;
};

}  // namespace excelexp
