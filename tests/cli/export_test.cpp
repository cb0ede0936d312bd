#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/database/TestDatabase.h"
#include "support/Command.h"
#include "support/Definitions.h"

namespace excelexp {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

std::string ReadAll(const fs::path& file) {
  return (std::ostringstream() << std::ifstream(file, std::ios::binary).rdbuf()).str();
}

mode_t ModeOf(const fs::path& file) {
  struct stat status {};
  EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
  return status.st_mode & 07777;
}

std::string Script() {
  using namespace test;
  return PayrollScript(
      SetupView("NoRecords", 0) + Spreadsheet("GOOD", "Good") + Worksheet(1, "GOOD", "Staff") +
      FinancialItem(1, 1, 1, "R1", "NoRecords") + Worksheet(2, "GOOD", "No level", "") +
      Worksheet(3, "GOOD", "No level either", "") + Spreadsheet("EMPTY", "Empty") +
      Spreadsheet("O'Hara", "Hara") + Worksheet(5, "O'Hara", "Bare") + Spreadsheet("BROKEN", "Broken") +
      Worksheet(6, "BROKEN", "Wages") + FinancialItem(6, 6, 1, "R6", "NoSuchView") +
      Spreadsheet("UP", "../../up") + Worksheet(7, "UP", "Bare") + Spreadsheet("DRIVE", "C:\\drive") +
      Worksheet(8, "DRIVE", "Bare") + Spreadsheet("ROOT", "/etc/root") + Worksheet(9, "ROOT", "Bare"));
}

class ExportTest : public ::testing::Test {
 protected:
  ExportTest() { fs::create_directory(Path("work")); }

  std::string Path(const std::string& name) const { return database_.Folder() + "/" + name; }
  std::string Work(const std::string& name) const { return Path("work/" + name); }

  std::vector<std::string> Arguments(const std::string& id, std::vector<std::string> more = {}) const {
    std::vector<std::string> all = {"export", "--database", database_.File(), "--spreadsheet=" + id};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  /// In a folder of its own, so that a test sees every file that a run leaves.
  test::CommandResult Export(const std::string& id, std::vector<std::string> more = {},
                             test::CommandOptions options = {}) const {
    if (options.folder.empty()) options.folder = Path("work");
    return test::RunCommand(Arguments(id, std::move(more)), options);
  }

  std::set<std::string> Written() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(Path("work"))) names.insert(entry.path().filename());
    return names;
  }

  test::TestDatabase database_{Script()};
};

TEST_F(ExportTest, WritesTheProposedFileAndPrintsItsName) {
  const auto result = Export("GOOD");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "Good.xls\n");
  EXPECT_EQ(result.err, "Warning: The Excel Worksheet Report Summary Level is not selected.\n");
  EXPECT_EQ(Written(), std::set<std::string>{"Good.xls"});
  EXPECT_EQ(ModeOf(Work("Good.xls")), mode_t{0600});
  EXPECT_THAT(ReadAll(Work("Good.xls")), StartsWith("\xD0\xCF\x11\xE0"));
}

TEST_F(ExportTest, TheSameMomentGivesTheSameBytesAndAnExistingFileIsReplaced) {
  setenv("SOURCE_DATE_EPOCH", "1767225600", 1);
  for (const std::string& name : std::vector<std::string>{"a.xls", "a.XLSX"}) {
    ASSERT_EQ(Export("GOOD", {"--output", name, "--quiet"}).code, 0);
    const std::string first = ReadAll(Work(name));
    std::ofstream(Work(name)) << "old";
    const auto second = Export("GOOD", {"--output", name, "--quiet"});
    EXPECT_EQ(second.err, "");
    EXPECT_EQ(second.out, name + "\n");
    EXPECT_EQ(ReadAll(Work(name)), first);
  }
  unsetenv("SOURCE_DATE_EPOCH");
}

TEST_F(ExportTest, AFileNameOfTheDefinitionStaysInTheCurrentFolder) {
  for (const std::string& id : std::vector<std::string>{"UP", "DRIVE", "ROOT"})
    EXPECT_EQ(Export(id).code, 0) << id;
  EXPECT_EQ(Written(), (std::set<std::string>{"up.xls", "drive.xls", "root.xls"}));
}

TEST_F(ExportTest, FailuresSayWhatFailedAndLeaveTheOldFile) {
  std::ofstream(Work("Broken.xls")) << "old";
  const std::string of = " of '" + database_.File() + "'";
  struct Case {
    std::string id;
    std::vector<std::string> options;
    int code;
    std::string message;
  };
  const std::vector<Case> cases = {
      {"NOPE", {}, 1, "excelexp: spreadsheet 'NOPE'" + of + " was not exported: No Spreadsheet found.\n"},
      {"' OR ''='",
       {},
       1,
       "excelexp: spreadsheet '' OR ''=''" + of + " was not exported: No Spreadsheet found.\n"},
      {"EMPTY", {}, 3, "excelexp: spreadsheet 'EMPTY'" + of + " has no worksheets, nothing was written\n"},
      {"EMPTY", {"--quiet"}, 3, ""},
      {"BROKEN", {}, 1, "excelexp: spreadsheet 'BROKEN'" + of + ", worksheet 'Wages', was not exported: "},
      {"GOOD",
       {"--output", "no/x.xls"},
       1,
       "was not exported: 'no/x.xls' cannot be written: there is no folder 'no'\n"},
      {"GOOD", {"--output", "/proc/x.xls"}, 1, "'/proc/x.xls'"},
      {"GOOD", {"--output", "."}, 2, "excelexp: --output '.' is a folder\n"},
      {"GOOD", {"--output", "x.pdf"}, 2, "\"x.pdf\" ends in no known extension (.xls, .xlsx)"},
      {"GOOD", {"--log", "no/user.log"}, 2, "excelexp: cannot write the log no/user.log: No such file"},
  };
  for (const Case& each : cases) {
    const auto result = Export(each.id, each.options);
    EXPECT_EQ(result.code, each.code) << each.id;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr(each.message));
    EXPECT_EQ(Written(), std::set<std::string>{"Broken.xls"}) << each.id;
  }
  EXPECT_EQ(ReadAll(Work("Broken.xls")), "old");
}

TEST_F(ExportTest, AQuoteInAnIdIsPartOfTheId) {
  EXPECT_EQ(Export("O'Hara").out, "Hara.xls\n");
}

TEST_F(ExportTest, AFolderThatMayNotBeWrittenIsToldBeforeTheWork) {
  fs::permissions(database_.Folder(), fs::perms(0755));
  fs::permissions(database_.File(), fs::perms(0644));
  fs::permissions(Path("work"), fs::perms(0555));
  const auto result = Export("GOOD", {}, {.unprivileged = true});
  if (result.code == 127) GTEST_SKIP() << "another user cannot run the command";
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(
      result.err,
      EndsWith("was not exported: 'Good.xls' cannot be written: the folder '.': Permission denied\n"));
}

TEST_F(ExportTest, NoDatabaseIsWrongUsageAndEmptiesNoLog) {
  std::ofstream(Work("user.log")) << "old";
  std::ofstream(Work("text.db")) << std::string(5000, 'x');
  std::ofstream(Work("empty.db"));
  const auto message_of = [&](const std::string& file) {
    const auto result =
        test::RunCommand({"export", "--database=" + file, "--spreadsheet", "GOOD", "--log=user.log"},
                         {.folder = Path("work")});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    return result.err;
  };
  EXPECT_EQ(message_of("no.db"), "excelexp: there is no database file 'no.db'\n");
  EXPECT_EQ(message_of("text.db"), "excelexp: 'text.db' is not a database\n");
  EXPECT_EQ(message_of("empty.db"), "excelexp: 'empty.db' is empty, not a database\n");
  EXPECT_EQ(message_of("."), "excelexp: '.' is not a file\n");
  EXPECT_EQ(ReadAll(Work("user.log")), "old");
}

TEST_F(ExportTest, NoOptionMayNameTheFileOfAnother) {
  const std::string before = database_.Bytes();
  fs::create_symlink(database_.File(), Work("link"));
  for (const std::string& option : std::vector<std::string>{"--log", "--internal-log", "--trace"}) {
    for (const std::string& file : {database_.File(), Work("link"), Path("work/../test.db")}) {
      const auto result = Export("GOOD", {option, file});
      EXPECT_EQ(result.code, 2);
      EXPECT_THAT(result.err, HasSubstr(option + " '" + file + "' is the file of --database"));
    }
  }
  EXPECT_EQ(Export("GOOD", {"--log", "a.log", "--trace", "./a.log"}).code, 2);
  EXPECT_EQ(Export("GOOD", {"--log", "Good.xls"}).code, 1);  // the name that the definition proposes
  EXPECT_EQ(Export("GOOD", {"--log", "/dev/null", "--trace", "/dev/null"}).code, 0);
  EXPECT_TRUE(database_.Bytes() == before);  // a difference would fill the screen
}

TEST_F(ExportTest, LogsHoldTheRunAndTheTraceWhatTheDatabaseSaid) {
  const auto result = Export("BROKEN", {"--log=u.log", "--internal-log=i.log", "--trace=t.log"});
  EXPECT_EQ(result.code, 1);
  const std::string user = ReadAll(Work("u.log"));
  EXPECT_THAT(user, HasSubstr("             EXCEL EXPORT PROCESSING            \n"));
  EXPECT_THAT(user, HasSubstr("Excel Spreadsheet ID: BROKEN\n"));
  EXPECT_THAT(user, EndsWith("Error in Excel Export Engine\n"));
  const std::string internal = ReadAll(Work("i.log"));
  EXPECT_THAT(internal, HasSubstr("Error in processing Analysis Project"));
  EXPECT_THAT(internal, HasSubstr("Error in processing Excel Worksheet\n"));
  const std::string trace = ReadAll(Work("t.log"));
  EXPECT_THAT(trace, HasSubstr("Analysis project 'R6' failed.\n"));
  EXPECT_THAT(trace, HasSubstr("'NoSuchView', which is no table or view"));
  for (const char* log : {"u.log", "i.log", "t.log"}) EXPECT_EQ(ModeOf(Work(log)), mode_t{0600});
}

TEST_F(ExportTest, TheTraceHoldsEveryFailingStatement) {
  SqliteWriter(database_.File()).ExecuteScript("DROP TABLE ExcelWkSheetItem");
  const auto result = Export("GOOD", {"--trace=t.log"});
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("Error in ExcelWorksheetItemQry Query."));
  const std::string trace = ReadAll(Work("t.log"));
  EXPECT_THAT(trace, HasSubstr("no such table: ExcelWkSheetItem\nSELECT * FROM ExcelWkSheetItem "));
}

TEST_F(ExportTest, QuietVerboseAndProgress) {
  EXPECT_EQ(Export("GOOD", {"--quiet"}).err, "");
  const std::string verbose = Export("GOOD", {"--verbose"}).err;
  EXPECT_THAT(verbose, HasSubstr("\nExcel Worksheet Name: Staff\n"));
  EXPECT_THAT(verbose, EndsWith("\n\n"));  // the log and no second list of warnings
  EXPECT_THAT(Export("GOOD", {"--progress", "always"}).err, HasSubstr("worksheet 1 of 3: Staff"));
  EXPECT_THAT(Export("GOOD", {"--output=a.xls"}, {.terminal = true}).err,
              HasSubstr("worksheet 1 of 3: Staff"));
  EXPECT_THAT(Export("GOOD", {"--output=b.xls", "--progress=never"}, {.terminal = true}).err,
              Not(HasSubstr("worksheet 1 of 3")));
}

TEST_F(ExportTest, ATerminalIsAskedForTheFile) {
  std::ofstream(Work("other.xlsx")) << "old";
  const auto answer = [&](const std::string& typed, std::vector<std::string> options = {}) {
    return Export("UP", std::move(options), {.terminal = true, .typed = typed});
  };
  const auto proposed = answer("\n");
  EXPECT_EQ(proposed.out, "up.xls\n");
  EXPECT_THAT(proposed.err, HasSubstr("File to write [up.xls]: "));
  EXPECT_THAT(proposed.err, Not(HasSubstr("Please remember")));
  const auto typed = answer("other.xlsx\n");
  EXPECT_EQ(typed.out, "other.xlsx\n");
  EXPECT_THAT(typed.err, HasSubstr("Please remember to close the file if it is opened."));
  const auto cancelled = answer("\x04");  // the end of the input
  EXPECT_EQ(cancelled.code, 3);
  EXPECT_THAT(cancelled.err, HasSubstr("no file was chosen for spreadsheet 'UP'"));
  EXPECT_EQ(answer("x.doc\n").code, 1);
  EXPECT_THAT(answer("", {"--output=given.xls"}).err, Not(HasSubstr("File to write")));
}

TEST_F(ExportTest, AReaderThatWentAwayDoesNotUndoTheExport) {
  const auto result = Export("GOOD", {"--quiet"}, {.closed_output = true});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(Written(), std::set<std::string>{"Good.xls"});
}

TEST_F(ExportTest, TheAnalysisRecordsGoToThePayrollDatabase) {
  const test::TestDatabase payroll(test::PayrollScript(test::SetupView("NoSuchView", 0)));
  EXPECT_EQ(Export("BROKEN", {"--database", "varndb=" + payroll.File()}).code, 0);
  EXPECT_EQ(Export("GOOD", {"--database", "other=no.db"}).err,
            "excelexp: there is no database file 'no.db'\n");
  EXPECT_EQ(Export("GOOD", {"--database", "definition=" + payroll.File()}).code, 2);
}

TEST_F(ExportTest, TheExampleProgramExportsToo) {
  const auto run = [&](const std::string& id) {
    return test::RunCommand({database_.File(), id, Work("example.xlsx")}, {.program = EXCELEXP_EXAMPLE});
  };
  const auto result = run("GOOD");
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("File has been successfully generated to " + Work("example.xlsx")));
  EXPECT_THAT(ReadAll(Work("example.xlsx")), StartsWith("PK"));
  EXPECT_EQ(run("NOPE").code, 1);
}

}  // namespace
}  // namespace excelexp
