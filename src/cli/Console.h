#pragma once

#include <string>
#include <string_view>

namespace excelexp::cli {

/// A line on standard error. Texts out of databases and files may hold anything: they reach a terminal
/// without control characters.
void ShowLine(std::string_view text);
/// The same behind the program's name.
void ShowError(std::string_view text);

/// A line on standard error that the next one replaces; "" takes it away.
void ShowTransient(std::string_view text);

/// Writes to standard output. False, after a message, when that failed; a reader that went away wanted no
/// more, which is no failure.
bool Print(std::string_view text);

/// Asks on standard error and reads one line from standard input. False at the end of the input and when the
/// process is interrupted.
bool Ask(std::string_view question, std::string& answer);

bool InputIsTerminal();
bool ErrorIsTerminal();
/// Columns of the terminal behind standard error; 80 when it does not say.
int TerminalWidth();

}  // namespace excelexp::cli
