#pragma once

#include <sys/types.h>

#include <cstddef>

namespace excelexp {

/// The system calls through which a file is published, one virtual each, with their usual results (-1 and
/// errno on failure), so that a test can let any of them fail. Names are relative to an open folder: a folder
/// that is renamed meanwhile stays the same folder.
class FileCalls {
 public:
  virtual ~FileCalls() = default;
  virtual int OpenFolder(const char* path);
  virtual int Create(int folder, const char* name);  ///< exclusively, mode 0600, never through a link
  virtual int Lock(int file);                        ///< exclusive, without waiting
  virtual ssize_t Write(int file, const void* bytes, std::size_t size);
  virtual int SetOwner(int file, uid_t user, gid_t group);
  virtual int SetMode(int file, mode_t mode);
  virtual int Sync(int file_or_folder);
  virtual int Close(int file);
  virtual int Rename(int folder, const char* from, const char* to);
  virtual int Exchange(int folder, const char* one, const char* other);  ///< swaps two names at once
  virtual int Unlink(int folder, const char* name);
};

}  // namespace excelexp
