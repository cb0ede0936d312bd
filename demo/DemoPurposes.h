#pragma once

#include <cstdint>

namespace excelexp {

/// What a stream of DemoRandom is for. The numbers are part of what a seed means: append, never renumber.
enum DemoPurpose : std::uint64_t {
  kDrawName = 1,
  kDrawEmployment = 2,
  kDrawPerson = 3,
  kDrawWorkDetails = 4,
  kDrawFamily = 5,
  kDrawAssignments = 6,
  kDrawOutsider = 7,
  kDrawLeave = 8,
  kDrawPay = 100,        // and the month
  kDrawTimesheet = 200,  // and the month
};

}  // namespace excelexp
