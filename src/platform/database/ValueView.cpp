#include "platform/database/ValueView.h"

#include <charconv>
#include <cmath>

namespace excelexp {
namespace {

/// Kinds in the order of an index; numbers of both kinds are one.
int RankOf(ValueView::Kind kind) {
  if (IsNumber(kind)) return 1;
  if (IsBytes(kind)) return kind == ValueView::Kind::kText ? 2 : 3;
  return 0;
}

}  // namespace

bool ComesBefore(const ValueView& a, const ValueView& b) {
  if (RankOf(a.kind) != RankOf(b.kind)) return RankOf(a.kind) < RankOf(b.kind);
  if (!IsNumber(a.kind)) return a.bytes < b.bytes;
  const bool whole = a.kind == ValueView::Kind::kInteger && b.kind == ValueView::Kind::kInteger;
  return whole ? a.integer < b.integer : a.AsFloat() < b.AsFloat();
}

std::string_view NumberText(const ValueView& value, TextBuffer& buffer) {
  char* const begin = buffer.data();
  char* const end = begin + buffer.size();
  if (value.kind == ValueView::Kind::kInteger)
    return {begin, static_cast<std::size_t>(std::to_chars(begin, end, value.integer).ptr - begin)};
  if (value.kind != ValueView::Kind::kFloat) return {};
  const double number = value.AsFloat();
  const double size = std::abs(number);
  if (size == 0.0) return "0";  // also for -0.0
  const bool plain = size >= 1e-5 && size < 1e15;
  const auto form = plain ? std::chars_format::fixed : std::chars_format::general;
  return {begin, static_cast<std::size_t>(std::to_chars(begin, end, number, form).ptr - begin)};
}

}  // namespace excelexp
