#pragma once

namespace excelexp {

/// Ends a run that cannot go on; what happened stands in the logs by the time it is thrown.
class ExcelExpEngineFail {};

}  // namespace excelexp
