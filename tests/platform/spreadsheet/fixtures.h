#pragma once

#include <vector>

#include "platform/spreadsheet/BExcelAPI.h"

namespace excelexp {

/// A workbook that every file format and every reader must show alike.
struct Fixture {
  const char* name;
  void (*build)(BExcelAPI& api, const Handle& workbook);
};

const std::vector<Fixture>& Fixtures();

}  // namespace excelexp
