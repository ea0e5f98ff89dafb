// SPDX-License-Identifier: Apache-2.0
//
// Outputs and inputs in memory for tests of the public interface, which can be let fail.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

#include "voxplay.hpp"

// Takes what a writer writes.
class C_MemoryOutput {
 public:
  // The calls from nFailing on fail; the first one is 1.
  explicit C_MemoryOutput(bool bGoesBack = true, int nFailing = std::numeric_limits<int>::max())
      : m_bGoesBack(bGoesBack), m_nFailing(nFailing) {}

  voxplay_output Record() { return {&Write, m_bGoesBack ? &Seek : nullptr, this}; }
  [[nodiscard]] const std::vector<std::uint8_t>& Bytes() const { return m_bytes; }
  [[nodiscard]] int Calls() const { return m_nCalls; }

 private:
  static int Write(void* pUser, const void* pBytes, std::size_t cbBytes) {
    auto& output = *static_cast<C_MemoryOutput*>(pUser);
    if (++output.m_nCalls >= output.m_nFailing) return -1;
    const std::size_t cbNeeded = output.m_cbAt + cbBytes;
    if (cbNeeded > output.m_bytes.size()) output.m_bytes.resize(cbNeeded);
    std::memcpy(output.m_bytes.data() + output.m_cbAt, pBytes, cbBytes);
    output.m_cbAt += cbBytes;
    return 0;
  }
  static int Seek(void* pUser, std::uint64_t qwPosition) {
    auto& output = *static_cast<C_MemoryOutput*>(pUser);
    if (++output.m_nCalls >= output.m_nFailing) return -1;
    output.m_cbAt = static_cast<std::size_t>(qwPosition);
    return 0;
  }

  std::vector<std::uint8_t> m_bytes;
  std::size_t m_cbAt = 0;
  bool m_bGoesBack;
  int m_nFailing;
  int m_nCalls = 0;
};

// Gives bytes to a reader, at most cbPiece in a call.
class C_MemoryInput {
 public:
  explicit C_MemoryInput(std::span<const std::uint8_t> bytes, std::size_t cbPiece = 1U << 20,
                         int nFailing = std::numeric_limits<int>::max())
      : m_bytes(bytes), m_cbPiece(cbPiece), m_nFailing(nFailing) {}

  voxplay_input Record() { return {&Read, &Seek, &Tell, &Size, this}; }
  // One that only goes forward.
  voxplay_input Pipe() { return {&Read, nullptr, nullptr, nullptr, this}; }
  void StartAt(std::size_t cbAt) { m_cbAt = cbAt; }
  [[nodiscard]] int Calls() const { return m_nCalls; }

 private:
  [[nodiscard]] bool Fails() { return ++m_nCalls >= m_nFailing; }
  static std::int64_t Read(void* pUser, void* pBytes, std::size_t cbBytes) {
    auto& input = *static_cast<C_MemoryInput*>(pUser);
    if (input.Fails()) return -1;
    const std::size_t cbLeft = input.m_bytes.size() - std::min(input.m_cbAt, input.m_bytes.size());
    const std::size_t cbRead = std::min({cbBytes, cbLeft, input.m_cbPiece});
    if (cbRead != 0) std::memcpy(pBytes, input.m_bytes.data() + input.m_cbAt, cbRead);
    input.m_cbAt += cbRead;
    return static_cast<std::int64_t>(cbRead);
  }
  static int Seek(void* pUser, std::uint64_t qwPosition) {
    auto& input = *static_cast<C_MemoryInput*>(pUser);
    if (input.Fails()) return -1;
    input.m_cbAt = static_cast<std::size_t>(qwPosition);
    return 0;
  }
  static std::int64_t Tell(void* pUser) {
    auto& input = *static_cast<C_MemoryInput*>(pUser);
    return input.Fails() ? -1 : static_cast<std::int64_t>(input.m_cbAt);
  }
  static std::int64_t Size(void* pUser) {
    auto& input = *static_cast<C_MemoryInput*>(pUser);
    return input.Fails() ? -1 : static_cast<std::int64_t>(input.m_bytes.size());
  }

  std::span<const std::uint8_t> m_bytes;
  std::size_t m_cbPiece;
  std::size_t m_cbAt = 0;
  int m_nFailing;
  int m_nCalls = 0;
};

inline std::span<const std::byte> AsBytes(const std::vector<std::uint8_t>& bytes) {
  return std::as_bytes(std::span(bytes));
}
