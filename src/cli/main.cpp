#include <string>
#include <vector>

#include "cli/CommandLine.h"
#include "cli/Process.h"

int main(int argc, char** argv) {
  excelexp::cli::PrepareProcess();
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  return excelexp::cli::RunCommandLine(arguments);
}
