#pragma once

#include "cli/CommandLine.h"

namespace excelexp::cli {

ExitCode RunExport(const Settings& settings);
ExitCode RunList(const Settings& settings);
ExitCode RunDemo(const Settings& settings);

}  // namespace excelexp::cli
