// SPDX-License-Identifier: Apache-2.0
//
// Files that cannot be read somewhere. A read error is never taken for the end of the file: opening
// fails, or the call that reads says so, and what was read until then is right.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FakeDevice.h"
#include "FaultyIo.h"
#include "OfflinePlayer.h"
#include "PlayerGraph.h"
#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"
#include "file/AudioFile.h"

namespace {

using Samples = std::vector<float>;

constexpr std::size_t kFrames = 20000;
constexpr UInt32 kPiece = 512;
constexpr int kMostCalls = 2000;
constexpr int kFirstTransfer = 3;  // after the file was opened and asked for its size
constexpr int kMp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

// What a file gives that is opened and decoded to its end, or as far as it can be read.
struct S_Heard {
  OSStatus nOpened = noErr;
  OSStatus nRead = noErr;
  OSStatus nLastPacket = noErr;
  UInt64 qwPackets = 0;
  Samples samples;
  std::shared_ptr<toolbox::C_AudioFile> pFile;
};

S_Heard Hear(const std::string& strPath) {
  S_Heard heard;
  heard.nOpened = toolbox::C_AudioFile::Open(strPath, heard.pFile);
  if (heard.pFile == nullptr) return heard;
  heard.qwPackets = heard.pFile->PacketCount();
  Samples piece(kPiece);
  for (std::size_t nRead = 1; nRead != 0;) {
    nRead = heard.pFile->ReadFrames(static_cast<SInt64>(heard.samples.size()), kPiece, piece.data(),
                                    &heard.nRead);
    heard.samples.insert(heard.samples.end(), piece.begin(),
                         piece.begin() + static_cast<std::ptrdiff_t>(nRead));
  }
  UInt32 dwPackets = 1;
  UInt32 cbData = kPiece;
  heard.nLastPacket = heard.pFile->ReadPackets(static_cast<SInt64>(heard.qwPackets) - 1, dwPackets,
                                               cbData, piece.data());
  return heard;
}

// What is heard from where an error ended the sound, now that the file can be read again.
Samples HearOn(const S_Heard& heard) {
  Samples piece(kPiece);
  OSStatus nStatus = kAudioFileUnspecifiedError;
  piece.resize(heard.pFile->ReadFrames(static_cast<SInt64>(heard.samples.size()), kPiece,
                                       piece.data(), &nStatus));
  EXPECT_EQ(nStatus, noErr);
  return piece;
}

Samples Joined(Samples first, const Samples& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

bool BeginsWith(const Samples& whole, const Samples& first) {
  return first.size() <= whole.size() && std::equal(first.begin(), first.end(), whole.begin());
}

class ReadErrorTest : public testing::TestWithParam<int> {
 protected:
  std::string Write(int nFormat) {
    const std::string strPath = m_folder.Path("x");
    WriteSoundFile(strPath, nFormat, 16000, 1, SweepWithNoise(kFrames, 16000));
    return strPath;
  }
  // Makes the nCall-th call fail in every way. False when there are fewer calls.
  static bool HearWithFault(const std::string& strPath, const S_Heard& whole, S_IoFault fault) {
    C_FaultyIo faults(fault);
    const S_Heard heard = Hear(strPath);
    faults.Stop();
    if (heard.pFile == nullptr) {
      EXPECT_EQ(heard.nOpened, kAudioFileUnspecifiedError);
      EXPECT_FALSE(fault.bCutShort);
      return faults.WasHit();
    }
    EXPECT_EQ(heard.nOpened, noErr);
    EXPECT_EQ(heard.qwPackets, whole.qwPackets);
    if (heard.nRead == noErr) {
      EXPECT_EQ(heard.samples, whole.samples);
    } else {
      EXPECT_EQ(heard.nRead, kAudioFileUnspecifiedError);
      EXPECT_FALSE(fault.bCutShort);
      EXPECT_TRUE(BeginsWith(whole.samples, heard.samples));
      EXPECT_TRUE(BeginsWith(whole.samples, Joined(heard.samples, HearOn(heard))));
    }
    if (heard.nLastPacket != whole.nLastPacket) {
      EXPECT_EQ(heard.nLastPacket, kAudioFileUnspecifiedError);
      EXPECT_FALSE(fault.bCutShort);
    }
    return faults.WasHit();
  }

  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

TEST_P(ReadErrorTest, EachCallFailing_IsAnErrorAndNotTheEnd) {
  const std::string strPath = Write(GetParam());
  const S_Heard whole = Hear(strPath);
  ASSERT_EQ(whole.nOpened, noErr);
  ASSERT_GE(whole.samples.size(), kFrames);
  for (S_IoFault fault : {S_IoFault{.bFromThenOn = false}, S_IoFault{.bFromThenOn = true},
                          S_IoFault{.bCutShort = true}}) {
    fault.nCall = fault.bCutShort ? kFirstTransfer : 1;
    while (fault.nCall < kMostCalls && HearWithFault(strPath, whole, fault)) {
      ASSERT_FALSE(HasFailure()) << "at call " << fault.nCall;
      ++fault.nCall;
    }
    EXPECT_GT(fault.nCall, 6) << "the calls are not seen";
    EXPECT_LT(fault.nCall, kMostCalls);
  }
}

// Vorbis is missing here, because the file library leaks memory when it cannot read the head of
// such a stream.
INSTANTIATE_TEST_SUITE_P(
    All, ReadErrorTest,
    testing::Values(SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM,
                    SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM, SF_FORMAT_WAV | SF_FORMAT_GSM610,
                    SF_FORMAT_FLAC | SF_FORMAT_PCM_16, kMp3),
    [](const auto& parameter) { return "Format" + std::to_string(parameter.param); });

using UnreadableWhilePlaying = ReadErrorTest;

// The first call that fails is one of those that the player unit makes.
TEST_P(UnreadableWhilePlaying, UnitSaysSo_AndIsSilent) {
  C_OfflinePlayer player;
  player.UseFile(Write(GetParam()));
  player.Play(kFrames);
  EXPECT_EQ(player.Cycle(kPiece), noErr);
  const C_FaultyIo faults({.nCall = 1, .bFromThenOn = true});
  // What was read ahead is heard first.
  int nHeard = 0;
  while (nHeard < kMostCalls && player.Cycle(kPiece) == noErr) ++nHeard;
  EXPECT_LT(nHeard, kMostCalls);
  EXPECT_TRUE(faults.WasHit());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(player.Cycle(kPiece), kAudioFileUnspecifiedError);
}

TEST_P(UnreadableWhilePlaying, Playback_GoesOnInSilence) {
  C_FakeDevices devices;
  const C_PlayerGraph graph(OpenSoundFile(Write(GetParam())));
  graph.Schedule(kFrames);
  graph.Start();
  devices.Ask<float>(kPiece);
  const C_FaultyIo faults({.nCall = 1, .bFromThenOn = true});
  devices.Ask<float>(kPiece * 200);
  EXPECT_TRUE(faults.WasHit());
  const double dBefore = graph.Position();
  const auto rest = devices.Ask<float>(kPiece);
  EXPECT_TRUE(IsSilent(rest.begin(), rest.end()));
  EXPECT_EQ(graph.Position() - dBefore, kPiece);
}

INSTANTIATE_TEST_SUITE_P(All, UnreadableWhilePlaying,
                         testing::Values(SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                                         SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, kMp3),
                         [](const auto& parameter) {
                           return "Format" + std::to_string(parameter.param);
                         });

}  // namespace
