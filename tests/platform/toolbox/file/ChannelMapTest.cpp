// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sndfile.h>

#include <array>
#include <cstdio>
#include <vector>

#include "CAAudioChannelLayout.h"
#include "Printed.h"
#include "SoundFiles.h"
#include "TempFolder.h"

namespace {

TEST(ChannelMapTest, SpeakerPositionsOfAnExtensibleFile_BecomeChannelLabels) {
  const C_TempFolder folder;
  SF_INFO info{};
  info.format = SF_FORMAT_WAVEX | SF_FORMAT_PCM_16;
  info.samplerate = 16000;
  info.channels = 3;
  SNDFILE* pSound = sf_open(folder.Path("x.wav").c_str(), SFM_WRITE, &info);
  std::array<int, 3> speakers = {SF_CHANNEL_MAP_LEFT, SF_CHANNEL_MAP_RIGHT, SF_CHANNEL_MAP_LFE};
  ASSERT_EQ(sf_command(pSound, SFC_SET_CHANNEL_MAP_INFO, speakers.data(), sizeof speakers),
            SF_TRUE);
  const std::array<short, 3> frame = {1, 2, 3};
  sf_writef_short(pSound, frame.data(), 1);
  sf_close(pSound);

  const AudioFileID audioFile = OpenSoundFile(folder.Path("x.wav"));
  UInt32 cbLayout = 0;
  EXPECT_EQ(
      AudioFileGetPropertyInfo(audioFile, kAudioFilePropertyChannelLayout, &cbLayout, nullptr),
      noErr);
  ASSERT_EQ(cbLayout, 12U + 3 * 20);
  std::vector<UInt8> bytes(cbLayout);
  EXPECT_EQ(
      AudioFileGetProperty(audioFile, kAudioFilePropertyChannelLayout, &cbLayout, bytes.data()),
      noErr);
  const auto layout = CAAudioChannelLayout::FromBytes(bytes.data(), cbLayout);
  EXPECT_EQ(Printed([&](std::FILE* p) { layout.Print(p); }),
            "\tTag=0x0, Num Chan Descs=3\n"
            "\t\tLabel=1, Flags=0x0, [az=0.000000,el=0.000000,dist=0.000000]\n"
            "\t\tLabel=2, Flags=0x0, [az=0.000000,el=0.000000,dist=0.000000]\n"
            "\t\tLabel=4, Flags=0x0, [az=0.000000,el=0.000000,dist=0.000000]\n");
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

}  // namespace
