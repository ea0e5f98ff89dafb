// SPDX-License-Identifier: Apache-2.0
//
// Interleaved little-endian PCM, owned or attached, and an iterator that walks one channel of it.
//
// There are two ways of access, which differ on purpose:
//   accessors  one sample of the stored width at (position, channel); right for any channel count
//   iterator   a unit as wide as a whole frame at the channel's sample; right for mono. With more
//              channels it also sees the samples after its own, and frames that are not 1, 2 or 4
//              bytes wide read 0 and cannot be written
// Neither leaves the memory that the buffer was given: anything beyond it reads as 0 and is not
// written.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "interface/I_WavDataBuffer.h"
#include "interface/I_WavInfo.h"

class C_WavDataBuffer : public I_WavDataBuffer {
 public:
  C_WavDataBuffer();
  ~C_WavDataBuffer() override;
  C_WavDataBuffer(const C_WavDataBuffer&) = delete;
  C_WavDataBuffer& operator=(const C_WavDataBuffer&) = delete;

  int GetSampleValueInt(unsigned int dwSamplePos, unsigned short wChannelNo) override;
  void SetSampleValueInt(unsigned int dwSamplePos, int nValue, unsigned short wChannelNo) override;
  int GetMaxAbsValue(unsigned int dwStartSample, unsigned int dwEndSample,
                     unsigned short wFirstChannel, unsigned short wLastChannel) override;
  C_WavDataBufferIterator* CreateIterator(unsigned int dwSamplePos,
                                          unsigned short wChannelNo) override;

  // Refers to the format, which must outlive the buffer, and derives the masks from it. Call it
  // again after every change of the format. Null stops the program.
  void SetWavInfo(I_WavInfo* pIWavInfo);
  // Null when the buffer has no memory.
  unsigned char* GetBuffer() { return m_pbyBuffer; }
  // Bytes of memory at GetBuffer().
  unsigned int GetLength() const { return m_dwLength; }
  I_WavInfo* GetWavInfo() { return m_pIWavInfo; }
  bool IsBufferAttached() const { return m_bAttached; }

  // Sample frames that are counted by the format and also held in memory; 0 without a format or
  // memory.
  unsigned int GetHeldSampleSize();
  // The same, but without the wrap of the format's count at half a gibibyte. Positions that a
  // caller names are checked against this number, because they may lie anywhere in the memory.
  unsigned int GetUnwrappedHeldSampleSize();

  // The values of one channel from a position on, as GetSampleValueInt gives them one by one.
  void ReadChannel(unsigned int dwSamplePos, unsigned short wChannelNo, std::span<int> values);
  // Gives each sample of these frames, which must be held, the value 0.
  void MuteFrames(unsigned int dwSamplePos, unsigned int dwFrames);

  // Frees owned memory, forgets attached memory.
  void SafeDeleteBuffer();
  // Forgets attached memory and returns it. Owned memory stays: the result is then null.
  unsigned char* DetachBuffer();
  // Holds an owned copy of the bytes, which may be part of the buffer that is replaced. Null gives
  // an empty buffer.
  void CopyBuffer(const void* pData, unsigned int dwLength);
  // Holds new owned memory, not cleared, and returns it; not null even for length 0.
  unsigned char* AllocBuffer(unsigned int dwLength);
  // Holds the memory of another buffer, which then has none.
  void TakeBuffer(C_WavDataBuffer& other);
  // Owns this memory from now on.
  void TakeBuffer(std::unique_ptr<unsigned char[]> pbyBuffer, unsigned int dwLength);
  // Keeps the present memory until the result is gone, even when the buffer gets other memory or is
  // destroyed before. Null without memory of its own: attached memory stays the caller's.
  [[nodiscard]] std::shared_ptr<const void> KeepMemory();
  // Refers to the caller's memory, which must outlive its use here and is never freed.
  void AttachBuffer(void* pData, unsigned int dwLength);

 private:
  friend class C_WavDataBufferIterator;

  void Hold(unsigned char* pbyBuffer, unsigned int dwLength, bool bAttached);
  unsigned short Channels();
  // The byte offset of a sample; empty when the buffer does not hold the sample completely or the
  // stored width is not 8, 16 or 32 bits.
  std::optional<std::uint64_t> SampleOffset(unsigned int dwSamplePos, unsigned short wChannelNo,
                                            unsigned short wChannels) const;
  // How many units of this width, one after the other, the buffer holds completely from there on.
  // None for a width that is not 1, 2 or 4.
  std::size_t UnitsFrom(std::uint64_t qwOffset, unsigned int cbUnit) const;
  // Access to little-endian units of up to four bytes, at any offset.
  unsigned int ReadUnit(std::uint64_t qwOffset, unsigned int cbUnit) const;
  void WriteUnit(std::uint64_t qwOffset, unsigned int cbUnit, unsigned int dwUnit,
                 unsigned int dwMask);

  unsigned int m_dwSignBit = 0;        // also the offset of unsigned values
  unsigned int m_dwSignExtension = 0;  // all bits from the sign bit upward
  unsigned int m_dwValueMask = 0;
  unsigned char* m_pbyBuffer = nullptr;
  bool m_bAttached = false;
  I_WavInfo* m_pIWavInfo = nullptr;
  unsigned short m_wStoreBitsPerSample = 0;
  bool m_bValueSigned = true;
  std::unique_ptr<C_WavDataBufferIterator> m_pIterator;
  unsigned int m_dwLength = 0;
  // Gets the memory, instead of freeing it, while somebody wants it kept.
  std::weak_ptr<std::unique_ptr<unsigned char[]>> m_keeper;
};

class C_WavDataBufferIterator : public I_WavDataBufferIterator {
 public:
  // Takes the format as it is now. The buffer must outlive the iterator; its memory may change.
  C_WavDataBufferIterator(C_WavDataBuffer& buffer, unsigned int dwSamplePos,
                          unsigned short wChannelNo);

  void SetDataPos(unsigned int dwSamplePos) override { SetPos(dwSamplePos); }
  void NextData() override { Next(); }
  void PrevData() override { Prev(); }
  int GetDataValue() override { return GetValue(); }
  void SetDataValue(int nValue) override { SetValue(nValue, true); }

  // Any position is allowed, even one outside the sound.
  void SetPos(unsigned int dwSamplePos);
  void Next() { m_qwOffset += m_wFrameStep; }
  void Prev() { m_qwOffset -= m_wFrameStep; }
  int GetValue() const;
  // Clips to the sample width. bExact false stores negative values one step lower.
  void SetValue(int nValue, bool bExact);
  // Many values at a time, with the same results as GetValue or SetValue and Next for each of them.
  void ReadValues(std::span<int> values);
  void WriteValues(std::span<const int> values, bool bExact) { Write(values, true, bExact); }
  // The same, exact, for values that need no clipping.
  void WriteClippedValues(std::span<const int> values) { Write(values, false, true); }

 private:
  void Write(std::span<const int> values, bool bClip, bool bExact);

  C_WavDataBuffer& m_buffer;
  // The current sample, in bytes from the start. This is an offset because an address outside the
  // buffer must not even be formed. Before the start, it wraps to a value beyond every end.
  std::uint64_t m_qwOffset = 0;
  unsigned short m_wChannels = 0;
  unsigned short m_wChannelNo = 0;
  unsigned short m_wStoreBitsPerSample = 0;
  unsigned short m_wFrameStep = 0;  // bytes from one sample of the channel to the next
  unsigned int m_dwSignBit = 0;
  unsigned int m_dwSignExtension = 0;
  unsigned int m_dwValueMask = 0;
  bool m_bValueSigned = true;
  unsigned int m_dwAccessMask = 0;  // the bits of a unit that belong to this channel
  int m_nMaximum = 0;
  int m_nMinimum = 0;
};
