#pragma once

#include <string>
#include <string_view>

namespace excelexp {

/// Puts finished bytes under a name so that at every moment the name shows the old file or the whole new one:
/// a temporary file in the target's folder (created exclusively, mode 0600 or the mode of the file it
/// replaces), write, fsync, rename, fsync of the folder. Throws SpreadsheetError saying what failed; then the
/// old file is as it was and nothing new has a name. Also removes temporary files that a killed run left for
/// this target and whose process is gone.
void PublishFile(const std::string& target, std::string_view bytes);

}  // namespace excelexp
