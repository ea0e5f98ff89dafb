// SPDX-License-Identifier: Apache-2.0
//
// An output as callers of the library have it, in memory. It can only go forward, and fail.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "voxplay.h"

namespace api::test {

class C_CallerOutput {
 public:
  C_CallerOutput() = default;
  C_CallerOutput(const C_CallerOutput&) = delete;
  C_CallerOutput& operator=(const C_CallerOutput&) = delete;

  void OnlyForward() { m_bForward = true; }
  // The nCall-th call from now on fails, counted from 1, and those after it do not.
  void FailAt(int nCall) { m_nUntilFault = nCall; }

  // It refers to this object.
  voxplay_output Record() { return {Write, m_bForward ? nullptr : Seek, this}; }
  [[nodiscard]] const std::vector<std::uint8_t>& Content() const { return m_bytes; }
  [[nodiscard]] int Calls() const { return m_nCalls; }

 private:
  bool Fails() {
    ++m_nCalls;
    return m_nUntilFault > 0 && --m_nUntilFault == 0;
  }
  static int Write(void* pUser, const void* pBytes, std::size_t cbCount) {
    auto& output = *static_cast<C_CallerOutput*>(pUser);
    if (output.Fails()) return -1;
    const auto* const pby = static_cast<const std::uint8_t*>(pBytes);
    output.m_bytes.resize(std::max(output.m_bytes.size(), output.m_nAt + cbCount));
    std::copy(pby, pby + cbCount,
              output.m_bytes.begin() + static_cast<std::ptrdiff_t>(output.m_nAt));
    output.m_nAt += cbCount;
    return 0;
  }
  static int Seek(void* pUser, std::uint64_t qwPosition) {
    auto& output = *static_cast<C_CallerOutput*>(pUser);
    if (output.Fails() || qwPosition > output.m_bytes.size()) return -1;
    output.m_nAt = static_cast<std::size_t>(qwPosition);
    return 0;
  }

  bool m_bForward = false;
  int m_nUntilFault = 0;
  int m_nCalls = 0;
  std::vector<std::uint8_t> m_bytes;
  std::size_t m_nAt = 0;
};

}  // namespace api::test
