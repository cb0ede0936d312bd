#include "platform/spreadsheet/FilePublisher.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include "platform/spreadsheet/FileCalls.h"
#include "platform/spreadsheet/SpreadsheetError.h"

namespace excelexp {
namespace {

constexpr std::string_view kTempSuffix = ".tmp";
constexpr std::size_t kRandomDigits = 16;
/// Bytes of the target's name that its temporary names carry, so that they stay below the usual limit of 255.
constexpr std::size_t kMaxNameInTemp = 200;
constexpr int kNameAttempts = 16;
constexpr uid_t kKeepUser = static_cast<uid_t>(-1);

std::string TempPrefix(std::string_view name) {
  std::size_t length = std::min(name.size(), kMaxNameInTemp);
  while (length < name.size() && length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) {
    --length;  // file systems that insist on UTF-8 take no half characters
  }
  return "." + std::string(name.substr(0, length)) + ".";
}

std::string RandomDigits() {
  std::uint64_t random = 0;
  while (getrandom(&random, sizeof random, 0) != static_cast<ssize_t>(sizeof random)) {
    if (errno != EINTR) {
      throw SpreadsheetError("no random numbers for the name of a temporary file: " +
                             std::string(strerrordesc_np(errno)));
    }
  }
  std::string digits(kRandomDigits, '0');
  for (char& digit : digits) {
    digit = "0123456789abcdef"[random & 15];
    random >>= 4;
  }
  return digits;
}

bool IsTempName(std::string_view name, std::string_view prefix) {
  if (name.size() != prefix.size() + kRandomDigits + kTempSuffix.size()) return false;
  const std::string_view digits = name.substr(prefix.size(), kRandomDigits);
  return name.starts_with(prefix) && name.ends_with(kTempSuffix) &&
         digits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

bool LocksAreUnknown(int error) {
  return error != EWOULDBLOCK && error != EINTR;
}

/// A folder that cannot be synced (some network and user-space file systems) has nothing to sync.
bool SyncIsUnknown(int error) {
  return error == EINVAL || error == EOPNOTSUPP || error == ENOSYS;
}

bool ExchangeIsUnknown(int error) {
  return SyncIsUnknown(error) || error == EPERM;
}

/// One publication: its steps in the order of the public functions. The destructor takes back what was not
/// finished.
class Publication {
 public:
  Publication(const std::string& target, FileCalls& calls) : target_(target), calls_(calls) {}
  Publication(const Publication&) = delete;
  Publication& operator=(const Publication&) = delete;

  ~Publication() {
    if (!temp_.empty()) calls_.Unlink(folder_, temp_.c_str());
    for (const int file : {file_, lock_, folder_}) {
      if (file >= 0) close(file);
    }
  }

  void Run(std::string_view bytes) {
    OpenFolder();
    InspectOldFile();
    RemoveLeftovers();
    CreateTemp();
    WriteAll(bytes);
    TakeOverOwnerAndMode();
    FinishTemp();
    if (old_) {
      ReplaceOldFile();
    } else {
      GiveName();
    }
  }

 private:
  [[noreturn]] void Fail(const std::string& reason) const {
    throw SpreadsheetError("'" + target_ + "' was not written: " + reason);
  }
  [[noreturn]] void FailCall(const std::string& step, int error) const {
    Fail(step + " failed: " + strerrordesc_np(error));
  }
  void Check(int result, const std::string& step) const {
    if (result < 0) FailCall(step, errno);
  }

  struct stat Status(int file) const {
    struct stat status {};
    Check(fstat(file, &status), "looking at the temporary file");
    return status;
  }

  void OpenFolder() {
    if (target_.find('\0') != std::string::npos) Fail("its name contains a zero byte");
    const std::size_t slash = target_.rfind('/');
    name_ = slash == std::string::npos ? target_ : target_.substr(slash + 1);
    if (name_.empty() || name_ == "." || name_ == "..") Fail("it is not the name of a file");
    const std::string path = slash == std::string::npos ? "." : slash == 0 ? "/" : target_.substr(0, slash);
    folder_ = calls_.OpenFolder(path.c_str());
    Check(folder_, "opening the folder '" + path + "'");
  }

  void InspectOldFile() {
    struct stat status {};
    if (fstatat(folder_, name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) < 0) {
      if (errno != ENOENT) FailCall("looking at the target", errno);
      return;
    }
    if (S_ISLNK(status.st_mode)) RefuseLink();
    if (S_ISDIR(status.st_mode)) Fail("it is a folder");
    if (!S_ISREG(status.st_mode)) Fail("it is not a regular file");
    Check(faccessat(folder_, name_.c_str(), W_OK, AT_EACCESS), "permission to replace the existing file");
    old_ = status;
  }

  [[noreturn]] void RefuseLink() const {
    char points_to[4096];
    const ssize_t length = readlinkat(folder_, name_.c_str(), points_to, sizeof points_to);
    Fail("it is a symbolic link" +
         (length < 0 ? std::string()
                     : " to '" + std::string(points_to, static_cast<std::size_t>(length)) + "'") +
         "; name the file itself");
  }

  /// Whatever goes wrong here concerns old rubbish, so the publication goes on.
  void RemoveLeftovers() {
    const int listed = openat(folder_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (listed < 0) return;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(fdopendir(listed), closedir);
    if (!entries) {
      close(listed);
      return;
    }
    const std::string prefix = TempPrefix(name_);
    while (const dirent* entry = readdir(entries.get())) {
      if (IsTempName(entry->d_name, prefix)) RemoveIfAbandoned(entry->d_name);
    }
  }

  void RemoveIfAbandoned(const char* name) {
    constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int file = openat(folder_, name, O_RDWR | kFlags);
    if (file < 0) file = openat(folder_, name, O_RDONLY | kFlags);
    if (file < 0) return;
    if (calls_.Lock(file) == 0) calls_.Unlink(folder_, name);
    close(file);
  }

  void CreateTemp() {
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
      temp_ = TempPrefix(name_) + RandomDigits() + std::string(kTempSuffix);
      file_ = calls_.Create(folder_, temp_.c_str());
      if (file_ >= 0 && HoldTemp()) return;
      const int error = errno;
      if (file_ < 0) temp_.clear();
      if (file_ < 0 && error != EEXIST) FailCall("creating a temporary file in its folder", error);
      Discard();
    }
    Fail("no temporary file in its folder could be kept");
  }

  /// Marks the temporary file as that of a live process; false when another run took it for a leftover in the
  /// moment before. The mark sits on a second descriptor: it must outlive the close whose error counts.
  bool HoldTemp() {
    if (calls_.Lock(file_) < 0 && !LocksAreUnknown(errno)) return false;
    if (Status(file_).st_nlink == 0) return false;
    lock_ = fcntl(file_, F_DUPFD_CLOEXEC, 0);
    Check(lock_, "holding the temporary file");
    return true;
  }

  void Discard() {
    if (!temp_.empty()) calls_.Unlink(folder_, temp_.c_str());
    if (file_ >= 0) close(file_);
    temp_.clear();
    file_ = -1;
  }

  void WriteAll(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = calls_.Write(file_, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) FailCall("writing a temporary file in its folder", written == 0 ? ENOSPC : errno);
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  /// A group that cannot be kept must not hand the group's rights to another group.
  void TakeOverOwnerAndMode() {
    if (!old_) return;
    mode_t mode = old_->st_mode & 0777;
    const struct stat created = Status(file_);
    const bool other_group = old_->st_gid != created.st_gid;
    if (old_->st_uid != created.st_uid || other_group) {
      const bool kept = calls_.SetOwner(file_, old_->st_uid, old_->st_gid) == 0 ||
                        calls_.SetOwner(file_, kKeepUser, old_->st_gid) == 0;
      if (!kept && other_group) mode &= ~static_cast<mode_t>(070);
    }
    Check(calls_.SetMode(file_, mode), "setting the mode of a temporary file");
  }

  void FinishTemp() {
    Check(calls_.Sync(file_), "syncing a temporary file in its folder");
    Check(calls_.Close(std::exchange(file_, -1)), "closing a temporary file in its folder");
  }

  void GiveName() {
    Check(calls_.Rename(folder_, temp_.c_str(), name_.c_str()), "renaming the temporary file");
    temp_.clear();
    if (SyncFolder()) return;
    const int error = errno;
    if (NameIsOurs()) calls_.Unlink(folder_, name_.c_str());
    FailCall("syncing its folder", error);
  }

  /// The names change places, so that the old file can come back if the folder cannot be synced. Where the
  /// file system cannot do that, a plain rename replaces the old file for good.
  void ReplaceOldFile() {
    if (calls_.Exchange(folder_, temp_.c_str(), name_.c_str()) < 0) {
      if (!ExchangeIsUnknown(errno)) FailCall("renaming the temporary file", errno);
      Check(calls_.Rename(folder_, temp_.c_str(), name_.c_str()), "renaming the temporary file");
      temp_.clear();
      if (!SyncFolder()) FailCall("the new file stands, but syncing its folder", errno);
      return;
    }
    if (!SyncFolder()) TakeOldFileBack("syncing its folder", errno);
    if (calls_.Unlink(folder_, temp_.c_str()) < 0 && errno != ENOENT) {
      TakeOldFileBack("removing the replaced file", errno);
    }
    temp_.clear();
  }

  [[noreturn]] void TakeOldFileBack(const std::string& step, int error) {
    if (NameIsOurs() && calls_.Exchange(folder_, temp_.c_str(), name_.c_str()) < 0) {
      const std::string old_name = std::exchange(temp_, "");
      FailCall("the new file stands and the old one is '" + old_name + "' beside it, but " + step, error);
    }
    FailCall(step, error);
  }

  /// Whether the target's name still shows what this run wrote, not what another run published since.
  bool NameIsOurs() const {
    struct stat ours {};
    struct stat named {};
    return fstat(lock_, &ours) == 0 && fstatat(folder_, name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           ours.st_ino == named.st_ino && ours.st_dev == named.st_dev;
  }

  /// False, with errno, where the folder could be synced and was not.
  bool SyncFolder() const { return calls_.Sync(folder_) == 0 || SyncIsUnknown(errno); }

  const std::string target_;
  FileCalls& calls_;
  std::string name_;
  std::string temp_;  ///< what the destructor removes
  std::optional<struct stat> old_;
  int folder_ = -1;
  int file_ = -1;
  int lock_ = -1;  ///< a second descriptor of the temporary file
};

}  // namespace

void PublishFile(const std::string& target, std::string_view bytes, FileCalls& calls) {
  Publication(target, calls).Run(bytes);
}

void PublishFile(const std::string& target, std::string_view bytes) {
  FileCalls calls;
  PublishFile(target, bytes, calls);
}

}  // namespace excelexp
