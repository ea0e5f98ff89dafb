// SPDX-License-Identifier: Apache-2.0
//
// Where the parts and the operations of a sound are, for programs that were built against another
// version of its header.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "SampleValues.h"
#include "VTable.h"
#include "sound/WavData.h"

namespace {

const void* InfoOf(I_WavData& sound, int nType) {
  void* pInfo = nullptr;
  EXPECT_TRUE(sound.GetInfo(nType, &pInfo));
  return pInfo;
}

// Programs built against the library access these parts at fixed places.
TEST(WavData, Parts_LieInTheirOrder) {
  C_WavData sound;
  const std::vector<const void*> parts = {sound.GetIWaveDataBuffer(),
                                          sound.GetWavInfo(),
                                          sound.GetEventTagMgr(),
                                          sound.GetAudioCodecParam(),
                                          sound.GetSilenceSegmentList(),
                                          sound.GetUncompressRegionList(),
                                          InfoOf(sound, WAV_DATA_INFO_TEXT),
                                          InfoOf(sound, WAV_DATA_INFO_EXTRA_CHUNK),
                                          InfoOf(sound, WAV_DATA_INFO_CUE),
                                          InfoOf(sound, WAV_DATA_INFO_LIST),
                                          InfoOf(sound, WAV_DATA_INFO_SAMPLER)};
  const auto* pLow = reinterpret_cast<const unsigned char*>(&sound);
  for (const void* pPart : parts) {
    const auto* pAt = static_cast<const unsigned char*>(pPart);
    EXPECT_TRUE(std::less<>()(pLow, pAt)) << "part " << &pPart - parts.data();
    pLow = pAt;
  }
  // The encoded buffer lies between the PCM and the format and is as large as the PCM's buffer.
  const auto* pPcm = static_cast<const unsigned char*>(parts[0]);
  const auto* pFormat = static_cast<const unsigned char*>(parts[1]);
  EXPECT_EQ(pFormat - pPcm, static_cast<std::ptrdiff_t>(2 * sizeof(C_WavDataBuffer)));
  // The encoded kind and the reference count follow the last part.
  const auto* pEnd = reinterpret_cast<const unsigned char*>(&sound) + sizeof sound;
  unsigned int dwKind = 0;
  int nCount = -1;
  std::memcpy(&dwKind, pEnd - 8, 4);
  std::memcpy(&nCount, pEnd - 4, 4);
  EXPECT_EQ(dwKind, 0xFFFFu);
  EXPECT_EQ(nCount, 0);
}

TEST(WavData, ReservedOperation_IsTrue) {
  C_WavData sound;
  EXPECT_TRUE(sound.Reserved45(0, 0));
  EXPECT_TRUE(sound.Reserved45(0xFFFFFFFFu, 1));
}

// Records which operation each slot reaches.
class C_SlotProbe : public I_WavData {
 public:
  int AddRef() override { return Note(1); }
  int Release() override { return Note(2); }
  I_WavInfo* GetWavInfo() override { return Null<I_WavInfo>(3); }
  unsigned char* GetBuffer() override { return Null<unsigned char>(4); }
  unsigned char* GetEncBuffer() override { return Null<unsigned char>(5); }
  unsigned int GetBufferLength() override { return UNote(6); }
  unsigned int GetEncBufferLen() override { return UNote(7); }
  tagAudioFileType GetEncType() override { return static_cast<tagAudioFileType>(Note(8)); }
  void SetWavInfo(I_WavInfo*) override { Note(9); }
  void SetWavInfoData(unsigned int, unsigned int, unsigned short, unsigned short, unsigned short,
                      bool) override {
    Note(10);
  }
  bool CopyWavData(I_WavData*) override { return BNote(11); }
  unsigned char* AllocBuffer(unsigned int) override { return Null<unsigned char>(12); }
  bool SetBuffer(const void*, unsigned int) override { return BNote(13); }
  bool ConvertBits(unsigned short, unsigned short, bool, bool) override { return BNote(14); }
  I_WavData* CreateBitsConvertedData(unsigned short, unsigned short, bool, bool) override {
    return Null<I_WavData>(15);
  }
  I_WavData* Clone() override { return Null<I_WavData>(16); }
  I_WavData* CreateChannelData(unsigned short, unsigned int, unsigned int) override {
    return Null<I_WavData>(17);
  }
  bool SetChannelData(I_WavData*, unsigned short, unsigned int, int) override { return BNote(18); }
  void ConvertToMono() override { Note(19); }
  void ConvertToStereo() override { Note(20); }
  void ConvertToStereoWithSilence(unsigned short) override { Note(21); }
  I_AudioCodecParam* GetAudioCodecParam() override { return Null<I_AudioCodecParam>(22); }
  bool Convert(tagAudioFileType, const char*, bool, bool, PFN_CodecProgress, bool,
               unsigned int) override {
    return BNote(23);
  }
  I_EventTagMgr* GetEventTagMgr() override { return Null<I_EventTagMgr>(24); }
  SilenceList* DetectSilence(unsigned int, unsigned int, bool) override {
    return Null<SilenceList>(25);
  }
  SilenceList* DetectSilenceRange(unsigned int, unsigned int, unsigned int, unsigned int,
                                  unsigned short, unsigned short, bool) override {
    return Null<SilenceList>(26);
  }
  SilenceList* AddSilenceSegment(unsigned int, unsigned int) override {
    return Null<SilenceList>(27);
  }
  RegionList* AddUncompressRegion(unsigned int, unsigned int) override {
    return Null<RegionList>(28);
  }
  void MergeSilenceSegments() override { Note(29); }
  void MergeUncompressRegions() override { Note(30); }
  void AttachBuffer(void*, unsigned int) override { Note(31); }
  unsigned char* DetachBuffer() override { return Null<unsigned char>(32); }
  I_WavDataBuffer* GetIWaveDataBuffer() override { return Null<I_WavDataBuffer>(33); }
  bool ApplyGain(double, double) override { return BNote(34); }
  bool ApplyGainRange(double, double, unsigned int, unsigned int, unsigned short,
                      unsigned short) override {
    return BNote(35);
  }
  bool Normalize() override { return BNote(36); }
  bool NormalizeRange(unsigned int, unsigned int, unsigned short, unsigned short) override {
    return BNote(37);
  }
  SilenceList* GetSilenceSegmentList() override { return Null<SilenceList>(38); }
  void SetSilenceSegmentList(SilenceList*) override { Note(39); }
  RegionList* GetUncompressRegionList() override { return Null<RegionList>(40); }
  void SetUncompressRegionList(RegionList*) override { Note(41); }
  bool GetInfo(int, void**) override { return BNote(42); }
  int GetDCOffset() override { return Note(43); }
  void RemoveDCOffset() override { Note(44); }
  bool Reserved45(unsigned int, unsigned int) override { return BNote(45); }
  bool SetEncBuffer(const void*, unsigned int) override { return BNote(46); }
  void SetEncType(tagAudioFileType) override { Note(47); }
  ~C_SlotProbe() override { s_nDeaths++; }

  int Last() const { return m_nLast; }
  inline static int s_nDeaths = 0;

 private:
  int Note(int nSlot) {
    m_nLast = nSlot;
    return nSlot;
  }
  unsigned int UNote(int nSlot) { return static_cast<unsigned int>(Note(nSlot)); }
  bool BNote(int nSlot) { return Note(nSlot) != 0; }
  template <typename T>
  T* Null(int nSlot) {
    Note(nSlot);
    return nullptr;
  }
  int m_nLast = 0;
};

TEST(WavData, Interface_HasItsSlotsInOrder) {
  C_SlotProbe probe;
  I_WavData* pSound = &probe;
  for (std::size_t nSlot = 1; nSlot <= 47; ++nSlot) {
    // The probe ignores its arguments, so none need to be passed.
    CallSlot<void>(pSound, nSlot - 1);
    EXPECT_EQ(probe.Last(), static_cast<int>(nSlot));
  }
}

TEST(WavData, Interface_DestructorsStandInTheLastTwoSlots) {
  C_SlotProbe::s_nDeaths = 0;
  I_WavData* pSound = new C_SlotProbe();
  CallSlot<void>(pSound, 48);  // the deleting destructor
  EXPECT_EQ(C_SlotProbe::s_nDeaths, 1);
}

}  // namespace
