#include "platform/analysis/AnalysisRun.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>
#include <stdexcept>

#include "platform/database/SqliteWriter.h"
#include "platform/database/TestDatabase.h"
#include "platform/host/ProcessIdentity.h"

namespace excelexp {
namespace {

constexpr char kSchema[] =
    "CREATE TABLE AnlysItemRecord (AnlysProjectId varchar(40), AnlysIPAddress varchar(80));";

class AnalysisRunTest : public ::testing::Test {
 protected:
  void AddRecord(const std::string& key) {
    const std::vector<SqlValue> values = {key};
    SqliteWriter(database_.File()).Execute("INSERT INTO AnlysItemRecord VALUES ('P', ?1)", values);
  }

  std::set<std::string> Keys() {
    std::set<std::string> keys;
    for (const auto& row : SqliteWriter(database_.File()).Rows("SELECT AnlysIPAddress FROM AnlysItemRecord"))
      keys.insert(std::get<std::string>(row[0]));
    return keys;
  }

  /// A process with a run of its own and a record; it lives until it is killed. The key comes back once the
  /// record is there.
  pid_t StartRun(std::string& key) {
    int line[2];
    if (pipe(line) != 0) throw std::runtime_error("no pipe");
    const pid_t child = fork();
    if (child == 0) {
      const AnalysisRun run(database_.File(), "pc");
      const std::string own_key = run.Address() + "_1";
      AddRecord(own_key);
      if (write(line[1], own_key.data(), own_key.size()) < 0) _exit(1);
      while (true) pause();
    }
    char buffer[200];
    const ssize_t count = read(line[0], buffer, sizeof buffer);
    key.assign(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    close(line[0]);
    close(line[1]);
    return child;
  }

  test::TestDatabase database_{kSchema};
};

TEST_F(AnalysisRunTest, EveryRunHasAnAddressOfItsOwnAndDeletesItsOwnKeysOnly) {
  AnalysisRun first(database_.File(), "10.0.0.7");
  AnalysisRun second(database_.File(), "10.0.0.7");
  EXPECT_TRUE(first.Address().starts_with("10.0.0.7~"));
  EXPECT_NE(first.Address(), second.Address());

  const std::string longer = first.Address() + "0_1";  // another run's address begins with this one's
  for (const std::string& key : {first.Address() + "_1", first.Address() + "_22", second.Address() + "_1",
                                 longer, std::string("10.0.0.7_1"), first.Address()}) {
    AddRecord(key);
  }
  first.Finish();
  EXPECT_EQ(Keys(), (std::set<std::string>{second.Address() + "_1", longer, "10.0.0.7_1", first.Address()}));
}

TEST_F(AnalysisRunTest, RecordsGoOnEveryWayOut) {
  const auto fail = [this] {
    const AnalysisRun run(database_.File(), "pc");
    AddRecord(run.Address() + "_1");
    throw std::runtime_error("the export failed");
  };
  EXPECT_THROW(fail(), std::runtime_error);
  EXPECT_TRUE(Keys().empty());
}

TEST_F(AnalysisRunTest, RecordsOfAKilledRunGoAndThoseOfALivingOneStay) {
  std::string killed_key;
  std::string living_key;
  const pid_t killed = StartRun(killed_key);
  const pid_t living = StartRun(living_key);
  AnalysisRun run(database_.File(), "pc");
  EXPECT_EQ(run.RemoveAbandoned(), 0);
  EXPECT_EQ(Keys(), (std::set<std::string>{killed_key, living_key}));

  kill(killed, SIGKILL);
  siginfo_t info{};
  waitid(P_PID, static_cast<id_t>(killed), &info, WEXITED | WNOWAIT);  // its exit status is still there
  EXPECT_EQ(run.RemoveAbandoned(), 1);
  EXPECT_EQ(Keys(), std::set<std::string>{living_key});

  waitpid(killed, nullptr, 0);
  AddRecord(killed_key);
  EXPECT_EQ(run.RemoveAbandoned(), 1);
  EXPECT_EQ(Keys(), std::set<std::string>{living_key});
  kill(living, SIGKILL);
  waitpid(living, nullptr, 0);
}

TEST_F(AnalysisRunTest, RemovesOnlyWhatItCanJudge) {
  const ProcessIdentity self = CurrentProcess();
  ProcessIdentity earlier_boot = self;
  earlier_boot.boot ^= 1;
  ProcessIdentity other_machine = earlier_boot;
  other_machine.machine ^= 1;
  const std::string gone = ToText(earlier_boot);
  const std::set<std::string> kept = {
      "pc_1",
      "pc~_1",
      "pc~" + ToText(self) + "-1_1",
      "pc~" + ToText(other_machine) + "-1_1",
      "pc~" + gone + "_1",  // no number of a run
      "pc~" + gone + "-1",  // no ordering
      "pc~" + gone + "-1_x",
      "pc~" + gone + "-1_1 ",
      "two words~" + gone + "-1_1",
      "~" + gone + "-1_1",
  };
  for (const std::string& key : kept) AddRecord(key);
  AddRecord("10.0.0.7:80~" + gone + "-12_345");
  AddRecord("a_b~" + gone + "-1_1");
  AnalysisRun run(database_.File(), "pc");
  EXPECT_EQ(run.RemoveAbandoned(), 2);
  EXPECT_EQ(Keys(), kept);
}

TEST_F(AnalysisRunTest, ALockedDatabaseIsAnErrorAndWhatStaysGoesLater) {
  auto run = std::make_unique<AnalysisRun>(database_.File(), "pc");
  AddRecord(run->Address() + "_1");
  SqliteWriter other(database_.File());
  other.Transaction([&] { EXPECT_THROW(run->Finish(20), DatabaseError); });
  EXPECT_EQ(Keys().size(), 1u);
  run.reset();
  EXPECT_TRUE(Keys().empty());
}

TEST(AnalysisRunDatabaseTest, ADatabaseWithoutTheTableIsLeftAlone) {
  const test::TestDatabase database("CREATE TABLE Other (Id integer);");
  AnalysisRun run(database.File(), "pc");
  EXPECT_EQ(run.RemoveAbandoned(), 0);
  EXPECT_NO_THROW(run.Finish());
}

TEST(WorkstationAddressTest, TakesOnlyWhatIsSafeInADataKey) {
  for (const char* good : {"pc", "10.0.0.7", "fe80::1", "A-b_c.9"}) EXPECT_TRUE(IsWorkstationAddress(good));
  EXPECT_TRUE(IsWorkstationAddress(std::string(39, 'x')));
  for (const char* bad : {"", "a~b", "a b", "a'b", "a%", "ä", "a/b", "a\n"})
    EXPECT_FALSE(IsWorkstationAddress(bad));
  EXPECT_FALSE(IsWorkstationAddress(std::string(40, 'x')));
  EXPECT_TRUE(IsWorkstationAddress(DefaultWorkstation()));
  EXPECT_THROW(AnalysisRun("x.db", "a~b"), std::invalid_argument);
}

TEST(ProcessIdentityTest, ReadsBackItsOwnTextOnly) {
  const ProcessIdentity process = {0xFFFFFFFF, 0xA, 0, 4194304, 0x123456789ABC};
  EXPECT_EQ(ToText(process), "ffffffff-a-0-400000-123456789abc");
  EXPECT_EQ(ParseProcessIdentity(ToText(process)), process);
  for (const char* text : {"", "1-2-3-4", "1-2-3-4-5-6", "01-2-3-4-5", "1-2-3-4-A", "1-2-3-4-", "-1-2-3-4-5",
                           "100000000-2-3-4-5", "1-2-3-4-10000000000000000", " 1-2-3-4-5"}) {
    EXPECT_FALSE(ParseProcessIdentity(text)) << text;
  }
}

TEST(ProcessIdentityTest, JudgesByMachineBootNamespaceAndStartTime) {
  const ProcessIdentity self = CurrentProcess();
  EXPECT_NE(self.boot, 0u);
  EXPECT_NE(self.start_time, 0u);
  const auto with = [&](auto change) {
    ProcessIdentity process = self;
    change(process);
    return HasEnded(process);
  };
  EXPECT_FALSE(HasEnded(self));
  EXPECT_TRUE(with([](ProcessIdentity& p) { ++p.boot; }));
  EXPECT_FALSE(with([](ProcessIdentity& p) { p.boot = 0; }));
  EXPECT_FALSE(with([](ProcessIdentity& p) { ++p.boot, ++p.machine; }));
  EXPECT_TRUE(with([](ProcessIdentity& p) { ++p.start_time; }));
  EXPECT_FALSE(with([](ProcessIdentity& p) { p.start_time = 0; }));
  EXPECT_FALSE(with([](ProcessIdentity& p) { ++p.start_time, ++p.pid_namespace; }));
  EXPECT_TRUE(with([](ProcessIdentity& p) { p.pid = 0x7FFFFFFF; }));  // beyond the largest number there is
  for (const std::uint32_t no_process : {0u, 0x80000000u, 0xFFFFFFFFu})
    EXPECT_FALSE(with([&](ProcessIdentity& p) { p.pid = no_process; }));
  EXPECT_FALSE(with([](ProcessIdentity& p) { p.pid = 1, p.start_time = 0; }));
}

}  // namespace
}  // namespace excelexp
