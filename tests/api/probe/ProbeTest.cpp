// SPDX-License-Identifier: Apache-2.0
#include "probe/Probe.h"

#include <gtest/gtest.h>

#include <string>

#include "GeneratedRiff.h"
#include "HeronBytes.h"
#include "KestrelBytes.h"
#include "ReadSounds.h"
#include "SpBytes.h"
#include "VefBytes.h"

namespace {

using api::Probe;
using api::S_Probe;

constexpr const char* kNoRiff =
    "RIFF: the file begins with 00 FF 00 FF 56 4F 58 45 4C 54 52 4F and not with \"RIFF\", a size "
    "and a form\n";

}  // namespace

TEST(Probe, WavFile_TellsItsFormat) {
  const S_Probe probe = Probe(MonoWav(10).Take());
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_WAV);
  EXPECT_EQ(probe.eCodec, VOXPLAY_CODEC_PCM);
  EXPECT_TRUE(probe.bSupported);
  EXPECT_EQ(probe.strText, "RIFF: found, form \"WAVE\", PCM of 16 bits, 1 channel, 16000 Hz\n");
}

TEST(Probe, WavFileWhoseFormatComesLater_IsOneAllTheSame) {
  const C_Bytes file = C_RiffBytes("VEMD").Chunk("bext", C_Bytes(5000)).Take();
  const S_Probe probe = Probe(std::span(file).first(4096));
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_VEMD);
  EXPECT_EQ(probe.eCodec, VOXPLAY_CODEC_NONE);
  EXPECT_TRUE(probe.bSupported);
  EXPECT_EQ(probe.strText, "RIFF: found, form \"VEMD\", its format is not in these bytes\n");
}

TEST(Probe, WavFileOfAnotherTag_IsNotSupported) {
  const S_Probe probe =
      Probe(C_RiffBytes("WAVE").Chunk("fmt ", FmtBytes(0x55, 2, 44100, 0)).Take());
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_WAV);
  EXPECT_EQ(probe.eCodec, VOXPLAY_CODEC_NONE);
  EXPECT_FALSE(probe.bSupported);
  EXPECT_EQ(probe.strText,
            "RIFF: found, form \"WAVE\", fmt chunk: format tag 0x0055 is not supported\n");
}

TEST(Probe, SpHeader_TellsItsFields) {
  const S_Probe probe = Probe(C_SpBytes().Take());
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_SP);
  EXPECT_EQ(probe.eCodec, VOXPLAY_CODEC_KESTREL);
  EXPECT_TRUE(probe.bSupported);
  EXPECT_EQ(probe.strText,
            std::string(kNoRiff) + "SP header: found, version 254, identifier 14, 16000 Hz\n");
}

TEST(Probe, SpHeaderOfAnotherCodec_IsNotSupported) {
  const S_Probe probe = Probe(C_SpBytes().ID(35).Take());
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_SP);
  EXPECT_FALSE(probe.bSupported);
  EXPECT_EQ(probe.strText,
            std::string(kNoRiff) +
                "SP header: found, version 254, but identifier 35 is Heron of 2 or 3 bits, "
                "which is read from VEF files and after codec heads only\n");
}

TEST(Probe, SpHeadersThatAreWrong_SayWhere) {
  const auto lineOf = [](const C_SpBytes& sp) {
    const std::string strText = Probe(sp.Take()).strText;
    const std::size_t nAt = strText.find("SP header: ");
    return strText.substr(nAt, strText.find('\n', nAt) - nAt);
  };
  EXPECT_EQ(lineOf(C_SpBytes().Version(253)), "SP header: its version is 253 and not 254 or 255");
  EXPECT_EQ(lineOf(C_SpBytes().Kind(1)), "SP header: its kind is 1 and not 2");
  EXPECT_EQ(lineOf(C_SpBytes().Text("ANOTHER MAKER SP")),
            "SP header: its text is \"ANOTHER MAKER SP\", which is not known");
  EXPECT_EQ(lineOf(C_SpBytes().Signature(1)),
            "SP header: the file begins with 01 00 00 00 and not with 00 FF 00 FF");
}

TEST(Probe, VefFile_TellsItsPcm) {
  const S_Probe probe = Probe(KestrelVefBytes(10, 1).Take());
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_VEF);
  EXPECT_EQ(probe.eCodec, VOXPLAY_CODEC_PCM);
  EXPECT_TRUE(probe.strText.ends_with("VEF: found, PCM of 16 bits, 1 channel, 16000 Hz\n"));
}

TEST(Probe, CodecHead_TellsItsFields) {
  const C_Bytes heron = C_HeronBytes(heron::test::kKinds[3], TestVoice(500), 8000).Take();
  const S_Probe probe = Probe(Join({U16(35), U16(8000), U16(0), heron}));
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_HEAD);
  EXPECT_EQ(probe.eCodec, VOXPLAY_CODEC_HERON);
  EXPECT_TRUE(probe.strText.ends_with("codec head: found, type 35, 8000 Hz, version 0\n"));
}

TEST(Probe, BareKestrel_TellsItsRate) {
  const S_Probe probe = Probe(C_KestrelBytes(7200).Voice(2).Take());
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_BARE);
  EXPECT_EQ(probe.eCodec, VOXPLAY_CODEC_KESTREL);
  EXPECT_TRUE(probe.strText.ends_with("Kestrel stream: found, 38 bytes at 7200 bits per second\n"));
}

TEST(Probe, OtherBytes_HaveALineForEachTest) {
  const S_Probe probe = Probe(Ascii("OggS"));
  EXPECT_EQ(probe.eContainer, VOXPLAY_CONTAINER_NONE);
  EXPECT_EQ(probe.eCodec, VOXPLAY_CODEC_NONE);
  EXPECT_FALSE(probe.bSupported);
  EXPECT_EQ(probe.strText,
            "RIFF: the file begins with \"OggS\" and not with \"RIFF\", a size and a form\n"
            "SP header: 4 bytes are too few for it\n"
            "VEF: the file does not begin with \"RIFF\" and the form \"VEFF\"\n"
            "codec head: the file has fewer than 6 bytes\n"
            "Kestrel stream: there are fewer than 6 bytes\n");
}

TEST(Probe, HeronWithoutAHeader_IsNotKnown) {
  EXPECT_EQ(Probe(C_HeronBytes(heron::test::kKinds[0], TestVoice(500), 8000).Take()).eContainer,
            VOXPLAY_CONTAINER_NONE);
}

// Whatever opens was found by the probe before, with the same codec where the probe names one.
TEST(Probe, WhatItFinds_TheReaderOpens) {
  api::test::C_Random random(10);
  int nOpened = 0;
  for (int i = 0; i < 3000; ++i) {
    const C_Bytes file = api::test::Damaged(api::test::RandomRiff(random), random);
    const S_Probe probe = Probe(file);
    api::test::C_ReaderPtr reader;
    static_cast<void>(api::test::FailureOf([&] {
      reader = api::test::OpenBytes(file);
      return 0;
    }));
    if (!reader) continue;
    ++nOpened;
    EXPECT_TRUE(probe.bSupported) << probe.strText;
    EXPECT_EQ(std::uint32_t{probe.eContainer}, reader->Info().container);
    if (probe.eCodec != VOXPLAY_CODEC_NONE) {
      EXPECT_EQ(std::uint32_t{probe.eCodec}, reader->Info().codec);
    }
  }
  EXPECT_GT(nOpened, 500);
}
