// SPDX-License-Identifier: Apache-2.0
#include "PcmQueue.h"

#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

C_PcmQueue g_pcmQueue;

namespace {

// Clears all bytes of a block of which the first cbUsed may be other than zero. Those are cleared
// by hand. The system takes the pages after them back and gives zeros for them: that clears them as
// truly, and costs nothing where a page was never used.
void Clear(std::uint8_t* pbyBlock, std::size_t cbBlock, std::size_t cbUsed) {
#ifdef __linux__
  const auto nPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t nMisplaced = (reinterpret_cast<std::uintptr_t>(pbyBlock) + cbUsed) % nPage;
  const std::size_t nFirst = std::min(cbUsed + (nPage - nMisplaced) % nPage, cbBlock);
  const std::size_t cbPages = (cbBlock - nFirst) / nPage * nPage;
  if (madvise(pbyBlock + nFirst, cbPages, MADV_DONTNEED) == 0) {
    std::memset(pbyBlock, 0, nFirst);
    std::memset(pbyBlock + nFirst + cbPages, 0, cbBlock - nFirst - cbPages);
    return;
  }
#else
  static_cast<void>(cbUsed);
#endif
  std::memset(pbyBlock, 0, cbBlock);
}

}  // namespace

C_PcmQueue::C_PcmQueue()
    : m_pbyBase(static_cast<std::uint8_t*>(std::calloc(kBlockBytes, 1))), m_pbyWrite(m_pbyBase) {
  pthread_mutex_init(&m_lock, nullptr);
}

C_PcmQueue::~C_PcmQueue() {
  pthread_mutex_destroy(&m_lock);
  std::free(m_pbyBase);
  m_pbyBase = nullptr;
}

void C_PcmQueue::Write(const void* pData, std::uint32_t cbData) {
  if (!IsUsable()) return;
  pthread_mutex_lock(&m_lock);
  // Kept: the lock stays held when the data does not fit. A sound that long has no place in
  // real-time mode, and if playback went on with a piece missing nobody would notice. Pinned by
  // Write_ThatDoesNotFit_LeavesTheLockHeld.
  if (std::uint64_t{GetCount()} + cbData > kMaxHeld) return;
  if (cbData != 0) std::memcpy(m_pbyWrite, pData, cbData);
  SetCount(GetCount() + cbData);
  pthread_mutex_unlock(&m_lock);
}

void C_PcmQueue::Read(void* pDestination, std::uint32_t cbWanted) {
  if (GetCount() == 0) return;
  pthread_mutex_lock(&m_lock);
  const std::uint32_t cbTaken = std::min(GetCount(), cbWanted);
  const std::uint32_t cbRest = GetCount() - cbTaken;
  if (cbTaken != 0) std::memcpy(pDestination, m_pbyBase, cbTaken);
  // Kept: every read moves the rest to the front through a copy and clears the whole block. That
  // way the bytes after the held ones are always silence, whichever code reads the block, and no
  // index can go astray. Pinned by Read_MovesTheRestToTheBaseAndClearsTheBlockAfterIt.
  const std::unique_ptr<std::uint8_t[]> rest(new (std::nothrow) std::uint8_t[cbRest]);
  if (rest != nullptr) {
    std::memcpy(rest.get(), m_pbyBase + cbTaken, cbRest);
    Clear(m_pbyBase, kBlockBytes, cbTaken + cbRest);
    std::memcpy(m_pbyBase, rest.get(), cbRest);
  } else {
    // There is no memory for the copy, and the sound must go on.
    std::memmove(m_pbyBase, m_pbyBase + cbTaken, cbRest);
    std::memset(m_pbyBase + cbRest, 0, kBlockBytes - cbRest);
  }
  SetCount(cbRest);
  pthread_mutex_unlock(&m_lock);
}

void C_PcmQueue::SetCount(std::uint32_t dwCount) noexcept {
  m_pbyWrite = m_pbyBase + dwCount;
  m_dwCount.store(dwCount, std::memory_order_release);
}
