#include "platform/host/Workstation.h"

#include <unistd.h>

#include <algorithm>
#include <array>

namespace excelexp {
namespace {

constexpr std::size_t kMaxWorkstation = 39;

bool IsAddressCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == ':' ||
         c == '-' || c == '_';
}

}  // namespace

bool IsWorkstationAddress(std::string_view text) {
  return !text.empty() && text.size() <= kMaxWorkstation &&
         std::all_of(text.begin(), text.end(), IsAddressCharacter);
}

std::string DefaultWorkstation() {
  std::array<char, 256> buffer{};
  gethostname(buffer.data(), buffer.size() - 1);
  std::string name = std::string(buffer.data()).substr(0, kMaxWorkstation);
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !IsAddressCharacter(c); }, '-');
  return name.empty() ? "localhost" : name;
}

}  // namespace excelexp
