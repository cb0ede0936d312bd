#include "demo/DemoDatabase.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "demo/DemoCodes.h"
#include "demo/DemoDefinitions.h"
#include "demo/DemoPayroll.h"
#include "demo/DemoPeople.h"
#include "platform/database/SqliteWriter.h"

namespace excelexp {
namespace {

namespace fs = std::filesystem;

constexpr int kMostEmployees = 100'000;
constexpr std::int64_t kTicksPerReport = 500;

[[noreturn]] void FailExists(const std::string& file) {
  throw std::system_error(std::make_error_code(std::errc::file_exists), "the demo database " + file);
}

/// A new name beside the target, removed with its journal unless published.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::string& target) : target_(target) {
    std::random_device random;
    std::array<char, 24> tail{};
    std::snprintf(tail.data(), tail.size(), ".part-%08x", random());
    name_ = target + tail.data();
  }
  ~UnfinishedFile() {
    std::error_code ignored;
    fs::remove(name_, ignored);
    fs::remove(name_ + "-journal", ignored);
  }
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  const std::string& Name() const { return name_; }

  /// Gives the finished file its name in one step. A second name for the file fails when the target came
  /// into being meanwhile, which a rename would replace.
  void Publish(bool overwrite) {
    std::error_code no_second_name;
    if (!overwrite) fs::create_hard_link(name_, target_, no_second_name);
    if (no_second_name == std::errc::file_exists) FailExists(target_);
    if (overwrite || no_second_name) fs::rename(name_, target_);
  }

 private:
  std::string target_;
  std::string name_;
};

/// Counts the steps of the work and reports every so often.
class Progress {
 public:
  Progress(const DemoOptions& options)
      : report_(options.progress), total_(std::int64_t{options.employees} * 12) {}
  void Tick() {
    if (report_ && (++done_ % kTicksPerReport == 0 || done_ == total_)) report_(done_, total_);
  }

 private:
  const std::function<void(std::int64_t, std::int64_t)>& report_;
  std::int64_t done_ = 0;
  std::int64_t total_;
};

void Fill(SqliteWriter& writer, const DemoOptions& options) {
  // An analysis engine that stores its records commits them by the hundred thousand: pages of 16 KB halve
  // what that costs. Nobody reads the file yet: changed pages may leave memory before the commit, and the
  // journal need not outlive a crash.
  writer.ExecuteScript("PRAGMA page_size = 16384; PRAGMA cache_spill = ON; PRAGMA journal_mode = MEMORY;");
  writer.Transaction([&] {
    writer.ExecuteScript(kDemoSchemaSql);
    WriteDemoCodes(writer);
    const std::vector<DemoEmployee> employees = DrawDemoEmployees(options.seed, options.employees);
    WriteDemoPeople(writer, options.seed, employees);
    Progress progress(options);
    WriteDemoPayroll(writer, options.seed, employees, [&progress] { progress.Tick(); });
    WriteDemoTimesheets(writer, options.seed, employees);
    WriteDemoLeave(writer, options.seed, employees);
    WriteDemoDefinitions(writer);
  });
}

}  // namespace

void WriteDemoDatabase(const std::string& file, const DemoOptions& options) {
  if (options.employees < 1 || options.employees > kMostEmployees) {
    throw std::invalid_argument("the number of employees is 1 to 100,000, not " +
                                std::to_string(options.employees));
  }
  if (!options.overwrite && fs::exists(fs::symlink_status(file))) FailExists(file);
  UnfinishedFile unfinished(file);
  {
    SqliteWriter writer(unfinished.Name(), SqliteWriter::Mode::kCreate);
    Fill(writer, options);
  }
  unfinished.Publish(options.overwrite);
}

}  // namespace excelexp
