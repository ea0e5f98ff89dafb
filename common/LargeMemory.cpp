// SPDX-License-Identifier: Apache-2.0
#include "LargeMemory.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

#include <cstdint>

namespace vcm {
namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
// Below this, too little of the memory fills whole large pages.
constexpr std::size_t kWorthIt = 2 * kHugePage;

void AskForHugePages([[maybe_unused]] unsigned char* pbyMemory,
                     [[maybe_unused]] std::size_t cbLength) {
#ifdef MADV_HUGEPAGE
  // Only whole pages within the memory: what is beside it belongs to others.
  const auto cbBefore =
      (kHugePage - reinterpret_cast<std::uintptr_t>(pbyMemory) % kHugePage) % kHugePage;
  const std::size_t cbPages = (cbLength - cbBefore) / kHugePage * kHugePage;
  // A wish: without it, everything is the same but the time.
  static_cast<void>(madvise(pbyMemory + cbBefore, cbPages, MADV_HUGEPAGE));
#endif
}

}  // namespace

std::unique_ptr<unsigned char[]> NewBytes(std::size_t cbLength) {
  auto pbyMemory = std::make_unique_for_overwrite<unsigned char[]>(cbLength);
  if (cbLength >= kWorthIt) AskForHugePages(pbyMemory.get(), cbLength);
  return pbyMemory;
}

}  // namespace vcm
