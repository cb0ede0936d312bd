#pragma once

#include <string>
#include <string_view>

namespace excelexp::xlsx {

/// Appends a text as the content of an element. What XML cannot carry (control characters, U+FFFE, U+FFFF)
/// and what readers would take for such an escape is written as _xHHHH_ (ECMA-376 part 1, 22.9.2.19,
/// ST_Xstring). `text` is valid UTF-8.
void AppendText(std::string& xml, std::string_view text);

/// The same as the value of an attribute in double quotes: line feeds and tabs are escaped too.
void AppendAttribute(std::string& xml, std::string_view text);

/// Appends the shortest digits that read back as the same finite number, whatever the locale.
void AppendNumber(std::string& xml, double number);
void AppendNumber(std::string& xml, int number);

/// Whether an element with this text must ask readers to keep its blanks.
bool HasOuterBlanks(std::string_view text);

inline constexpr std::string_view kXmlHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

}  // namespace excelexp::xlsx
