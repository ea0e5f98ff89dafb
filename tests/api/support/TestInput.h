// SPDX-License-Identifier: Apache-2.0
//
// An input of four functions over bytes in memory. It can lack any of them but the first, fail,
// lie, and counts its calls.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "voxplay.h"

namespace api::test {

class C_TestInput {
 public:
  explicit C_TestInput(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}
  C_TestInput(const C_TestInput&) = delete;
  C_TestInput& operator=(const C_TestInput&) = delete;

  C_TestInput& WithoutSeek() { return m_bSeek = false, *this; }
  C_TestInput& WithoutTell() { return m_bTell = false, *this; }
  C_TestInput& WithoutSize() { return m_bSize = false, *this; }
  C_TestInput& At(std::size_t nPosition) { return m_nPosition = nPosition, *this; }
  C_TestInput& AtMost(std::size_t cbRead) { return m_cbMost = cbRead, *this; }
  // The call of this number fails, counted from 1 over all functions.
  C_TestInput& FailingAt(int nCall) { return m_nFailing = nCall, *this; }
  // Says that it has read one byte more than it was asked for.
  C_TestInput& Overreading() { return m_bOverreads = true, *this; }

  voxplay_input Record() {
    voxplay_input input{};
    input.user = this;
    input.read = &Read;
    if (m_bSeek) input.seek = &Seek;
    if (m_bTell) input.tell = &Tell;
    if (m_bSize) input.size = &Size;
    return input;
  }

  int Calls() const { return m_nCalls; }
  int Reads() const { return m_nReads; }
  bool HasFailed() const { return m_nFailing > 0 && m_nCalls >= m_nFailing; }

 private:
  static C_TestInput& Of(void* pUser) { return *static_cast<C_TestInput*>(pUser); }
  bool Fails() { return ++m_nCalls == m_nFailing; }

  static std::int64_t Read(void* pUser, void* pBytes, std::size_t cbSize) {
    C_TestInput& input = Of(pUser);
    ++input.m_nReads;
    if (input.Fails()) return -1;
    if (input.m_bOverreads) return static_cast<std::int64_t>(cbSize) + 1;
    const std::size_t cbLeft =
        input.m_bytes.size() - std::min(input.m_bytes.size(), input.m_nPosition);
    const std::size_t cbRead = std::min({cbLeft, cbSize, input.m_cbMost});
    std::copy_n(input.m_bytes.data() + (cbRead == 0 ? 0 : input.m_nPosition), cbRead,
                static_cast<std::uint8_t*>(pBytes));
    input.m_nPosition += cbRead;
    return static_cast<std::int64_t>(cbRead);
  }
  static int Seek(void* pUser, std::uint64_t qwPosition) {
    C_TestInput& input = Of(pUser);
    // A seek beyond the end is not allowed.
    if (input.Fails() || qwPosition > input.m_bytes.size()) return -1;
    input.m_nPosition = static_cast<std::size_t>(qwPosition);
    return 0;
  }
  static std::int64_t Tell(void* pUser) {
    C_TestInput& input = Of(pUser);
    return input.Fails() ? -1 : static_cast<std::int64_t>(input.m_nPosition);
  }
  static std::int64_t Size(void* pUser) {
    C_TestInput& input = Of(pUser);
    return input.Fails() ? -1 : static_cast<std::int64_t>(input.m_bytes.size());
  }

  std::vector<std::uint8_t> m_bytes;
  std::size_t m_nPosition = 0;
  std::size_t m_cbMost = std::numeric_limits<std::size_t>::max();
  bool m_bSeek = true;
  bool m_bTell = true;
  bool m_bSize = true;
  bool m_bOverreads = false;
  int m_nCalls = 0;
  int m_nReads = 0;
  int m_nFailing = 0;
};

}  // namespace api::test
