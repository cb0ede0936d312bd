#include "platform/spreadsheet/FilePublisher.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <set>

#include "platform/spreadsheet/FileCalls.h"
#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp {
namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteAll(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

mode_t ModeOf(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

/// Calls `at` before the n-th system call (from 0); it may end the process or make the call fail.
class Interrupted : public FileCalls {
 public:
  Interrupted(int n, std::function<bool()> at) : left_(n), at_(std::move(at)) {}
  int OpenFolder(const char* path) override {
    return Fails("open folder") ? -1 : FileCalls::OpenFolder(path);
  }
  int Create(int folder, const char* name) override {
    return Fails("create") ? -1 : FileCalls::Create(folder, name);
  }
  int Lock(int file) override { return Fails("lock") ? -1 : FileCalls::Lock(file); }
  ssize_t Write(int file, const void* bytes, std::size_t size) override {
    return Fails("write") ? -1 : FileCalls::Write(file, bytes, std::min<std::size_t>(size, 3));
  }
  int SetOwner(int file, uid_t user, gid_t group) override {
    return Fails("owner") ? -1 : FileCalls::SetOwner(file, user, group);
  }
  int SetMode(int file, mode_t mode) override { return Fails("mode") ? -1 : FileCalls::SetMode(file, mode); }
  int Sync(int file) override { return Fails("sync") ? -1 : FileCalls::Sync(file); }
  int Close(int file) override {
    const int result = FileCalls::Close(file);
    return Fails("close") ? -1 : result;
  }
  int Rename(int folder, const char* from, const char* to) override {
    return Fails("rename") ? -1 : FileCalls::Rename(folder, from, to);
  }
  int Exchange(int folder, const char* one, const char* other) override {
    return Fails("exchange") ? -1 : FileCalls::Exchange(folder, one, other);
  }
  int Unlink(int folder, const char* name) override {
    return Fails("unlink") ? -1 : FileCalls::Unlink(folder, name);
  }

  std::string failed;  ///< the call that was let fail

 private:
  bool Fails(const char* call) {
    if (left_-- != 0 || !at_()) return false;
    failed = call;
    return true;
  }
  int left_;
  std::function<bool()> at_;
};

class FilePublisher : public ::testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/excelexp-publisher-XXXXXX";
    folder_ = mkdtemp(name);
    target_ = folder_ / "Payroll.xls";
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::set<std::string> Names() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) names.insert(entry.path().filename());
    return names;
  }
  std::set<std::string> OnlyTarget() const { return {target_.filename()}; }

  std::string ErrorOf(const fs::path& target, std::string_view bytes = "new") const {
    try {
      PublishFile(target, bytes);
    } catch (const SpreadsheetError& error) {
      return error.what();
    }
    return "";
  }

  fs::path folder_;
  fs::path target_;
};

TEST_F(FilePublisher, WritesANewFileForItsOwnerOnly) {
  std::string bytes(300000, 'x');
  bytes[7] = '\0';
  PublishFile(target_, bytes);
  EXPECT_EQ(ReadAll(target_), bytes);
  EXPECT_EQ(ModeOf(target_), 0600u);
  EXPECT_EQ(Names(), OnlyTarget());
}

TEST_F(FilePublisher, KeepsTheModeOfTheFileItReplaces) {
  for (const mode_t mode : {0640u, 0600u, 0664u}) {
    WriteAll(target_, "a longer old text");
    chmod(target_.c_str(), mode);
    PublishFile(target_, "new");
    EXPECT_EQ(ReadAll(target_), "new");
    EXPECT_EQ(ModeOf(target_), mode);
  }
  EXPECT_EQ(Names(), OnlyTarget());
}

TEST_F(FilePublisher, WritesARelativeNameAndALongOne) {
  const fs::path before = fs::current_path();
  fs::current_path(folder_);
  PublishFile("plain", "1");
  fs::current_path(before);
  EXPECT_EQ(ReadAll(folder_ / "plain"), "1");
  const std::string longest = std::string(1, 'a') + [] {
    std::string umlauts;
    for (int i = 0; i < 127; ++i) umlauts += "\xC3\xBC";
    return umlauts;
  }();
  ASSERT_EQ(longest.size(), 255u);
  PublishFile(folder_ / longest, "2");
  EXPECT_EQ(ReadAll(folder_ / longest), "2");
}

TEST_F(FilePublisher, RefusesWhatIsNoFileAndSaysWhy) {
  fs::create_directory(folder_ / "folder");
  WriteAll(folder_ / "pointed", "old");
  fs::create_symlink("pointed", folder_ / "link");
  mkfifo((folder_ / "pipe").c_str(), 0600);
  const auto before = Names();
  EXPECT_THAT(ErrorOf(folder_ / "folder"), ::testing::HasSubstr("/folder' was not written: it is a folder"));
  EXPECT_THAT(ErrorOf(folder_ / "link"), ::testing::HasSubstr("it is a symbolic link to 'pointed'"));
  EXPECT_THAT(ErrorOf(folder_ / "pipe"), ::testing::HasSubstr("it is not a regular file"));
  EXPECT_THAT(ErrorOf(folder_ / ""), ::testing::HasSubstr("it is not the name of a file"));
  EXPECT_THAT(ErrorOf(folder_ / ".."), ::testing::HasSubstr("it is not the name of a file"));
  EXPECT_THAT(ErrorOf(folder_ / "no" / "a.xls"),
              ::testing::AllOf(::testing::HasSubstr("opening the folder"),
                               ::testing::HasSubstr("No such file or directory")));
  EXPECT_THAT(ErrorOf(folder_ / std::string(256, 'a')), ::testing::HasSubstr("File name too long"));
  EXPECT_EQ(ReadAll(folder_ / "pointed"), "old");
  EXPECT_EQ(Names(), before);
}

/// The previous file survives a failure of every single system call, and the message names the step.
TEST_F(FilePublisher, ForgivesNoFailureAndLosesNothing) {
  const std::set<std::string> harmless = {"lock", "owner", "exchange"};
  for (const bool replaces : {false, true}) {
    std::set<std::string> failed;
    for (int n = 0;; ++n) {
      fs::remove(target_);
      if (replaces) WriteAll(target_, "old");
      Interrupted calls(n, [] { return (errno = EIO) != 0; });
      std::string message;
      try {
        PublishFile(target_, "the new one", calls);
      } catch (const SpreadsheetError& error) {
        message = error.what();
      }
      if (calls.failed.empty()) break;
      failed.insert(calls.failed);
      if (message.empty()) {
        EXPECT_TRUE(harmless.contains(calls.failed)) << calls.failed;
        EXPECT_EQ(ReadAll(target_), "the new one");
        continue;
      }
      EXPECT_THAT(message, ::testing::EndsWith("failed: Input/output error")) << calls.failed;
      EXPECT_EQ(Names(), replaces ? OnlyTarget() : std::set<std::string>()) << calls.failed;
      if (replaces) {
        EXPECT_EQ(ReadAll(target_), "old") << calls.failed;
      }
    }
    std::set<std::string> expected = {"open folder", "create", "lock", "write", "sync", "close"};
    expected.merge(replaces ? std::set<std::string>{"mode", "exchange", "unlink"}
                            : std::set<std::string>{"rename"});
    EXPECT_EQ(failed, expected);
  }
}

TEST_F(FilePublisher, GoesOnAfterAnInterruptedWrite) {
  Interrupted calls(3, [] { return (errno = EINTR) != 0; });
  PublishFile(target_, "the new one", calls);
  EXPECT_EQ(calls.failed, "write");
  EXPECT_EQ(ReadAll(target_), "the new one");
}

TEST_F(FilePublisher, ReplacesWhereTheFileSystemCannotExchangeNames) {
  struct NoExchange : FileCalls {
    int Exchange(int, const char*, const char*) override { return (errno = EINVAL), -1; }
  } calls;
  WriteAll(target_, "old");
  PublishFile(target_, "new", calls);
  EXPECT_EQ(ReadAll(target_), "new");
  EXPECT_EQ(Names(), OnlyTarget());
}

/// A group's rights must not pass to another group when the old group cannot be kept.
TEST_F(FilePublisher, DropsGroupRightsWithTheGroup) {
  struct NoOwner : FileCalls {
    int SetOwner(int, uid_t, gid_t) override { return (errno = EPERM), -1; }
  } calls;
  if (geteuid() != 0) GTEST_SKIP() << "only root can make a file of another group";
  for (const bool allowed : {true, false}) {
    WriteAll(target_, "old");
    ASSERT_EQ(chown(target_.c_str(), 12345, 23456), 0);
    chmod(target_.c_str(), 0660);
    FileCalls real;
    PublishFile(target_, "new", allowed ? real : calls);
    struct stat status {};
    stat(target_.c_str(), &status);
    EXPECT_EQ(status.st_gid, allowed ? 23456u : getegid());
    EXPECT_EQ(status.st_mode & 0777u, allowed ? 0660u : 0600u);
    fs::remove(target_);
  }
}

/// Runs `work` in a child of its own and returns the wait status.
int InChild(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

TEST_F(FilePublisher, KilledAtAnyMomentShowsTheOldFileOrTheNew) {
  for (const bool replaces : {false, true}) {
    bool finished = false;
    for (int n = 0; !finished; ++n) {
      fs::remove(target_);
      if (replaces) WriteAll(target_, "old");
      finished = WIFEXITED(InChild([&] {
        Interrupted calls(n, [] { return raise(SIGKILL) == 0; });
        PublishFile(target_, "the new one", calls);
      }));
      if (fs::exists(target_) || replaces) {
        EXPECT_THAT(ReadAll(target_), ::testing::AnyOf(replaces ? "old" : "the new one", "the new one")) << n;
      }
      PublishFile(target_, "next");
      EXPECT_EQ(Names(), OnlyTarget()) << n;
      EXPECT_EQ(ReadAll(target_), "next");
    }
  }
}

TEST_F(FilePublisher, LeavesTheTemporaryFileOfALiveRunAlone) {
  int ready[2];
  int go_on[2];
  ASSERT_EQ(pipe(ready) | pipe(go_on), 0);
  const pid_t other = fork();
  if (other == 0) {
    Interrupted calls(4, [&] {  // in the middle of writing
      char byte = 0;
      return write(ready[1], "x", 1) == 1 && read(go_on[0], &byte, 1) < 0;
    });
    PublishFile(target_, "of the slow run", calls);
    _exit(0);
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  WriteAll(folder_ / ".Payroll.xls.0123456789abcdef.tmp", "of a dead run");
  WriteAll(folder_ / ".Payroll.xls.bak.0123456789abcdef.tmp", "of another target");
  PublishFile(target_, "of the fast run");
  EXPECT_EQ(ReadAll(target_), "of the fast run");
  EXPECT_EQ(Names().size(), 3u);
  EXPECT_FALSE(fs::exists(folder_ / ".Payroll.xls.0123456789abcdef.tmp"));
  ASSERT_EQ(write(go_on[1], "x", 1), 1);
  int status = 0;
  waitpid(other, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadAll(target_), "of the slow run");
  for (const int end : {ready[0], ready[1], go_on[0], go_on[1]}) close(end);
}

/// Publishes in a child, which prints the message, if any, into a pipe.
std::string ErrorInChild(const fs::path& target, std::string_view bytes,
                         const std::function<void()>& prepare) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  InChild([&] {
    prepare();
    try {
      PublishFile(target, bytes);
    } catch (const SpreadsheetError& error) {
      (void)!write(ends[1], error.what(), strlen(error.what()));
    }
  });
  close(ends[1]);
  char text[1000];
  const ssize_t length = read(ends[0], text, sizeof text);
  close(ends[0]);
  return std::string(text, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
}

TEST_F(FilePublisher, FileSizeLimitReached) {
  WriteAll(target_, "old");
  const std::string message = ErrorInChild(target_, std::string(100000, 'x'), [] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{50000, 50000};
    setrlimit(RLIMIT_FSIZE, &limit);
  });
  EXPECT_THAT(message, ::testing::HasSubstr("writing a temporary file in its folder failed: File too large"));
  EXPECT_EQ(ReadAll(target_), "old");
  EXPECT_EQ(Names(), OnlyTarget());
}

TEST_F(FilePublisher, FullDisk) {
  const fs::path disk = folder_ / "disk";
  fs::create_directory(disk);
  if (mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=64k") != 0) GTEST_SKIP() << "mounting is not permitted";
  WriteAll(disk / "a.xls", "old");
  EXPECT_THAT(ErrorOf(disk / "a.xls", std::string(100000, 'x')),
              ::testing::HasSubstr("No space left on device"));
  EXPECT_EQ(ReadAll(disk / "a.xls"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(disk), {}), 1);
  umount(disk.c_str());
}

TEST_F(FilePublisher, ReadOnlyFolderAndReadOnlyFile) {
  const auto as_nobody = [] {
    if (geteuid() == 0 && setresuid(65534, 65534, 65534) != 0) _exit(1);
  };
  WriteAll(target_, "old");
  chmod(target_.c_str(), 0666);
  chmod(folder_.c_str(), 0555);
  EXPECT_THAT(ErrorInChild(target_, "new", as_nobody),
              ::testing::HasSubstr("creating a temporary file in its folder failed: Permission denied"));
  chmod(target_.c_str(), 0444);
  chmod(folder_.c_str(), 0777);
  EXPECT_THAT(ErrorInChild(target_, "new", as_nobody),
              ::testing::HasSubstr("permission to replace the existing file failed: Permission denied"));
  EXPECT_EQ(ReadAll(target_), "old");
  EXPECT_EQ(Names(), OnlyTarget());
  chmod(folder_.c_str(), 0700);
}

}  // namespace
}  // namespace excelexp
