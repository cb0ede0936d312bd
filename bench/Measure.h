#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace excelexp {

/// A folder of its own under the temporary folder, gone with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

/// The bytes by which the peak of resident memory rises above the start of `work`.
std::int64_t PeakBytesHere(const std::function<void()>& work);

/// The same in a process of its own; -1 when the work fails there.
std::int64_t PeakBytes(const std::function<void()>& work);

}  // namespace excelexp
