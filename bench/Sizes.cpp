#include "bench/Sizes.h"

#include <algorithm>

namespace excelexp {
namespace {

Sizes& Mutable() {
  static Sizes sizes;
  return sizes;
}

}  // namespace

const Sizes& RunSizes() {
  return Mutable();
}

void DivideSizes(int by) {
  Sizes& sizes = Mutable();
  for (int* size : {&sizes.listing, &sizes.small, &sizes.large, &sizes.demo}) {
    *size = std::max(1, *size / by);
  }
}

}  // namespace excelexp
