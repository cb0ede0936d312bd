#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// True for 1 to 39 characters (the longest address in numbers) out of letters, digits, '.', ':', '-', '_'.
bool IsWorkstationAddress(std::string_view text);

/// The host name, made to pass IsWorkstationAddress.
std::string DefaultWorkstation();

}  // namespace excelexp
