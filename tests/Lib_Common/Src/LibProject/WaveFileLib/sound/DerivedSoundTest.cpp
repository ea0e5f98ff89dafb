// SPDX-License-Identifier: Apache-2.0
//
// Sounds of classes that are derived from ours. What their own functions do is not passed over.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KestrelBytes.h"
#include "SpBytes.h"
#include "TempFolder.h"
#include "codec/HeronCodec.h"
#include "file/KestrelFile.h"
#include "sound/MonoMix.h"
#include "sound/MonoSamples.h"
#include "sound/WavData.h"

namespace {

using Calls = std::vector<std::string>;

class C_DerivedSound : public C_WavData {
 public:
  bool CopyWavData(I_WavData* pSrc) override {
    m_calls.emplace_back("CopyWavData");
    return C_WavData::CopyWavData(pSrc);
  }
  unsigned char* AllocBuffer(unsigned int dwLength) override {
    m_calls.emplace_back("AllocBuffer");
    return C_WavData::AllocBuffer(dwLength);
  }
  bool SetBuffer(const void* pData, unsigned int dwLength) override {
    m_calls.emplace_back("SetBuffer");
    return C_WavData::SetBuffer(pData, dwLength);
  }
  bool SetEncBuffer(const void* pData, unsigned int dwLength) override {
    m_calls.emplace_back("SetEncBuffer");
    return C_WavData::SetEncBuffer(pData, dwLength);
  }
  I_WavData* CreateBitsConvertedData(unsigned short wBits, unsigned short wStoreBits, bool bSigned,
                                     bool bExact) override {
    m_calls.emplace_back("CreateBitsConvertedData");
    return C_WavData::CreateBitsConvertedData(wBits, wStoreBits, bSigned, bExact);
  }
  I_WavData* CreateChannelData(unsigned short wChannelNo, unsigned int dwStartSample,
                               unsigned int dwSampleCount) override {
    m_calls.emplace_back("CreateChannelData");
    return C_WavData::CreateChannelData(wChannelNo, dwStartSample, dwSampleCount);
  }
  // The calls since the last time.
  Calls TakeCalls() { return std::exchange(m_calls, {}); }

 private:
  Calls m_calls;
};

void Fill(C_DerivedSound& sound, const std::vector<short>& samples, unsigned short wChannels) {
  const auto dwLength = static_cast<unsigned int>(samples.size() * 2);
  sound.SetBuffer(samples.data(), dwLength);
  sound.SetWavInfoData(16000, dwLength, wChannels, 16, 16, true);
  sound.TakeCalls();
}

TEST(DerivedSound, ConvertBits_AsksForAConvertedCopyAndTakesIt) {
  C_DerivedSound sound;
  Fill(sound, {1000, -1000}, 1);
  EXPECT_TRUE(sound.ConvertBits(8, 8, false, true));
  EXPECT_EQ(sound.TakeCalls(), (Calls{"CreateBitsConvertedData", "CopyWavData", "SetBuffer"}));
  EXPECT_EQ(sound.GetBufferLength(), 2U);
  EXPECT_FALSE(sound.ConvertBits(7, 64, false, true));
  EXPECT_EQ(sound.TakeCalls(), (Calls{"CreateBitsConvertedData", "CopyWavData"}));
}

TEST(DerivedSound, Mixes_AreSetAsItsBuffer) {
  C_DerivedSound sound;
  Fill(sound, {10, 20, -30, -50}, 2);
  sound.ConvertToMono();
  EXPECT_EQ(sound.TakeCalls(), Calls{"SetBuffer"});
  sound.ConvertToStereo();
  EXPECT_EQ(sound.TakeCalls(), Calls{"SetBuffer"});
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(sound.GetBufferLength(), 8U);
}

TEST(DerivedSound, SamplesForEncoders_AreThoseOfItsOwnConversion) {
  C_DerivedSound sound;
  Fill(sound, {1, 2, 3}, 1);
  EXPECT_TRUE(C_MonoSamples::Of(sound).has_value());
  EXPECT_EQ(sound.TakeCalls(), Calls{"CreateBitsConvertedData"});
  EXPECT_TRUE(monomix::C_Samples::Of(sound).has_value());
  EXPECT_EQ(sound.TakeCalls(), Calls{"CreateChannelData"});
}

TEST(DerivedSound, DecodedHeron_GoesIntoMemoryThatItAllocates) {
  C_DerivedSound sound;
  Fill(sound, std::vector<short>(1000, 5), 1);
  C_HeronCodec codec;
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  ASSERT_TRUE(codec.Encode(&sound, AUDIO_FILE_HERON_4BIT, nullptr, nullptr, &pbyStream, &dwLength));
  const std::unique_ptr<unsigned char[]> stream(pbyStream);
  sound.TakeCalls();
  EXPECT_TRUE(codec.Decode(pbyStream, dwLength, &sound));
  EXPECT_EQ(sound.TakeCalls(), Calls{"AllocBuffer"});
  EXPECT_EQ(sound.GetBufferLength(), 2000U);
}

TEST(DerivedSound, LoadedStream_IsSetAsItsEncodedForm) {
  const C_TempFolder folder;
  const auto stream = C_KestrelBytes(16000).Voice(3).Take();
  const std::string strPath = folder.Write("a", C_SpBytes().Stream(stream).Take());
  C_DerivedSound sound;
  C_KestrelFile file;
  file.AttachWavData(&sound);
  EXPECT_TRUE(file.LoadByName(strPath.c_str(), false, nullptr, nullptr));
  file.DetachWavData();
  EXPECT_EQ(sound.TakeCalls(), (Calls{"SetEncBuffer", "AllocBuffer"}));
  EXPECT_EQ(sound.GetEncBufferLen(), stream.size());
}

}  // namespace
