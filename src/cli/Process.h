#pragma once

namespace excelexp::cli {

/// What the process owes the payroll it reads: no core dump carries values out, and SIGINT, SIGTERM and
/// SIGHUP ask it to stop in order. A second signal ends it at once. Writing to a pipe whose reader went away
/// is an error like any other and not the end of the process.
void PrepareProcess();

/// True once one of the signals came.
bool Interrupted();

}  // namespace excelexp::cli
