// SPDX-License-Identifier: Apache-2.0
//
// Separate from the class, so that a program that prints no descriptions does not carry these
// strings.
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

#include "CAStreamBasicDescription.h"
#include "FourCharCode.h"

namespace {

// Appends text to a buffer of fixed size. The text always ends with a zero, and whatever does not
// fit is cut off. A null buffer, or a buffer of 0 bytes, is left alone.
class C_BoundedText {
 public:
  C_BoundedText(char* pszBuffer, std::size_t cbBuffer) noexcept
      : m_pszEnd(pszBuffer), m_cbRoom(pszBuffer != nullptr ? cbBuffer : 0) {}

  __attribute__((format(printf, 2, 3))) void Append(const char* pszFormat, ...) noexcept;

 private:
  char* m_pszEnd;
  // Bytes left in the buffer, including the terminating zero.
  std::size_t m_cbRoom;
};

void C_BoundedText::Append(const char* pszFormat, ...) noexcept {
  if (m_cbRoom == 0) return;
  std::va_list args;
  va_start(args, pszFormat);
  const int nWanted = std::vsnprintf(m_pszEnd, m_cbRoom, pszFormat, args);
  va_end(args);
  const std::size_t cbWanted = nWanted > 0 ? static_cast<std::size_t>(nWanted) : 0;
  const std::size_t cbAdded = std::min(cbWanted, m_cbRoom - 1);
  m_pszEnd += cbAdded;
  m_cbRoom -= cbAdded;
  *m_pszEnd = '\0';
}

// Kept: counts print as signed numbers, so that a field that was never set, all ones, stands out as
// -1. Pinned by CountsOfAllOnes_PrintAsMinusOne.
int Signed(UInt32 dwCount) noexcept { return static_cast<int>(dwCount); }

void AppendHead(C_BoundedText& text, const CAStreamBasicDescription& desc) noexcept {
  std::array<char, kFourCharCodeRoom> code{};
  text.Append("%2d ch, %6.0f Hz, %s (0x%08X) ", Signed(desc.NumberChannels()), desc.mSampleRate,
              FourCharCodeText(desc.mFormatID, code.data()), desc.mFormatFlags);
}

// The flags of 'alac' number the depths that its sources can have. Returns 0 for any other number.
int LosslessSourceBits(AudioFormatFlags dwFlags) noexcept {
  constexpr std::array<int, 5> kBits = {0, 16, 20, 24, 32};
  return dwFlags < kBits.size() ? kBits[dwFlags] : 0;
}

void AppendLossless(C_BoundedText& text, const CAStreamBasicDescription& desc) noexcept {
  const int nBits = LosslessSourceBits(desc.mFormatFlags);
  if (nBits != 0) {
    text.Append("from %d-bit source, ", nBits);
  } else {
    text.Append("from UNKNOWN source bit depth, ");
  }
  text.Append("%d frames/packet", Signed(desc.mFramesPerPacket));
}

void AppendSizes(C_BoundedText& text, const CAStreamBasicDescription& desc) noexcept {
  text.Append("%d bits/channel, %d bytes/packet, %d frames/packet, %d bytes/frame",
              Signed(desc.mBitsPerChannel), Signed(desc.mBytesPerPacket),
              Signed(desc.mFramesPerPacket), Signed(desc.mBytesPerFrame));
}

bool Has(const CAStreamBasicDescription& desc, AudioFormatFlags dwFlag) noexcept {
  return (desc.mFormatFlags & dwFlag) != 0;
}

void AppendDepth(C_BoundedText& text, const CAStreamBasicDescription& desc) noexcept {
  const UInt32 dwFraction = (desc.mFormatFlags & kLinearPCMFormatFlagsSampleFractionMask) >>
                            kLinearPCMFormatFlagsSampleFractionShift;
  if (dwFraction != 0) {
    text.Append("%d.%d", Signed(desc.mBitsPerChannel - dwFraction), Signed(dwFraction));
  } else {
    text.Append("%d", Signed(desc.mBitsPerChannel));
  }
}

const char* ByteOrder(const CAStreamBasicDescription& desc) noexcept {
  if (desc.SampleWordSize() <= 1) return "";
  return Has(desc, kAudioFormatFlagIsBigEndian) ? " big-endian" : " little-endian";
}

const char* NumberFormat(const CAStreamBasicDescription& desc) noexcept {
  if (Has(desc, kAudioFormatFlagIsFloat)) return " float";
  return Has(desc, kAudioFormatFlagIsSignedInteger) ? " signed integer" : " unsigned integer";
}

// Says nothing about samples that fill their words, or when the word size is not known.
void AppendPacking(C_BoundedText& text, const CAStreamBasicDescription& desc) noexcept {
  const UInt32 cbWord = desc.SampleWordSize();
  if (cbWord == 0 || UInt64{cbWord} * 8 == desc.mBitsPerChannel) return;
  // Kept: packing and alignment read as one phrase, with a comma before it and none inside it,
  // because both say where the sample lies in its word. Pinned by
  // SamplesThatDoNotFillTheirWords_SayHowTheyLie.
  text.Append(", %s in %d bytes %s", Has(desc, kAudioFormatFlagIsPacked) ? "packed" : "unpacked",
              Signed(cbWord),
              Has(desc, kAudioFormatFlagIsAlignedHigh) ? "high-aligned" : "low-aligned");
}

void AppendSamples(C_BoundedText& text, const CAStreamBasicDescription& desc) noexcept {
  AppendDepth(text, desc);
  text.Append("-bit%s%s", ByteOrder(desc), NumberFormat(desc));
  AppendPacking(text, desc);
  if (!desc.IsInterleaved()) text.Append(", deinterleaved");
}

}  // namespace

char* CAStreamBasicDescription::AsText(char* pszBuffer, std::size_t cbBuffer) const noexcept {
  C_BoundedText text(pszBuffer, cbBuffer);
  AppendHead(text, *this);
  if (IsPCM()) {
    AppendSamples(text, *this);
  } else if (mFormatID == kAudioFormatAppleLossless) {
    AppendLossless(text, *this);
  } else {
    AppendSizes(text, *this);
  }
  return pszBuffer;
}
