// SPDX-License-Identifier: Apache-2.0
//
// Sounds whose format claims more bytes than their buffer holds. No writer and no encoder reads
// beyond the buffer, and none writes what a process has in its memory there.
#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "ExampleSound.h"
#include "TempFolder.h"
#include "codec/HeronCodec.h"
#include "codec/KestrelCodec.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"
#include "file/VefFile.h"
#include "file/WavFile.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t kFrames = 640;

class FalseLength : public testing::Test {
 protected:
  FalseLength() : m_sound(ExampleSound({}, kFrames)) {
    m_folder.Write("old", {1, 2, 3});
    Claim(1);
  }
  void Claim(unsigned int dwMoreBytes, unsigned short wBits = 16) {
    m_sound->SetWavInfoData(16000, kFrames * 2 + dwMoreBytes, 1, wBits, 16, true);
  }
  bool Writes(C_WavFileBase& file, const std::string& strName, bool bEncode) {
    file.AttachWavData(m_sound.get());
    const bool bRet =
        file.WriteFile(m_folder.Path(strName).c_str(), bEncode, false, nullptr, true, 0);
    file.DetachWavData();
    return bRet;
  }

  C_TempFolder m_folder;
  C_SoundPtr m_sound;
};

TEST_F(FalseLength, WavFiles_AreNotWritten) {
  for (const tagAudioFileType eKind : {AUDIO_FILE_WAVE, AUDIO_FILE_VEMD}) {
    for (const unsigned short wBits : std::array<unsigned short, 2>{16, 12}) {
      Claim(1 << 20, wBits);
      C_WavFile file;
      file.SetFileFormat(eKind);
      EXPECT_FALSE(Writes(file, "new", true));
      EXPECT_FALSE(Writes(file, "old", true));
    }
  }
  EXPECT_FALSE(m_folder.Has("new"));
  EXPECT_EQ(m_folder.Read("old"), (Bytes{1, 2, 3}));
}

TEST_F(FalseLength, Containers_AreNotWritten) {
  C_VefFile vef;
  C_KestrelFile kestrel;
  C_Heron4BitFile heron;
  for (C_WavFileBase* pFile : std::initializer_list<C_WavFileBase*>{&vef, &kestrel, &heron}) {
    EXPECT_FALSE(Writes(*pFile, "new", false));
    EXPECT_FALSE(Writes(*pFile, "old", false));
  }
  EXPECT_FALSE(m_folder.Has("new"));
  EXPECT_EQ(m_folder.Read("old"), (Bytes{1, 2, 3}));
}

TEST_F(FalseLength, Codecs_RefuseTheSound) {
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  Claim(1 << 20);
  C_KestrelCodec kestrel;
  kestrel.LoadCodec(16000);
  EXPECT_FALSE(kestrel.Encode(m_sound.get(), 16000, &pbyStream, &dwLength, nullptr));
  C_HeronCodec heron;
  EXPECT_FALSE(
      heron.Encode(m_sound.get(), AUDIO_FILE_HERON_4BIT, nullptr, nullptr, &pbyStream, &dwLength));
}

TEST_F(FalseLength, TrueLength_IsWritten) {
  Claim(0);
  C_WavFile file;
  file.SetFileFormat(AUDIO_FILE_WAVE);
  EXPECT_TRUE(Writes(file, "new", true));
  EXPECT_EQ(m_folder.Read("new").size(), 12 + 24 + 8 + kFrames * 2);
}

}  // namespace
