#pragma once

#include <cstdint>
#include <string_view>

namespace excelexp::formula {

/// How a function takes and gives operands in stored tokens.
enum class OperandClass : char { kReference = 'R', kValue = 'V', kArray = 'A' };

/// A built-in worksheet function of the .xls format.
struct FunctionInfo {
  std::string_view name;  ///< in capitals, English
  std::uint16_t index;    ///< the number in ptgFunc and ptgFuncVar; 255 for one that the format calls by name
  std::int8_t min_arguments;
  std::int8_t max_arguments;  ///< 30 is the format's limit
  OperandClass result;
  std::string_view arguments;  ///< operand class letters; the last one repeats
  bool is_volatile;
};

/// nullptr for a name that is no built-in function. `name` in capitals.
const FunctionInfo* FindFunction(std::string_view name);

}  // namespace excelexp::formula
