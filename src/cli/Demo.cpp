#include "cli/Console.h"
#include "cli/Process.h"
#include "cli/Verbs.h"
#include "demo/DemoDatabase.h"

namespace excelexp::cli {

ExitCode RunDemo(const Settings& settings) {
  DemoOptions options;
  options.employees = settings.employees;
  options.seed = settings.seed;
  const bool shows_progress = !settings.quiet && ErrorIsTerminal();
  options.progress = [shows_progress](std::int64_t done, std::int64_t total) {
    if (Interrupted()) throw std::runtime_error("interrupted");
    if (shows_progress && total > 0) ShowTransient(std::to_string(done * 100 / total) + "%");
  };
  WriteDemoDatabase(settings.output, options);
  ShowTransient("");
  Print(settings.output + "\n");
  return kDone;
}

}  // namespace excelexp::cli
