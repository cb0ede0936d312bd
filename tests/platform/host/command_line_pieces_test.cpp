#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "platform/database/TestDatabase.h"
#include "platform/host/BatchHost.h"
#include "platform/host/LineSinks.h"
#include "platform/host/ProgressLine.h"
#include "platform/host/Workstation.h"
#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp {
namespace {

namespace fs = std::filesystem;

TEST(SafeFileNameTest, NeverLeadsOutsideTheFolder) {
  const std::map<std::string, std::string> names = {
      {"Payroll.xls", "Payroll.xls"},
      {"../../x.xls", "x.xls"},
      {"C:\\x.xls", "x.xls"},
      {"/etc/x.xls", "x.xls"},
      {"a/b\\c/../x.xls", "x.xls"},
      {".xls", "Report.xls"},
      {"..", "Report.."},
      {"", "Report"},
      {"a/", "Report"},
      {"a\nb\x7F.xls", "ab.xls"},
      {"/.hidden.xls", "Report.hidden.xls"},
  };
  for (const auto& [proposed, safe] : names) EXPECT_EQ(SafeFileName(proposed), safe) << proposed;
}

TEST(BatchHostTest, AFileThatCannotBeWrittenIsToldBeforeTheWork) {
  const test::TestDatabase database("CREATE TABLE T (Id integer);");
  const auto answer = [&](const std::string& file) -> std::string {
    try {
      return BatchHost(file).AskSaveFile("proposed.xls").value_or("cancelled");
    } catch (const SpreadsheetError& error) {
      return error.what();
    }
  };
  const std::string folder = database.Folder();
  EXPECT_EQ(answer(folder + "/x.xls"), folder + "/x.xls");
  EXPECT_EQ(answer(""), "proposed.xls");
  EXPECT_EQ(answer(folder), "'" + folder + "' cannot be written: it is a folder");
  EXPECT_EQ(answer(folder + "/no/x.xls"),
            "'" + folder + "/no/x.xls' cannot be written: there is no folder '" + folder + "/no'");
  EXPECT_EQ(
      answer(database.File() + "/x.xls"),
      "'" + database.File() + "/x.xls' cannot be written: there is no folder '" + database.File() + "'");
}

TEST(BatchHostTest, NoRecordsStayWhenItGoes) {
  const test::TestDatabase file(
      "CREATE TABLE AnlysItemRecord (AnlysProjectId varchar(40), AnlysIPAddress varchar(40), Basis1Id "
      "varchar(40), Basis2Id varchar(40), Basis3Id varchar(40), AnlysItemRecYear integer, "
      "AnlysItemRecPeriodMonth integer, AnlysItemRecSubPeriod integer);"
      "CREATE TABLE Setup AS SELECT * FROM AnlysItemRecord;"
      "INSERT INTO Setup VALUES ('', '', '1', '', '', 2024, 1, 0);");
  const std::shared_ptr<Database> database = file.Open();
  const test::Registered registered("varndb", database);
  const auto count = [&] { return test::Rows(*database->Select("SELECT COUNT(*) FROM AnlysItemRecord")); };
  AnlysProjectStructure request;
  request.AnlysProjectId = "P";
  request.AnlysIPAddress = "10.0.0.7_1";
  request.AnlysSetupId = "setup";
  {
    BatchHost host("x.xls");
    EXPECT_EQ(host.CreateAnalysisRptEng(request, "other", false), nullptr);
    EXPECT_EQ(host.CreateAnalysisRptEng(request, "varndb", false)->ExecuteOperation(), 1);
    EXPECT_EQ(count(), "1");
  }
  EXPECT_EQ(count(), "0");
}

TEST(WorkstationTest, TakesOnlyWhatIsSafeInADataKey) {
  for (const char* good : {"pc", "10.0.0.7", "fe80::1", "A-b_c.9"}) EXPECT_TRUE(IsWorkstationAddress(good));
  EXPECT_TRUE(IsWorkstationAddress(std::string(39, 'x')));
  for (const char* bad : {"", "a~b", "a b", "a'b", "a%", "ä", "a/b", "a\n"})
    EXPECT_FALSE(IsWorkstationAddress(bad));
  EXPECT_FALSE(IsWorkstationAddress(std::string(40, 'x')));
  EXPECT_TRUE(IsWorkstationAddress(DefaultWorkstation()));
}

TEST(FileLineSinkTest, ALogIsItsOwnersAloneAlsoWhenItWasNot) {
  const test::TestDatabase folder("CREATE TABLE T (Id integer);");
  const std::string file = folder.Folder() + "/user.log";
  std::ofstream(file) << "an earlier and longer run\n";
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read);
  {
    FileLineSink sink(file);
    sink.WriteLine("one");
    sink.Flush();
  }
  std::ostringstream content;
  content << std::ifstream(file).rdbuf();
  EXPECT_EQ(content.str(), "one\n");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_THROW(FileLineSink(folder.Folder() + "/no/user.log"), std::system_error);
  FileLineSink full("/dev/full");
  full.WriteLine("lost");
  EXPECT_THROW(full.Flush(), std::system_error);
}

TEST(LogDigestTest, KeepsWarningsOnceAndTheEndFromTheFirstError) {
  LogDigest digest;
  TeeLineSink log;
  log.Add(&digest);
  for (const char* line : {"Start", "Warning: b", "", "Warning: a", "Warning: b", "no Warning: c",
                           "Error in X", "", "because of Y", "Warning: late"}) {
    log.WriteLine(line);
  }
  EXPECT_EQ(digest.Warnings(), (std::vector<std::string>{"Warning: b", "Warning: a"}));
  EXPECT_EQ(digest.Errors(), (std::vector<std::string>{"Error in X", "because of Y", "Warning: late"}));
}

TEST(ProgressLineTest, ShowsWorksheetEntityAndTimeLeft) {
  ProgressLine line;
  EXPECT_EQ(line.Text({"Staff", 1, 2, 0, 0}, 0, 80), "[....................]   0%  worksheet 1 of 2: Staff");
  EXPECT_EQ(line.Text({"Staff", 1, 2, 50, 100}, 10, 80),
            "[#####...............]  25%  worksheet 1 of 2, 50 of 100, 0:30 left: Staff");
  // The next group counts anew; the bar stays.
  EXPECT_EQ(line.Text({"Staff", 1, 2, 1, 100}, 10, 80),
            "[#####...............]  25%  worksheet 1 of 2, 1 of 100, 0:30 left: Staff");
  EXPECT_EQ(line.Text({"Lohn\x1B[2J\xC3\xA4", 2, 2, 1, 1}, 20, 80),
            "[####################] 100%  worksheet 2 of 2, 1 of 1, 0:00 left: Lohn [2J\xC3\xA4");
  EXPECT_EQ(line.Text({"\xC3\xA4\xC3\xA4\xC3\xA4", 2, 2, 0, 0}, 0, 48),
            "[####################] 100%  worksheet 2 of 2: \xC3\xA4");
}

TEST(ProgressLineTest, DurationsAndTerminalTexts) {
  EXPECT_EQ(DurationText(0.4), "0:00");
  EXPECT_EQ(DurationText(59.6), "1:00");
  EXPECT_EQ(DurationText(3725), "1:02:05");
  EXPECT_EQ(DurationText(1e12), "99:59:59");
  EXPECT_EQ(TerminalText("a\tb\x1B]0;x\x07"), "a b ]0;x ");
  EXPECT_EQ(TerminalText("x\xC2\x9By\xC3\xA9"), "x y\xC3\xA9");  // U+009B begins a sequence on some terminals
  EXPECT_EQ(TerminalText("M\xFCller"), "M\xC3\xBCller");
}

}  // namespace
}  // namespace excelexp
