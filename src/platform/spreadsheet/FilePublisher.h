#pragma once

#include <string>
#include <string_view>

namespace excelexp {

class FileCalls;

/// Puts finished bytes under a name so that at every moment the name shows the old file or the whole new one:
/// a temporary file in the target's folder (created exclusively, mode 0600 or the mode of the file it
/// replaces), write, fsync, rename, fsync of the folder. Throws SpreadsheetError saying what failed; then the
/// old file is as it was and nothing new has a name.
///
/// Temporary files are called ".<target>.<16 hex digits>.tmp" and are locked by the run that writes them. The
/// next run for the same target removes those that nobody holds a lock on: what a killed run left goes, what
/// a live one writes stays, also when the two run in different containers.
///
/// Refused: a target that is a symbolic link (a link planted in a shared folder must not choose where a
/// payroll goes; the message names what the link points to), a folder or anything else that is no regular
/// file, and a file that the user may not write.
void PublishFile(const std::string& target, std::string_view bytes);

/// The same through other system calls, for tests.
void PublishFile(const std::string& target, std::string_view bytes, FileCalls& calls);

}  // namespace excelexp
