// SPDX-License-Identifier: Apache-2.0
//
// A cursor over a caller's bytes that can also read half bytes. The ADPCM decoders use one for the
// encoded block and one for the decoded samples.
//
// The cursor never leaves the bytes: a read past the end gives 0, a write there is dropped, and EOB
// is true from then on. A value that is cut by the end is neither read nor written in part.
#pragma once

#include <cstddef>

class C_Buffer {
 public:
  // Refers to the bytes, which must outlive the buffer; null counts as no bytes. In constant bytes,
  // SetShort only moves the cursor.
  C_Buffer(const unsigned char* pbyData, std::size_t cbData);
  C_Buffer(unsigned char* pbyData, std::size_t cbData);
  virtual ~C_Buffer() = default;
  C_Buffer(const C_Buffer&) = delete;
  C_Buffer& operator=(const C_Buffer&) = delete;

  [[nodiscard]] bool EOB() const { return m_cbPos >= m_cbData; }
  // False between the two halves of a byte.
  [[nodiscard]] bool IsByteAligned() const { return m_bByteAligned; }
  // Index of the byte that comes next, or whose second half comes next; at most the size.
  [[nodiscard]] std::size_t GetPos() const { return m_cbPos; }

  // Little-endian, from the byte at GetPos() on.
  short GetShort();
  void SetShort(short nValue);
  // Between the two halves of a byte, this takes the half that is left and the next one; the half
  // that is left becomes the upper bits.
  unsigned char GetByte();
  // 0 to 15. Read both halves of a byte with the same operation, unless a mix of the two is really
  // wanted.
  unsigned char GetNibbleHighFirst();
  unsigned char GetNibbleLowFirst();

  // These two leave the cursor at the beginning of a byte, or at the end when they go past it.
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
