#pragma once

#include <cstdint>
#include <string_view>

namespace excelexp::formula {

/// How a function takes and gives operands in stored tokens.
enum class OperandClass : char { kReference = 'R', kValue = 'V', kArray = 'A' };

/// How a file names the function that is called.
enum class FunctionStorage : std::uint8_t {
  /// .xls: by its number in ptgFunc or ptgFuncVar. .xlsx: by its plain name.
  kBuiltIn,
  /// .xls: an external name (EXTERNNAME) of the add-in link (SUPBOOK with the content 01 3A), ptgNameX as the
  /// first operand, ptgFuncVar 255. .xlsx: by its plain name.
  kAddIn,
  /// .xls: a defined name "_xlfn." + name, hidden, marked as function and macro (flags 0x000B), whose formula
  /// is
  /// the error #NAME?; ptgName as the first operand, ptgFuncVar 255. .xlsx: by its plain name.
  kSince2007,
  /// .xls: as kSince2007. .xlsx: "_xlfn." + name.
  kSince2010,
};

inline constexpr std::uint16_t kCalledByName = 255;
/// What one call of a function holds at most in .xls, the name of one that is called by name included.
inline constexpr int kMaxXlsArguments = 30;
/// What one call holds at most in .xlsx.
inline constexpr int kMaxXlsxArguments = 255;

/// A worksheet function that the application knows.
struct FunctionInfo {
  std::string_view name;  ///< in capitals, English
  std::uint16_t index;    ///< the number in ptgFunc and ptgFuncVar; kCalledByName for one without a number
  std::int8_t min_arguments;
  std::int8_t max_arguments;  ///< 29 and more: as many as the format takes
  OperandClass result;
  std::string_view arguments;  ///< operand class letters; the last one repeats
  bool is_volatile = false;
  FunctionStorage storage = FunctionStorage::kBuiltIn;

  bool TakesAnyNumber() const { return max_arguments >= 29; }
  bool HasFixedCount() const { return min_arguments == max_arguments; }
  /// The class that the format wants for the argument with this number, counted from 0.
  OperandClass Argument(std::size_t number) const;
};

/// nullptr for a name that is no worksheet function. `name` in capitals.
const FunctionInfo* FindFunction(std::string_view name);

/// Numbers the functions from 0, to keep something for each.
std::size_t FunctionNumber(const FunctionInfo& function);
std::size_t FunctionCount();

}  // namespace excelexp::formula
