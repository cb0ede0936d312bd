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

using Clock = std::chrono::steady_clock;
using ::testing::HasSubstr;

constexpr int kRecords = 3;

/// QUICK writes a file. Of READING and WRITING, the first item has records and the second one never ends, in
/// a query or in the analysis engine.
std::string Script() {
  using namespace test;
  return "PRAGMA journal_mode = WAL;\n" +
         PayrollScript(SetupView("NoRecords", 0) + SetupView("Records", kRecords) +
                       EndlessSetupView("Endless") + Spreadsheet("QUICK", "Quick") +
                       Worksheet(1, "QUICK", "Staff") + FinancialItem(1, 1, 1, "R1", "NoRecords") +
                       Spreadsheet("READING", "Out") + Worksheet(2, "READING", "Staff") +
                       FinancialItem(2, 2, 1, "R2", "Records") + FinancialItem(3, 2, 2, "R3", "NoRecords") +
                       Spreadsheet("WRITING", "Out") + Worksheet(3, "WRITING", "Staff") +
                       FinancialItem(4, 3, 1, "R4", "Records") + FinancialItem(5, 3, 2, "R5", "Endless") +
                       EndlessOptions(3));
}

class InterruptTest : public ::testing::Test {
 protected:
  InterruptTest() { std::ofstream(Output()) << "old"; }

  std::string Output() const { return database_.Folder() + "/Out.xls"; }

  std::vector<std::string> Arguments(const std::string& id) const {
    return {"export", "--database", database_.File(), "--spreadsheet", id, "--workstation", "10.0.0.7"};
  }

  /// Starts a run and returns once the records of its first item are there.
  std::unique_ptr<test::Command> StartEndless(const std::string& id) {
    const std::size_t before = Keys().size();
    auto command =
        std::make_unique<test::Command>(Arguments(id), test::CommandOptions{.folder = database_.Folder()});
    for (int i = 0; i < 2000 && Keys().size() == before; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(Keys().size(), before + kRecords);
    return command;
  }

  std::multiset<std::string> Keys() const {
    std::multiset<std::string> keys;
    for (const auto& row : SqliteWriter(database_.File()).Rows("SELECT AnlysIPAddress FROM AnlysItemRecord"))
      keys.insert(std::get<std::string>(row[0]));
    return keys;
  }

  std::string OldFile() const { return (std::ostringstream() << std::ifstream(Output()).rdbuf()).str(); }

  /// The folder must not show anything of the run beside the database.
  std::set<std::string> Files() const {
    std::set<std::string> names = database_.FileNames();
    std::erase_if(names, [](const std::string& name) { return name.starts_with("test.db"); });
    return names;
  }

  test::TestDatabase database_{Script()};
};

TEST_F(InterruptTest, ASignalEndsTheRunWithinASecondAndLeavesNothing) {
  for (const std::string& id : std::vector<std::string>{"READING", "WRITING"}) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
      const auto command = StartEndless(id);
      const auto asked = Clock::now();
      command->Signal(signal);
      const auto result = command->Wait();
      EXPECT_LT(Clock::now() - asked, std::chrono::seconds(1)) << id;
      EXPECT_EQ(result.code, 130) << id;
      EXPECT_EQ(result.err, "excelexp: interrupted, nothing was written\n");
      EXPECT_EQ(result.out, "");
      EXPECT_TRUE(Keys().empty());
      EXPECT_EQ(Files(), std::set<std::string>{"Out.xls"});
      EXPECT_EQ(OldFile(), "old");
    }
  }
}

TEST_F(InterruptTest, WhatAKilledRunLeftTheNextOneRemoves) {
  const auto killed = StartEndless("WRITING");
  killed->Signal(SIGKILL);
  EXPECT_EQ(killed->Wait().code, -SIGKILL);
  EXPECT_EQ(Keys().size(), kRecords);
  const auto next = test::RunCommand(Arguments("QUICK"), {.folder = database_.Folder()});
  EXPECT_EQ(next.code, 0) << next.err;
  EXPECT_TRUE(Keys().empty());
}

TEST_F(InterruptTest, TwoRunsAtOnceKeepTheirRecordsApart) {
  SqliteWriter(database_.File())
      .ExecuteScript(
          "INSERT INTO AnlysItemRecord (AnlysProjectId, AnlysIPAddress) VALUES ('P', '10.0.0.7_1')");
  const auto living = StartEndless("READING");
  const auto keys = Keys();
  const auto other = test::RunCommand(Arguments("QUICK"), {.folder = database_.Folder()});
  EXPECT_EQ(other.code, 0) << other.err;
  EXPECT_EQ(Keys(), keys);
  living->Signal(SIGINT);
  EXPECT_EQ(living->Wait().code, 130);
  EXPECT_EQ(Keys(), std::multiset<std::string>{"10.0.0.7_1"});
}

TEST_F(InterruptTest, AFailedRunRemovesTheRecordsOfTheItemsBefore) {
  SqliteWriter(database_.File()).ExecuteScript("DROP VIEW Endless");
  const auto result = test::RunCommand(Arguments("WRITING"), {.folder = database_.Folder()});
  EXPECT_EQ(result.code, 1);
  EXPECT_TRUE(Keys().empty());
  EXPECT_EQ(OldFile(), "old");
}

TEST_F(InterruptTest, ASignalAtTheQuestionEndsTheRun) {
  test::Command command(Arguments("QUICK"), {.folder = database_.Folder(), .terminal = true});
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const auto asked = Clock::now();
  command.Signal(SIGINT);
  EXPECT_EQ(command.Wait().code, 130);
  EXPECT_LT(Clock::now() - asked, std::chrono::seconds(1));
  EXPECT_EQ(Files(), std::set<std::string>{"Out.xls"});
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
