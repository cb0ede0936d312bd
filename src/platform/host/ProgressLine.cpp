#include "platform/host/ProgressLine.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "platform/host/Utf8.h"

namespace excelexp {
namespace {

constexpr int kBarWidth = 20;
constexpr double kFirstEstimateSeconds = 1.0;  // before that an estimate jumps about
constexpr double kFirstEstimateShare = 0.02;

double ShareOf(const Progress& progress) {
  if (progress.worksheets <= 0) return 0.0;
  const double within =
      progress.entities > 0 ? static_cast<double>(progress.entity) / progress.entities : 0.0;
  return std::clamp((progress.worksheet - 1 + within) / progress.worksheets, 0.0, 1.0);
}

std::string Bar(double share) {
  const int filled = static_cast<int>(share * kBarWidth);
  return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "]";
}

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// Cut after `width` characters; wide characters count as one.
std::string Cut(const std::string& text, int width) {
  int characters = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!IsContinuation(text[i]) && ++characters > width) return text.substr(0, i);
  }
  return text;
}

}  // namespace

std::string ProgressLine::Text(const Progress& progress, double seconds, int width) {
  share_ = std::max(share_, ShareOf(progress));
  char percent[8];
  std::snprintf(percent, sizeof percent, " %3d%%", static_cast<int>(share_ * 100));
  std::string line = Bar(share_) + percent + "  worksheet " + std::to_string(progress.worksheet) + " of " +
                     std::to_string(progress.worksheets);
  if (progress.entities > 0)
    line += ", " + std::to_string(progress.entity) + " of " + std::to_string(progress.entities);
  if (seconds >= kFirstEstimateSeconds && share_ >= kFirstEstimateShare)
    line += ", " + DurationText(seconds * (1 - share_) / share_) + " left";
  if (!progress.worksheet_name.empty()) line += ": " + TerminalText(progress.worksheet_name);
  return Cut(line, width);
}

std::string DurationText(double seconds) {
  const auto total = std::lround(std::clamp(seconds, 0.0, 359999.0));
  char text[24];
  if (total < 3600) {
    std::snprintf(text, sizeof text, "%ld:%02ld", total / 60, total % 60);
  } else {
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", total / 3600, total / 60 % 60, total % 60);
  }
  return text;
}

std::string TerminalText(std::string_view text) {
  std::string shown = ToUtf8(text);
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const auto byte = static_cast<unsigned char>(shown[i]);
    if (byte < 0x20 || byte == 0x7F) shown[i] = ' ';
    // U+0080 to U+009F, which some terminals obey as they do ESC.
    const bool c1 = byte == 0xC2 && i + 1 < shown.size() && static_cast<unsigned char>(shown[i + 1]) < 0xA0;
    if (c1) shown.replace(i, 2, " ");
  }
  return shown;
}

}  // namespace excelexp
