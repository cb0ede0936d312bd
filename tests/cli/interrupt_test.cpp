#include <signal.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "platform/database/TestDatabase.h"
#include "support/Command.h"
#include "support/Definitions.h"

namespace excelexp {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using ::testing::EndsWith;
using ::testing::HasSubstr;

using Names = std::set<std::string>;

/// QUICK writes a file. Of READING, FILLING and FAILING, the first item has records, and the second one never
/// ends, in a query or in the analysis engine, or fails.
std::string Script() {
  using namespace test;
  return PayrollScript(SetupView("NoRecords", 0) + SetupView("Records", 3) + EndlessSetupView("Endless") +
                       Spreadsheet("QUICK", "Quick") + Worksheet(1, "QUICK", "Staff") +
                       FinancialItem(1, 1, 1, "R1", "NoRecords") + Spreadsheet("READING", "Out") +
                       Worksheet(2, "READING", "Staff") + FinancialItem(2, 2, 1, "R2", "Records") +
                       FinancialItem(3, 2, 2, "R3", "NoRecords") + Spreadsheet("FILLING", "Out") +
                       Worksheet(3, "FILLING", "Staff") + FinancialItem(4, 3, 1, "R4", "Records") +
                       FinancialItem(5, 3, 2, "R5", "Endless") + Spreadsheet("FAILING", "Out") +
                       Worksheet(4, "FAILING", "Staff") + FinancialItem(6, 4, 1, "R6", "Records") +
                       FinancialItem(7, 4, 2, "R7", "NoSuchView") + EndlessOptions(3));
}

class InterruptTest : public ::testing::Test {
 protected:
  InterruptTest() { std::ofstream(Output()) << "old"; }

  std::string Output() const { return database_.Folder() + "/Out.xls"; }

  std::vector<std::string> Arguments(const std::string& id) const {
    return {"export", "--database", database_.File(), "--spreadsheet", id, "--workstation", "10.0.0.7"};
  }
  test::CommandResult Export(const std::string& id) const {
    return test::RunCommand(Arguments(id), {.folder = database_.Folder()});
  }

  /// Starts a run and returns once it is at its second item.
  std::unique_ptr<test::Command> StartEndless(const std::string& id) {
    const std::string second = "Financial Report ID: " + std::string(id == "READING" ? "R3" : "R5");
    std::vector<std::string> arguments = Arguments(id);
    arguments.emplace_back("--verbose");
    auto command =
        std::make_unique<test::Command>(arguments, test::CommandOptions{.folder = database_.Folder()});
    const auto end = Clock::now() + std::chrono::seconds(10);
    while (command->ErrorSoFar().find(second) == std::string::npos && Clock::now() < end)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_THAT(command->ErrorSoFar(), HasSubstr(second));
    return command;
  }

  std::string OldFile() const { return (std::ostringstream() << std::ifstream(Output()).rdbuf()).str(); }

  test::TestDatabase database_{Script()};
};

TEST_F(InterruptTest, ASignalEndsTheRunWithinASecondAndLeavesNothing) {
  for (const std::string& id : std::vector<std::string>{"READING", "FILLING"}) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
      const auto command = StartEndless(id);
      const auto asked = Clock::now();
      command->Signal(signal);
      const auto result = command->Wait();
      EXPECT_LT(Clock::now() - asked, std::chrono::seconds(1)) << id;
      EXPECT_EQ(result.code, 130) << id;
      EXPECT_THAT(result.err, EndsWith("\nexcelexp: interrupted, nothing was written\n"));
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(database_.FileNames(), (Names{"Out.xls", "test.db"}));
      EXPECT_EQ(OldFile(), "old");
    }
  }
}

TEST_F(InterruptTest, HoweverARunEndsTheDatabaseIsAsItWas) {
  const std::string before = database_.Bytes();
  const auto is_same = [&] { return database_.Bytes() == before; };  // a difference would fill the screen
  EXPECT_EQ(Export("QUICK").code, 0);
  EXPECT_TRUE(is_same());
  EXPECT_EQ(Export("FAILING").code, 1);
  EXPECT_TRUE(is_same());
  for (const int signal : {SIGINT, SIGKILL}) {
    const auto ended = StartEndless("FILLING");
    ended->Signal(signal);
    ended->Wait();
    EXPECT_TRUE(is_same()) << signal;
  }
  EXPECT_EQ(database_.FileNames(), (Names{"Out.xls", "Quick.xls", "test.db"}));
  EXPECT_EQ(OldFile(), "old");
}

TEST_F(InterruptTest, ADatabaseThatCannotBeWrittenIsExported) {
  const fs::path out = database_.Folder() + "/out";
  const fs::path folder = database_.Folder() + "/demo";
  fs::create_directory(out);
  fs::create_directory(folder);
  const std::string demo = folder / "demo.db";
  ASSERT_EQ(test::RunCommand({"demo", "--output", demo, "--employees", "5"}).code, 0);
  fs::permissions(database_.Folder(), fs::perms(0755));
  fs::permissions(out, fs::perms(0777));
  fs::permissions(demo, fs::perms(0444));
  fs::permissions(folder, fs::perms(0555));
  const auto read = [&] { return (std::ostringstream() << std::ifstream(demo).rdbuf()).str(); };
  const std::string before = read();
  const auto result =
      test::RunCommand({"export", "--database", demo, "--spreadsheet", "DEMO", "--output", "Demo.xls"},
                       {.folder = out, .unprivileged = true});
  const bool is_same = read() == before;
  fs::permissions(folder, fs::perms(0755));
  if (result.code == 127) GTEST_SKIP() << "another user cannot run the command";
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(is_same);
  EXPECT_GT(fs::file_size(out / "Demo.xls"), 10'000u);
}

TEST_F(InterruptTest, TwoRunsOfOneWorkstationDoNotDisturbEachOther) {
  const auto living = StartEndless("READING");
  const auto other = Export("QUICK");
  EXPECT_EQ(other.code, 0) << other.err;
  EXPECT_EQ(Export("FAILING").code, 1);
  living->Signal(SIGINT);
  EXPECT_EQ(living->Wait().code, 130);
}

TEST_F(InterruptTest, ASignalAtTheQuestionEndsTheRun) {
  test::Command command(Arguments("QUICK"), {.folder = database_.Folder(), .terminal = true});
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const auto asked = Clock::now();
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait().code, 130);
  EXPECT_LT(Clock::now() - asked, std::chrono::seconds(1));
  EXPECT_EQ(database_.FileNames(), (Names{"Out.xls", "test.db"}));
}

TEST_F(InterruptTest, NoCoreDumpCarriesThePayroll) {
  const auto command = StartEndless("READING");
  std::ifstream limits("/proc/" + std::to_string(command->Pid()) + "/limits");
  const std::string text = (std::ostringstream() << limits.rdbuf()).str();
  if (text.empty()) GTEST_SKIP() << "the limits of the process cannot be read";
  const std::size_t line = text.find("Max core file size");
  ASSERT_NE(line, std::string::npos);
  std::istringstream fields(text.substr(line + std::string("Max core file size").size()));
  std::string soft;
  std::string hard;
  fields >> soft >> hard;
  EXPECT_EQ(soft, "0");
  EXPECT_EQ(hard, "0");
}

}  // namespace
}  // namespace excelexp
