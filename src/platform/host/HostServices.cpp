#include "platform/host/HostServices.h"

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string_view>

namespace excelexp {
namespace {

DateTime FromBrokenDown(const std::tm& time, int millisecond) {
  return EncodeDateTime({time.tm_year + 1900, time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min,
                         time.tm_sec < 60 ? time.tm_sec : 59, millisecond});
}

std::optional<std::time_t> SourceDateEpoch() {
  const char* text = std::getenv("SOURCE_DATE_EPOCH");
  if (text == nullptr) return std::nullopt;
  const std::string_view digits = text;
  std::int64_t seconds = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), seconds);
  if (digits.empty() || result.ec != std::errc{} || result.ptr != digits.data() + digits.size())
    return std::nullopt;
  return static_cast<std::time_t>(seconds);
}

}  // namespace

bool HostServices::FileExists(const std::string& file) {
  std::error_code error;
  return std::filesystem::exists(file, error);
}

DateTime HostServices::Now() {
  std::tm broken_down{};
  if (const auto epoch = SourceDateEpoch()) {
    gmtime_r(&*epoch, &broken_down);
    return FromBrokenDown(broken_down, 0);
  }
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  localtime_r(&seconds, &broken_down);
  const auto since_second = now - std::chrono::system_clock::from_time_t(seconds);
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(since_second).count();
  return FromBrokenDown(broken_down, static_cast<int>(milliseconds < 0 ? 0 : milliseconds % 1000));
}

bool HostServices::OnProgress(const Progress& /*progress*/) {
  return true;
}

}  // namespace excelexp
