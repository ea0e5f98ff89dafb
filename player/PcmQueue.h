// SPDX-License-Identifier: Apache-2.0
//
// The queue between the decoder and the loudspeaker in real-time mode: bytes go in at the end and
// come out at the front. The held bytes always start at the base of one 32 MiB block (no
// wrap-around); the bytes after them are zero. One thread writes and one thread reads.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>

class C_PcmQueue {
 public:
  static constexpr std::uint32_t kBlockBytes = 0x2000000;     // 32 MiB
  static constexpr std::uint32_t kMaxHeld = kBlockBytes - 1;  // about 17 minutes of speech

  C_PcmQueue();
  ~C_PcmQueue();
  C_PcmQueue(const C_PcmQueue&) = delete;
  C_PcmQueue& operator=(const C_PcmQueue&) = delete;

  // False when there was no memory for the block. What is written is dropped then.
  [[nodiscard]] bool IsUsable() const noexcept { return m_pbyBase != nullptr; }

  // Appends cbData bytes. Data that would make the queue hold more than kMaxHeld is dropped, and
  // the queue is stuck from then on: every later Write, and every Read of a queue that is not
  // empty, waits forever.
  void Write(const void* pData, std::uint32_t cbData);

  // Takes up to cbWanted bytes from the front. The rest of pDestination is left as it is. On an
  // empty queue, Read changes nothing and does not wait for the lock.
  void Read(void* pDestination, std::uint32_t cbWanted);

  // Bytes held. Never waits.
  [[nodiscard]] std::uint32_t GetCount() const noexcept {
    return m_dwCount.load(std::memory_order_acquire);
  }
  [[nodiscard]] const std::uint8_t* GetBase() const noexcept { return m_pbyBase; }
  // Base plus count.
  [[nodiscard]] const std::uint8_t* GetWritePosition() const noexcept { return m_pbyWrite; }

 private:
  void SetCount(std::uint32_t dwCount) noexcept;

  // Written under the lock, read without it.
  std::atomic<std::uint32_t> m_dwCount{0};
  std::uint8_t* m_pbyBase;
  std::uint8_t* m_pbyWrite;
  pthread_mutex_t m_lock;
};

// Kept: the only queue of the process is allocated and zeroed in every mode, before the command
// line is read, so that no mode begins without it. Pinned by
// TheProcessWideQueue_IsZeroedBeforeMainBegins.
extern C_PcmQueue g_pcmQueue;
