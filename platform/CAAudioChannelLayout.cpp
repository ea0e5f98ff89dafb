// SPDX-License-Identifier: Apache-2.0
#include "CAAudioChannelLayout.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kHeadBytes = offsetof(AudioChannelLayout, mChannelDescriptions);

constexpr std::size_t BytesOf(UInt32 dwDescriptions) noexcept {
  static_assert(sizeof(std::size_t) > sizeof(UInt32));
  return kHeadBytes + dwDescriptions * sizeof(AudioChannelDescription);
}

AudioChannelLayout Head(AudioChannelLayoutTag dwTag, AudioChannelBitmap dwBitmap) noexcept {
  AudioChannelLayout layout{};
  layout.mChannelLayoutTag = dwTag;
  layout.mChannelBitmap = dwBitmap;
  return layout;
}

// Kept: counts and labels print as signed numbers, so the label of an unknown channel, all ones,
// reads as -1. Pinned by ALabelOfAllOnes_PrintsAsMinusOne.
int Signed(UInt32 dw) noexcept { return static_cast<int>(dw); }

void PrintDescription(const AudioChannelDescription& desc, std::FILE* pStream) {
  std::fprintf(pStream, "\t\tLabel=%d, Flags=0x%X, ", Signed(desc.mChannelLabel),
               desc.mChannelFlags);
  std::fprintf(pStream, "[az=%f,el=%f,dist=%f]\n", static_cast<Float64>(desc.mCoordinates[0]),
               static_cast<Float64>(desc.mCoordinates[1]),
               static_cast<Float64>(desc.mCoordinates[2]));
}

void PrintDescriptions(const AudioChannelLayout& layout, std::FILE* pStream) {
  std::fprintf(pStream, "Num Chan Descs=%d\n", Signed(layout.mNumberChannelDescriptions));
  const AudioChannelDescription* pDescription = layout.mChannelDescriptions;
  for (UInt32 i = 0; i < layout.mNumberChannelDescriptions; ++i) {
    PrintDescription(pDescription[i], pStream);
  }
}

}  // namespace

CAAudioChannelLayout::CAAudioChannelLayout(const AudioChannelLayout* pLayout) {
  if (pLayout != nullptr) Copy(pLayout, pLayout->mNumberChannelDescriptions);
}

CAAudioChannelLayout CAAudioChannelLayout::FromTag(AudioChannelLayoutTag dwTag) {
  const AudioChannelLayout layout = Head(dwTag, 0);
  return CAAudioChannelLayout(&layout);
}

CAAudioChannelLayout CAAudioChannelLayout::FromBitmap(AudioChannelBitmap dwBitmap) {
  const AudioChannelLayout layout = Head(kAudioChannelLayoutTag_UseChannelBitmap, dwBitmap);
  return CAAudioChannelLayout(&layout);
}

CAAudioChannelLayout CAAudioChannelLayout::FromBytes(const void* pData, std::size_t cbData) {
  CAAudioChannelLayout layout;
  if (pData == nullptr || cbData < kHeadBytes) return layout;
  AudioChannelLayout head{};
  std::memcpy(&head, pData, kHeadBytes);
  const UInt32 dwDescriptions = head.mNumberChannelDescriptions;
  if (BytesOf(dwDescriptions) <= cbData) layout.Copy(pData, dwDescriptions);
  return layout;
}

const AudioChannelLayout* CAAudioChannelLayout::Layout() const noexcept {
  return IsValid() ? reinterpret_cast<const AudioChannelLayout*>(m_storage.data()) : nullptr;
}

std::size_t CAAudioChannelLayout::SizeInBytes() const noexcept {
  return IsValid() ? BytesOf(Layout()->mNumberChannelDescriptions) : 0;
}

void CAAudioChannelLayout::Copy(const void* pLayout, UInt32 dwDescriptions) {
  const std::size_t cbLayout = BytesOf(dwDescriptions);
  m_storage.resize(std::max(cbLayout, sizeof(AudioChannelLayout)));
  std::memcpy(m_storage.data(), pLayout, cbLayout);
}

void CAAudioChannelLayout::Print(std::FILE* pStream) const {
  PrintChannelLayout(Layout(), pStream);
}

void PrintChannelLayout(const AudioChannelLayout* pLayout, std::FILE* pStream) {
  if (pLayout == nullptr) {
    std::fprintf(pStream, "\tNULL layout\n");
    return;
  }
  std::fprintf(pStream, "\tTag=0x%X, ", pLayout->mChannelLayoutTag);
  if (pLayout->mChannelLayoutTag == kAudioChannelLayoutTag_UseChannelBitmap) {
    std::fprintf(pStream, "Using Bitmap:0x%X\n", pLayout->mChannelBitmap);
  } else {
    PrintDescriptions(*pLayout, pStream);
  }
}
