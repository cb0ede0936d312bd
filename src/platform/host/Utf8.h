#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// True for well-formed UTF-8 (no overlong forms, no surrogates, nothing beyond U+10FFFF).
bool IsUtf8(std::string_view bytes);

/// Stored 8-bit text as UTF-8: kept when it is UTF-8 already (without its byte order mark), else read as
/// Windows-1252; a byte that Windows-1252 leaves undefined becomes U+FFFD.
std::string ToUtf8(std::string_view bytes);

}  // namespace excelexp
