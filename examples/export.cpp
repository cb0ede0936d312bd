// The library in ten lines: exports one stored spreadsheet definition to a workbook.
//   excelexp_example DATABASE SPREADSHEET OUTPUT

#include <iostream>

#include "engine/BExcelExpEngine.h"
#include "platform/database/DatabaseRegistry.h"
#include "platform/database/SqliteDatabase.h"
#include "platform/host/BatchHost.h"
#include "platform/host/LineSinks.h"

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  excelexp::DatabaseRegistry::Register("varndb", excelexp::OpenSqliteDatabase(argv[1]));
  excelexp::FixedViewTable view_table("10.0.0.7", "ViewEmployee");
  excelexp::BatchHost host(argv[3]);
  excelexp::MemoryLineSink user_log;
  excelexp::MemoryLineSink internal_log;
  excelexp::BExcelExpEngine engine(argv[2], &view_table, "varndb");
  engine.SetHost(&host);
  engine.SetLogMemo(&user_log);
  engine.SetInternalMemo(&internal_log);
  const bool done = engine.ExecuteOperation() == 1;
  for (const std::string& line : user_log.Lines()) std::cerr << line << '\n';
  return done ? 0 : 1;
}
