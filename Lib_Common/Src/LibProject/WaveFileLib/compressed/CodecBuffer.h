// SPDX-License-Identifier: Apache-2.0
//
// A cursor over a caller's bytes that also takes half bytes, as the ADPCM decoders need it: one for
// the encoded block, one for the samples that come out.
//
// It never leaves the bytes: what is read past the end is 0, what is written there is dropped, and
// in both cases EOB is true from then on. A value that the end cuts is not read or written in part.
#pragma once

#include <cstddef>

class C_Buffer {
 public:
  // Refers to the bytes, which must outlive the buffer. Over constant ones, writing only moves.
  C_Buffer(const unsigned char* pbyData, std::size_t cbData);
  C_Buffer(unsigned char* pbyData, std::size_t cbData);
  virtual ~C_Buffer() = default;
  C_Buffer(const C_Buffer&) = delete;
  C_Buffer& operator=(const C_Buffer&) = delete;

  [[nodiscard]] bool EOB() const { return m_cbPos >= m_cbData; }
  // False between the two halves of a byte.
  [[nodiscard]] bool IsByteAligned() const { return m_bByteAligned; }
  // The byte that comes next, or whose second half comes next; at most the size.
  [[nodiscard]] std::size_t GetPos() const { return m_cbPos; }

  // Little-endian, from the byte at GetPos() on.
  short GetShort();
  void SetShort(short nValue);
  // Between the halves of a byte: two halves, the one that is left in the upper bits.
  unsigned char GetByte();
  // 0 to 15. A byte is taken as two halves by the same operation; mixing them is the caller's own
  // choice.
  unsigned char GetNibbleHighFirst();
  unsigned char GetNibbleLowFirst();

  // These two leave the cursor at the beginning of a byte.
  void SetPos(std::size_t cbPos);
  void Skip(std::size_t cbCount);

 private:
  [[nodiscard]] std::size_t Remaining() const { return m_cbData - m_cbPos; }
  unsigned char GetNibble(bool bHighHalf);

  const unsigned char* m_pbyData;
  unsigned char* m_pbyWritable;  // the same bytes, or null when they are constant
  std::size_t m_cbData;
  std::size_t m_cbPos = 0;
  bool m_bByteAligned = true;
};
