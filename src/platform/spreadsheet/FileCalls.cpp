#include "platform/spreadsheet/FileCalls.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace excelexp {

int FileCalls::OpenFolder(const char* path) {
  return open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int FileCalls::Create(int folder, const char* name) {
  return openat(folder, name, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
}

int FileCalls::Lock(int file) {
  return flock(file, LOCK_EX | LOCK_NB);
}

ssize_t FileCalls::Write(int file, const void* bytes, std::size_t size) {
  return write(file, bytes, size);
}

int FileCalls::SetOwner(int file, uid_t user, gid_t group) {
  return fchown(file, user, group);
}

int FileCalls::SetMode(int file, mode_t mode) {
  return fchmod(file, mode);
}

int FileCalls::Sync(int file_or_folder) {
  return fsync(file_or_folder);
}

int FileCalls::Close(int file) {
  return close(file);
}

int FileCalls::Rename(int folder, const char* from, const char* to) {
  return renameat(folder, from, folder, to);
}

int FileCalls::Exchange(int folder, const char* one, const char* other) {
  return renameat2(folder, one, folder, other, RENAME_EXCHANGE);
}

int FileCalls::Unlink(int folder, const char* name) {
  return unlinkat(folder, name, 0);
}

}  // namespace excelexp
