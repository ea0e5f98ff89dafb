// SPDX-License-Identifier: Apache-2.0
#include "AllNotes.h"
#include "OtherPrograms.h"
#include "VoxtoolTest.h"
#include "WavBytes.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class InfoCommand : public C_VoxtoolTest {
 protected:
  [[nodiscard]] std::string FromSoxi(const std::string& strOption,
                                     const std::string& strName) const {
    const C_TempFolder folder;
    const auto bytes = RunIn(folder, "soxi " + strOption + " " + Path(strName));
    return {bytes.begin(), bytes.end() - 1};
  }
};

TEST_F(InfoCommand, WavFile_IsToldAsOtherProgramsTellIt) {
  WriteSound("a.wav", FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 24, 44100, 2),
             PublicSamples(50000, 2));
  const auto info = Json({"info", "--json", "@a.wav"});
  ASSERT_EQ(info.size(), 1U);
  EXPECT_EQ(info[0]["schema"], 1);
  EXPECT_EQ(info[0]["container"], "wav");
  EXPECT_EQ(info[0]["codec"], "pcm");
  EXPECT_EQ(info[0]["sample_rate"].dump(), FromSoxi("-r", "a.wav"));
  EXPECT_EQ(info[0]["channels"].dump(), FromSoxi("-c", "a.wav"));
  EXPECT_EQ(info[0]["bits_per_sample"].dump(), FromSoxi("-b", "a.wav"));
  EXPECT_EQ(info[0]["frames"].dump(), FromSoxi("-s", "a.wav"));
  EXPECT_EQ(info[0]["length"], "0:01.134");
  EXPECT_EQ(info[0]["bytes"], Content("a.wav").size());
  EXPECT_FALSE(info[0].contains("bit_rate") && info[0]["bit_rate"] == 0);
  EXPECT_FALSE(info[0].contains("damaged_frames"));
}

TEST_F(InfoCommand, Text_IsWhatPeopleRead) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{8000, 3, 1, 0, ""});
  WriteWav("a.wav", notes);
  EXPECT_EQ(Output({"info", "@a.wav"}), Path("a.wav") +
                                            "\n"
                                            "  Format  WAV, PCM, 16 bits\n"
                                            "  Rate    16,000 Hz, mono\n"
                                            "  Length  0:01.000 (16,000 frames)\n"
                                            "  Size    32,110 bytes\n"
                                            "  Marks (1)\n"
                                            "    kind   no.      time  frame  content\n"
                                            "    event    1  0:00.500  8,000  main 3, sub 1\n"
                                            "  Chunks (4)\n"
                                            "    chunk  offset   bytes\n"
                                            "    fmt        20      16\n"
                                            "    data       44  32,000\n"
                                            "    cue    32,052      28\n"
                                            "    LIST   32,088      22\n");
}

TEST_F(InfoCommand, SeveralFiles_AreSeparatedAndGoOnAfterAFailure) {
  WriteWav("a.wav");
  const S_Run run = Voxtool({"info", "@a.wav", "@missing", "@a.wav"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_THAT(run.strOut, StartsWith(Path("a.wav") + "\n"));
  EXPECT_THAT(run.strOut, HasSubstr("\n\n" + Path("a.wav") + "\n"));
  EXPECT_THAT(run.strErr, StartsWith(Path("missing") + ": there is no such file\n" +
                                     "3 files: 2 read, 1 failed; 2 s of sound in "));
}

TEST_F(InfoCommand, JsonLines_HaveAnObjectPerFile) {
  WriteWav("a.wav");
  Write("b", {'n', 'o'});
  const S_Run run = Voxtool({"info", "--json-lines", "@a.wav", "@b"});
  EXPECT_EQ(run.nExit, 1);
  const std::size_t nEnd = run.strOut.find('\n');
  EXPECT_EQ(nlohmann::json::parse(run.strOut.substr(0, nEnd))["frames"], 16000);
  const auto other = nlohmann::json::parse(run.strOut.substr(nEnd + 1));
  EXPECT_THAT(other["error"].get<std::string>(), HasSubstr("none of the known formats"));
  EXPECT_EQ(other["tests"].size(), 5U);
}

TEST_F(InfoCommand, UnknownFile_SaysWhichTestsFailed) {
  Write("b", {'n', 'o', 'n', 'e', ' ', 'o', 'f', ' ', 't', 'h', 'e', 'm'});
  const S_Run quiet = Voxtool({"info", "-q", "@b"});
  EXPECT_EQ(quiet.strErr, Path("b") + ": unknown: none of the known formats\n");
  const S_Run run = Voxtool({"info", "@b"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strOut, "");
  for (const char* const pszTest :
       {": RIFF: ", ": SP header: ", ": VEF: ", ": codec head: ", ": Kestrel stream: "}) {
    EXPECT_THAT(run.strErr, HasSubstr(Path("b") + pszTest));
  }
  EXPECT_THAT(run.strErr, EndsWith(": unknown: none of the known formats\n"));
  EXPECT_EQ(Voxtool({"info", "-v", "@b"}).strErr, run.strErr);
}

TEST_F(InfoCommand, Headers_AreTold) {
  WriteSound("a.kst", FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL, 0, 8000),
             PublicSamples(3200));
  WriteSound("a.head", FormatOf(VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_HERON, 3, 8000),
             PublicSamples(3200));
  const auto info = Json({"info", "-qq", "--json", "@a.kst", "@a.head"});
  EXPECT_EQ(info[0]["headers"]["sp"]["identifier"], 14);
  EXPECT_EQ(info[0]["headers"]["sp"]["sample_rate"], 8000);
  EXPECT_EQ(info[0]["bit_rate"], 16000);
  EXPECT_EQ(info[1]["headers"]["codec_head"]["type"], 36);
  EXPECT_EQ(info[1]["bits_per_sample"], 3);
  EXPECT_EQ(info[1]["chunks"].size(), 0U);
  EXPECT_THAT(Output({"info", "@a.kst"}),
              HasSubstr("  SP header  version 254, identifier 14, format 16, sample rate 8000\n"));
}

TEST_F(InfoCommand, StreamBesideThePcm_IsTold) {
  WriteSound("a.vef", FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_KESTREL), PublicSamples(16000));
  const auto info = Json({"info", "--json", "@a.vef"});
  EXPECT_EQ(info[0]["codec"], "pcm");
  EXPECT_EQ(info[0]["has_stream"], true);
  EXPECT_EQ(info[0]["stream"]["codec"], "kestrel");
  EXPECT_EQ(info[0]["stream"]["frames"], 16000);
  EXPECT_EQ(info[0]["headers"]["vafm"]["bit_rate"], 16000);
  EXPECT_THAT(
      Output({"info", "@a.vef"}),
      HasSubstr("  Stream      Kestrel, 16000 bit/s, 16,000 Hz, 0:01.000 (16,000 frames)\n"));
}

TEST_F(InfoCommand, MarksOfEveryKind_HaveTheirLists) {
  WriteWav("a.wav", NotesOfAllKinds());
  const auto info = Json({"info", "--json", "@a.wav"})[0];
  EXPECT_EQ(info["events"].size(), 2U);
  EXPECT_EQ(info["events"][1]["main_command"], 65535);
  EXPECT_EQ(info["silence"][0]["length"], 400);
  EXPECT_EQ(info["regions"][0]["start"], 5000);
  EXPECT_EQ(info["cue_points"].size(), 14U);
  EXPECT_EQ(info["labels"].size(), 13U);
  EXPECT_EQ(info["labels"][0]["name"], "plain");
  EXPECT_EQ(info["notes"][0]["text"], "a note\non the third");
  EXPECT_EQ(info["texts"].size(), 2U);
  EXPECT_EQ(info["loops"][0]["length"], 100);
}

TEST_F(InfoCommand, Damage_IsCountedWhenAsked) {
  auto bytes =
      WrittenBytes(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL), PublicSamples(16000));
  std::fill(bytes.begin() + 1054, bytes.begin() + 1134, std::uint8_t{0});
  Write("a.kst", bytes);
  const auto info = Json({"info", "--json", "--damage", "@a.kst"})[0];
  EXPECT_EQ(info["damaged_frames"], 640);
  EXPECT_EQ(info["frames"], 16000);
  EXPECT_THAT(Output({"info", "--damage", "@a.kst"}),
              HasSubstr("  Damage     640 of 16,000 frames (0:00.040)\n"));
}

TEST_F(InfoCommand, FilesOfOtherLibraries_AreToldAsWell) {
  WriteWav("a.wav");
  const C_TempFolder folder;
  RunIn(folder, "sox " + Path("a.wav") + " " + Path("a.flac"));
  const auto info = Json({"info", "--json", "@a.flac"})[0];
  EXPECT_THAT(info["format"].get<std::string>(), StartsWith("FLAC"));
  EXPECT_EQ(info["frames"], 16000);
  EXPECT_FALSE(info.contains("codec"));
}

TEST_F(InfoCommand, ChunkThatTheEndCuts_IsShown) {
  C_Bytes bytes = MonoWav(1000).Take();
  bytes.resize(544);
  Write("a.wav", bytes);
  const auto info = Json({"info", "--json", "@a.wav"})[0];
  EXPECT_EQ(info["chunks"][1]["size"], 1000);
  EXPECT_EQ(info["chunks"][1]["held"], 500);
  EXPECT_THAT(Output({"info", "@a.wav"}), HasSubstr("500, the end of the file cuts it"));
}

TEST_F(InfoCommand, StandardInput_IsRead) {
  WriteWav("a.wav");
  const C_TempFolder folder;
  const auto out = RunIn(folder, "(cat " + Path("a.wav") + " | " VOXTOOL " info -)");
  const std::string strOut(out.begin(), out.end());
  EXPECT_THAT(strOut, StartsWith("standard input\n"));
  EXPECT_THAT(strOut, Not(HasSubstr("Size")));
}

TEST_F(InfoCommand, NamesWithControlCharacters_DoNothingToTerminals) {
  WriteWav("a\x1b[31m.wav");
  EXPECT_THAT(Output({"info", "@a\x1b[31m.wav"}), HasSubstr("a\\x1b[31m.wav\n"));
  WriteWav("\xFF.wav");
  EXPECT_EQ(Json({"info", "--json", "@/\xFF.wav"})[0]["file"], Folder() + "/\xEF\xBF\xBD.wav");
}

TEST_F(InfoCommand, WhatCannotBeMeant_IsAUsageError) {
  EXPECT_EQ(Voxtool({"info"}).nExit, 2);
  EXPECT_EQ(Voxtool({"info", "--json", "--json-lines", "x"}).nExit, 2);
  EXPECT_EQ(Voxtool({"info", "-", "-"}).nExit, 2);
}

}  // namespace
