// SPDX-License-Identifier: Apache-2.0
//
// Takes a fuzzer's input apart into the values that a harness needs. Fields beyond the end of the
// input are 0, so every input means something.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "ByteReader.h"

class C_FuzzInput {
 public:
  C_FuzzInput(const std::uint8_t* pData, std::size_t cbData) : m_reader(std::span(pData, cbData)) {}

  [[nodiscard]] bool Ended() const noexcept { return !m_reader.Ok() || m_reader.Remaining() == 0; }

  std::uint8_t U8() noexcept { return m_reader.U8(); }
  std::uint16_t U16() noexcept { return m_reader.U16(); }
  std::uint32_t U32() noexcept { return m_reader.U32(); }
  bool Flag() noexcept { return U8() % 2 != 0; }
  // 0 to dwCount - 1; dwCount is at least 1.
  unsigned int Below(unsigned int dwCount) noexcept {
    return dwCount <= 256 ? U8() % dwCount : U16() % dwCount;
  }
  template <typename T, std::size_t nCount>
  T OneOf(const std::array<T, nCount>& values) noexcept {
    return values[Below(nCount)];
  }
  // A number around dwSize, where mistakes are made, or any other number.
  std::uint32_t Near(std::uint32_t dwSize) noexcept {
    const std::uint8_t byChoice = U8();
    switch (byChoice % 8) {
      case 0:
        return 0;
      case 1:
        return dwSize - 1;
      case 2:
        return dwSize;
      case 3:
        return dwSize + 1;
      case 4:
        return 0xFFFFFFFF;
      case 5:
        return U32();
      default:
        return dwSize == 0 ? byChoice / 8U : U16() % dwSize;
    }
  }
  // At most cbMost of the bytes that are left.
  std::span<const std::uint8_t> Bytes(std::size_t cbMost) noexcept {
    const std::size_t cbLeft = Ended() ? 0 : m_reader.Remaining();
    return m_reader.Bytes(cbMost < cbLeft ? cbMost : cbLeft);
  }
  std::span<const std::uint8_t> Rest() noexcept { return Bytes(m_reader.Remaining()); }

 private:
  vcm::C_ByteReader m_reader;
};

// Lets a new Session do what the input says; for fuzzers whose input is a sequence of operations.
template <typename Session>
int RunSession(const std::uint8_t* pData, std::size_t cbData) {
  C_FuzzInput input(pData, cbData);
  Session session;
  session.Run(input);
  return 0;
}
