// SPDX-License-Identifier: Apache-2.0
#include "PcmQueue.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

C_PcmQueue g_pcmQueue;

C_PcmQueue::C_PcmQueue()
    : m_pbyBase(new (std::nothrow) std::uint8_t[kBlockBytes]), m_pbyWrite(m_pbyBase) {
  if (m_pbyBase != nullptr) std::memset(m_pbyBase, 0, kBlockBytes);
  pthread_mutex_init(&m_lock, nullptr);
}

C_PcmQueue::~C_PcmQueue() {
  pthread_mutex_destroy(&m_lock);
  delete[] m_pbyBase;
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
    std::memset(m_pbyBase, 0, kBlockBytes);
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
