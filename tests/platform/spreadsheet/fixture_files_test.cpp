#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/spreadsheet/WorkbookFile.h"
#include "platform/spreadsheet/fixtures.h"
#include "support/workbook_json.h"

namespace excelexp {
namespace {

namespace fs = std::filesystem;

class FixtureFiles : public ::testing::TestWithParam<Fixture> {
 protected:
  /// The folder that the environment names, for the readers; else one that goes away with the test.
  void SetUp() override {
    const char* named = std::getenv("EXCELEXP_FIXTURES");
    char own[] = "/tmp/excelexp-fixtures-XXXXXX";
    temporary_ = named == nullptr;
    folder_ = temporary_ ? mkdtemp(own) : named;
  }
  void TearDown() override {
    if (temporary_) fs::remove_all(folder_);
  }

  fs::path folder_;
  bool temporary_ = false;
};

std::string ReadAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Handle Build(BExcelAPI& api, const Fixture& fixture) {
  api.SetMoment(ParseDateTime("2024-03-05 12:34:56"));
  Handle workbook = api.CreateWorkbook(1);
  workbook.Get()->title = "Fixture \xE2\x82\xAC & <title>";
  fixture.build(api, workbook);
  return workbook;
}

/// Saves the fixture in every format with a description beside it, for the readers in tests/readback and
/// tests/office; a second workbook must give the same bytes.
TEST_P(FixtureFiles, SaveTheSameBytesEveryTime) {
  for (const WorkbookFormat& format : WorkbookFormats()) {
    const fs::path file = folder_ / (GetParam().name + std::string(format.extension));
    BExcelAPI api;
    const Handle workbook = Build(api, GetParam());
    api.SaveWorkbook(workbook, file, false);
    const std::string bytes = ReadAll(file);
    EXPECT_GT(bytes.size(), 1000u);
    std::ofstream(folder_ / (GetParam().name + std::string(".json"))) << WorkbookJson(*workbook.Get());
    BExcelAPI again;
    again.SaveWorkbook(Build(again, GetParam()), file, false);
    EXPECT_EQ(ReadAll(file) == bytes, true) << file;
  }
}

INSTANTIATE_TEST_SUITE_P(All, FixtureFiles, ::testing::ValuesIn(Fixtures()),
                         [](const auto& fixture) { return std::string(fixture.param.name); });

}  // namespace
}  // namespace excelexp
