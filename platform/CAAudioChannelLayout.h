// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstddef>
#include <cstdio>
#include <vector>

// A copy of a channel layout with all its descriptions, or none. The toolbox's record is of open
// length:
//   0   tag           which layout; 0x10000: the bitmap says, 0: the descriptions say
//   4   bitmap        one bit for each loudspeaker
//   8   count         of the descriptions that follow
//   12  descriptions  of 20 bytes: label, flags, three coordinates
class CAAudioChannelLayout {
 public:
  // No layout.
  CAAudioChannelLayout() = default;
  // A copy; `pLayout` is null or followed by as many descriptions as it counts.
  explicit CAAudioChannelLayout(const AudioChannelLayout* pLayout);

  // A layout that its tag names, without descriptions.
  [[nodiscard]] static CAAudioChannelLayout FromTag(AudioChannelLayoutTag dwTag);
  [[nodiscard]] static CAAudioChannelLayout FromBitmap(AudioChannelBitmap dwBitmap);
  // A layout as the toolbox gives it, for example for `kAudioFilePropertyChannelLayout`. No layout
  // when the bytes end before the descriptions that they count; what stands behind those is left
  // out. The data may be null when `cbData` is 0, and needs no alignment.
  [[nodiscard]] static CAAudioChannelLayout FromBytes(const void* pData, std::size_t cbData);

  [[nodiscard]] bool IsValid() const noexcept { return !m_storage.empty(); }
  // Null when there is none. The object's own, until it is assigned to or destroyed.
  [[nodiscard]] const AudioChannelLayout* Layout() const noexcept;
  // Bytes of the head and the descriptions that it counts; 0 when there is no layout.
  [[nodiscard]] std::size_t SizeInBytes() const noexcept;
  // See `PrintChannelLayout`.
  void Print(std::FILE* pStream) const;

 private:
  void Copy(const void* pLayout, UInt32 dwDescriptions);

  // At least the room of the whole record, also where no description follows.
  std::vector<unsigned char> m_storage;
};

// Lines for debugging. The stream is open, `pLayout` null or followed by as many descriptions as it
// counts.
//   for null      "\tNULL layout\n"
//   by bitmap     "\tTag=0x10000, Using Bitmap:0x3\n"
//   for the rest  "\tTag=0x0, Num Chan Descs=1\n" and for each description
//                 "\t\tLabel=1, Flags=0x0, [az=0.000000,el=0.000000,dist=0.000000]\n"
// The decimal points are those of the process's locale.
void PrintChannelLayout(const AudioChannelLayout* pLayout, std::FILE* pStream);
