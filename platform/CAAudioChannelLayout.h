// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstddef>
#include <cstdio>
#include <vector>

// A copy of a channel layout with all its descriptions, or no layout at all. The length of the
// toolbox's record varies:
//   0   tag           which layout; 0x10000: see the bitmap, 0: see the descriptions
//   4   bitmap        one bit per loudspeaker
//   8   count         number of descriptions that follow
//   12  descriptions  20 bytes each: label, flags, three coordinates
class CAAudioChannelLayout {
 public:
  // No layout.
  CAAudioChannelLayout() = default;
  // Copies a layout. `pLayout` is null or holds as many descriptions as its count says.
  explicit CAAudioChannelLayout(const AudioChannelLayout* pLayout);

  // A layout that is given by its tag, without descriptions.
  [[nodiscard]] static CAAudioChannelLayout FromTag(AudioChannelLayoutTag dwTag);
  [[nodiscard]] static CAAudioChannelLayout FromBitmap(AudioChannelBitmap dwBitmap);
  // A layout from the bytes that the toolbox returns, for example for
  // `kAudioFilePropertyChannelLayout`. There is no layout when the bytes end before the last
  // description that they count; bytes after the descriptions are ignored. The data may be null
  // when `cbData` is 0, and needs no alignment.
  [[nodiscard]] static CAAudioChannelLayout FromBytes(const void* pData, std::size_t cbData);

  [[nodiscard]] bool IsValid() const noexcept { return !m_storage.empty(); }
  // Null when there is no layout. Owned by this object, and valid until it is assigned to or
  // destroyed.
  [[nodiscard]] const AudioChannelLayout* Layout() const noexcept;
  // Bytes of the head and its descriptions; 0 when there is no layout.
  [[nodiscard]] std::size_t SizeInBytes() const noexcept;
  // See `PrintChannelLayout`.
  void Print(std::FILE* pStream) const;

 private:
  void Copy(const void* pLayout, UInt32 dwDescriptions);

  // Empty without a layout, otherwise at least as large as an AudioChannelLayout, even when no
  // description follows.
  std::vector<unsigned char> m_storage;
};

// Prints a layout for debugging. The stream is open; `pLayout` is null or holds as many
// descriptions as its count says.
//   null       "\tNULL layout\n"
//   by bitmap  "\tTag=0x10000, Using Bitmap:0x3\n"
//   otherwise  "\tTag=0x0, Num Chan Descs=1\n" and for each description
//              "\t\tLabel=1, Flags=0x0, [az=0.000000,el=0.000000,dist=0.000000]\n"
// The decimal points follow the locale of the process.
void PrintChannelLayout(const AudioChannelLayout* pLayout, std::FILE* pStream);
