// SPDX-License-Identifier: Apache-2.0
//
// Callbacks that change the sound that is being encoded or decoded. The result is that of the sound
// as it was at the beginning.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "ExampleSound.h"
#include "KestrelBytes.h"
#include "SpBytes.h"
#include "TempFolder.h"
#include "codec/KestrelCodec.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t kFrames = 12000;

I_WavData* g_pSound = nullptr;
unsigned int g_dwCalls = 0;

// Other samples, in other memory, at another rate.
void ChangeSound(const S_CodecProgress* /*pProgress*/) {
  ++g_dwCalls;
  const unsigned int dwLength = g_dwCalls % 2 == 0 ? 10 : 4000;
  std::fill_n(g_pSound->AllocBuffer(dwLength), dwLength, static_cast<unsigned char>(0x55));
  g_pSound->SetWavInfoData(8000, dwLength, 1, 8, 8, false);
}

void ChangeStream(void* /*pData*/, unsigned int /*dwLength*/) {
  ++g_dwCalls;
  const Bytes stream(g_dwCalls % 2 == 0 ? 1 : 300, 0x55);
  EXPECT_TRUE(g_pSound->SetEncBuffer(stream.data(), static_cast<unsigned int>(stream.size())));
}

class ChangingCallback : public testing::TestWithParam<S_SoundFormat> {
 protected:
  template <typename File>
  Bytes Encoded(PFN_CodecProgress pfnProgress) {
    const auto sound = ExampleSound(GetParam(), kFrames);
    g_pSound = sound.get();
    g_dwCalls = 0;
    File file;
    file.AttachWavData(sound.get());
    const std::string strPath = m_folder.Path("encoded");
    // The codec head names the rate.
    EXPECT_TRUE(file.WriteFile(strPath.c_str(), true, true, pfnProgress, true, 0));
    file.DetachWavData();
    return m_folder.Read("encoded");
  }

  C_TempFolder m_folder;
};

TEST_P(ChangingCallback, KestrelFile_IsThatOfTheFirstSound) {
  const Bytes quiet = Encoded<C_KestrelFile>(nullptr);
  EXPECT_GT(quiet.size(), 1000U);
  EXPECT_EQ(Encoded<C_KestrelFile>(ChangeSound), quiet);
  EXPECT_GT(g_dwCalls, 10U);
}

TEST_P(ChangingCallback, HeronFile_IsThatOfTheFirstSound) {
  const Bytes quiet = Encoded<C_Heron4BitFile>(nullptr);
  EXPECT_GT(quiet.size(), 1000U);
  EXPECT_EQ(Encoded<C_Heron4BitFile>(ChangeSound), quiet);
  EXPECT_GT(g_dwCalls, 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ChangingCallback,
    testing::Values(S_SoundFormat{16000, 1, 16, 16}, S_SoundFormat{16000, 2, 16, 16},
                    S_SoundFormat{16000, 1, 24, 32}, S_SoundFormat{16000, 3, 8, 8}),
    [](const auto& format) {
      return std::to_string(format.param.wChannels) + "x" + std::to_string(format.param.wBits);
    });

class C_DerivedSound : public C_WavData {};

template <typename Sound>
Bytes Stream(PFN_CodecProgress pfnProgress) {
  Sound sound;
  const auto example = ExampleSound({}, kFrames);
  EXPECT_TRUE(sound.CopyWavData(example.get()));
  g_pSound = &sound;
  g_dwCalls = 0;
  C_KestrelCodec codec;
  codec.LoadCodec(16000);
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  EXPECT_TRUE(codec.Encode(&sound, 16000, &pbyStream, &dwLength, pfnProgress));
  const std::unique_ptr<unsigned char[]> stream(pbyStream);
  return {pbyStream, pbyStream + dwLength};
}

TEST(ChangingCallbackOfTheCodec, Stream_IsThatOfTheFirstSound) {
  const Bytes quiet = Stream<C_WavData>(nullptr);
  EXPECT_EQ(Stream<C_WavData>(ChangeSound), quiet);
  EXPECT_GT(g_dwCalls, 10U);
  EXPECT_EQ(Stream<C_DerivedSound>(ChangeSound), quiet);
  EXPECT_GT(g_dwCalls, 10U);
}

TEST(ChangingCallbackOfALoad, Sound_IsThatOfTheFirstStream) {
  const C_TempFolder folder;
  const std::string strPath =
      folder.Write("a", C_SpBytes().Stream(C_KestrelBytes(16000).Voice(30).Take()).Take());
  C_KestrelFile quiet;
  ASSERT_TRUE(quiet.LoadByName(strPath.c_str(), false, nullptr, nullptr));
  C_KestrelFile file;
  ASSERT_TRUE(file.OpenByName(strPath.c_str()));
  g_pSound = file.GetWavData();
  g_dwCalls = 0;
  ASSERT_TRUE(file.LoadData(false, nullptr, ChangeStream));
  EXPECT_EQ(g_dwCalls, 30U);
  const auto samples = [](C_KestrelFile& loaded) {
    const unsigned char* pbyPcm = loaded.GetWavData()->GetBuffer();
    return Bytes(pbyPcm, pbyPcm + loaded.GetWavData()->GetBufferLength());
  };
  EXPECT_EQ(samples(file), samples(quiet));
}

}  // namespace
