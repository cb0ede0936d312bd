#include <fstream>
#include <regex>
#include <sstream>

#include "platform/database/TestDatabase.h"
#include "support/Command.h"
#include "support/Definitions.h"

namespace excelexp {
namespace {

using test::RunCommand;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::vector<std::string> VerbNames() {
  const std::string help = RunCommand({"--help"}).out;
  std::vector<std::string> names;
  const std::regex line("\n  ([a-z]+)  +[A-Z]");
  for (std::sregex_iterator found(help.begin(), help.end(), line), end; found != end; ++found)
    names.push_back((*found)[1]);
  return names;
}

TEST(UsageTest, WrongUsageNamesTheArgument) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{}, "a verb is missing; see 'excelexp --help'"},
      {{"exprt"}, "there is no verb 'exprt'; see 'excelexp --help'"},
      {{"export"}, "--database [NAME=]FILE is missing; see 'excelexp export --help'"},
      {{"export", "--database", "x.db"}, "--spreadsheet ID is missing; see 'excelexp export --help'"},
      {{"export", "--database"}, "--database needs a value; see 'excelexp export --help'"},
      {{"export", "--spreadsheet="}, "--spreadsheet needs a value; see 'excelexp export --help'"},
      {{"export", "--quiet=yes"}, "--quiet takes no value; see 'excelexp export --help'"},
      {{"export", "--databse=x"}, "there is no option '--databse'; see 'excelexp export --help'"},
      {{"export", "x.db"}, "nothing is known about 'x.db'; see 'excelexp export --help'"},
      {{"export", "--database=a.db", "--database=b.db"},
       "two files for --database, 'a.db' and 'b.db'; a further one needs a name, NAME=FILE; see 'excelexp "
       "export --help'"},
      {{"export", "--database=n=a", "--database=n=b"},
       "two files for --database n; see 'excelexp export --help'"},
      {{"export", "--database=n="}, "--database n= names no file; see 'excelexp export --help'"},
      {{"export", "--progress=often"},
       "--progress takes auto, always or never, not 'often'; see 'excelexp export --help'"},
      {{"export", "--view-table", "A; DROP"},
       "--view-table 'A; DROP' is no name of letters, digits and underscores; see 'excelexp export --help'"},
      {{"export", "--database=./a=b.db", "--spreadsheet=X"}, "there is no database file './a=b.db'"},
      {{"export", "--database=a.db", "--spreadsheet=X", "--workstation=a~b"},
       "--workstation 'a~b' is no address of 1 to 39 letters, digits, '.', ':', '-', '_'"},
      {{"demo", "--employees=0"},
       "--employees takes a number from 1 to 100000, not '0'; see 'excelexp demo --help'"},
      {{"demo", "--seed=-1"},
       "--seed takes a number from 0 to 18446744073709551615, not '-1'; see 'excelexp demo --help'"},
      {{"list", "--database=no\x1B[2J.db"}, "there is no database file 'no [2J.db'"},
  };
  for (const auto& [arguments, message] : cases) {
    const auto result = RunCommand(arguments);
    EXPECT_EQ(result.code, 2) << message;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "excelexp: " + message + "\n");
  }
}

TEST(UsageTest, HelpBeginsWithExamplesAndListsEveryOption) {
  EXPECT_THAT(VerbNames(), ::testing::IsSupersetOf({"export", "list"}));
  for (const std::string& verb : VerbNames()) {
    const auto help = RunCommand({verb, "--database", "x", "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_THAT(help.out, StartsWith("  excelexp " + verb + " --"));
    EXPECT_THAT(help.out, HasSubstr("\n  --help "));
  }
  const auto version = RunCommand({"--version"});
  EXPECT_TRUE(std::regex_match(version.out, std::regex("excelexp [0-9]+\\.[0-9]+\\.[0-9]+\n")))
      << version.out;
}

TEST(UsageTest, TheManualsKnowEveryVerbAndOption) {
  const auto text_of = [](const std::string& file) {
    return (std::ostringstream() << std::ifstream(EXCELEXP_SOURCE_DIR "/docs/" + file).rdbuf()).str();
  };
  const std::string page = std::regex_replace(text_of("excelexp.1"), std::regex("\\\\-"), "-");
  const std::string guide = text_of("cli.md");
  for (const std::string& verb : VerbNames()) {
    EXPECT_THAT(page, HasSubstr("excelexp " + verb));
    EXPECT_THAT(guide, HasSubstr("excelexp " + verb));
    const std::string help = RunCommand({verb, "--help"}).out;
    const std::regex option("\n  (--[a-z-]+)");
    for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found) {
      EXPECT_THAT(page, HasSubstr((*found)[1]));
      EXPECT_THAT(guide, HasSubstr((*found)[1]));
    }
  }
}

TEST(ListTest, ShowsSpreadsheetsWorksheetsAndItems) {
  using namespace test;
  const TestDatabase database(PayrollScript(
      Spreadsheet("PAY", "Payroll") + Worksheet(1, "PAY", "L\xC3\xB6hne") +
      FinancialItem(1, 1, 1, "R1", "S") +
      "INSERT INTO ExcelWkSheetItem (WkSheetItemSysId, WkSheetSysId, WkSheetItemOrdering, "
      "WkSheetItemRptType, "
      "WkSheetItemRptId) VALUES (2, 1, 2, 'EmployeeRpt', 'GONE');" +
      Worksheet(2, "PAY", "By\tcentre", "SumLevelBasis") + Worksheet(3, "PAY", "Later", "") +
      "UPDATE ExcelWkSheet SET WkSheetRptBasis1 = 'B1', WkSheetRptBasis3 = 'B3' WHERE WkSheetSysId = 2;" +
      Spreadsheet("EMPTY", "")));
  const auto result = RunCommand({"list", "--database", database.File()});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out,
            "EMPTY  (file name: )\n"
            "  no worksheets\n"
            "\n"
            "PAY  (file name: Payroll)\n"
            "     WORKSHEET  SUMMARY LEVEL            ITEM          REPORT  LAYOUT\n"
            "  1  L\xC3\xB6hne      SumLevelEmpee         1  FinancialRpt  R1      SomeLayout\n"
            "                                      2  EmployeeRpt   GONE    (no such report)\n"
            "  2  By centre  SumLevelBasis B1, B3\n"
            "  3  Later      (none)\n");
}

TEST(ListTest, OtherDatabases) {
  const test::TestDatabase empty(test::PayrollScript());
  const auto nothing = RunCommand({"list", "--database", empty.File()});
  EXPECT_EQ(nothing.code, 0);
  EXPECT_EQ(nothing.err, "'" + empty.File() + "' holds no spreadsheet definitions.\n");
  const test::TestDatabase other("CREATE TABLE T (Id integer);");
  const auto failed = RunCommand({"list", "--database", other.File()});
  EXPECT_EQ(failed.code, 1);
  EXPECT_THAT(failed.err, HasSubstr("no such table: "));
}

TEST(DemoTest, MakesADatabaseOnceAndTheSameBySeed) {
  const test::TestDatabase folder("CREATE TABLE T (Id integer);");
  const auto make = [&](const std::string& name, const std::string& seed) {
    return RunCommand({"demo", "--output", name, "--employees=3", "--seed", seed},
                      {.folder = folder.Folder()});
  };
  const auto bytes = [&](const std::string& name) {
    return (std::ostringstream() << std::ifstream(folder.Folder() + "/" + name).rdbuf()).str();
  };
  EXPECT_EQ(make("a.db", "1").out, "a.db\n");
  EXPECT_EQ(make("b.db", "1").code, 0);
  EXPECT_EQ(make("c.db", "2").code, 0);
  const std::string first = bytes("a.db");
  EXPECT_TRUE(bytes("b.db") == first);
  EXPECT_FALSE(bytes("c.db") == first);
  const auto again = make("a.db", "2");
  EXPECT_EQ(again.code, 1);
  EXPECT_THAT(again.err, HasSubstr("a.db"));
  EXPECT_TRUE(bytes("a.db") == first);
  EXPECT_THAT(RunCommand({"list", "--database", folder.Folder() + "/a.db"}).out,
              StartsWith("DEMO  (file name: "));
}

}  // namespace
}  // namespace excelexp
