// SPDX-License-Identifier: Apache-2.0
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include "OtherPrograms.h"
#include "Sanitized.h"
#include "VoxtoolTest.h"
#include "WavBytes.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CheckCommand : public C_VoxtoolTest {
 protected:
  [[nodiscard]] std::string Verdict(const std::string& strName) const {
    const S_Run run = Voxtool({"check", "@" + strName});
    EXPECT_EQ(run.strErr, "");
    const std::string strBegin = Path(strName) + ": ";
    EXPECT_THAT(run.strOut, StartsWith(strBegin));
    EXPECT_EQ(run.nExit, run.strOut == strBegin + "good\n" ? 0 : 1);
    return run.strOut.substr(strBegin.size());
  }
  std::vector<std::uint8_t> Kestrel() const {
    return WrittenBytes(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL),
                        PublicSamples(16000));
  }
};

TEST_F(CheckCommand, EveryKindThatIsWritten_IsGood) {
  for (const S_PublicKind& kind : PublicKinds()) {
    WriteSound(kind.strName, kind.format, PublicSamples(8000, kind.format.channels));
    EXPECT_EQ(Verdict(kind.strName), "good\n") << kind.strName;
  }
}

TEST_F(CheckCommand, DamagedFrames_AreCounted) {
  auto bytes = Kestrel();
  // The second frame of the stream.
  std::fill(bytes.begin() + 54 + 40, bytes.begin() + 54 + 80, std::uint8_t{0});
  Write("a.kst", bytes);
  EXPECT_EQ(Verdict("a.kst"), "damaged: 320 of 16,000 frames (0:00.020)\n");
}

TEST_F(CheckCommand, FilesThatTheEndCuts_AreCut) {
  auto bytes = Kestrel();
  bytes.resize(1054);
  Write("a.kst", bytes);
  EXPECT_EQ(Verdict("a.kst"), "cut: it ends after 8,000 of 16,000 frames\n");
  C_Bytes wav = MonoWav(1000).Take();
  wav.resize(544);
  Write("a.wav", wav);
  EXPECT_EQ(Verdict("a.wav"), "cut: chunk \"data\" holds 500 of 1,000 bytes\n");
}

TEST_F(CheckCommand, KestrelThatLacksAByte_IsCutAndNotDamaged) {
  auto bytes = Kestrel();
  bytes.pop_back();
  Write("a.kst", bytes);
  EXPECT_EQ(Verdict("a.kst"), "cut: its end is missing\n");
}

TEST_F(CheckCommand, HeronThatTheEndCuts_IsCut) {
  auto bytes = WrittenBytes(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4, 8000),
                            PublicSamples(100000));
  bytes.resize(bytes.size() / 2);
  Write("a.hrn", bytes);
  EXPECT_THAT(Verdict("a.hrn"), testing::MatchesRegex("cut: it ends after .* of 100,000 frames\n"));
}

TEST_F(CheckCommand, WavThatLacksItsLastChunk_IsCut) {
  C_Bytes wav = MonoWav(1000).Chunk("bext", C_Bytes(20)).Take();
  wav.resize(1044);
  Write("a.wav", wav);
  EXPECT_EQ(Verdict("a.wav"), "cut: its end is missing\n");
}

TEST_F(CheckCommand, FilesOfOtherLibrariesThatTheEndCuts_AreCut) {
  WriteSound("a.wav", FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16),
             PublicSamples(160000));
  const C_TempFolder folder;
  for (const std::string strName : {"a.aiff", "a.aifc", "a.au", "a.flac", "a.ogg", "a.opus"}) {
    RunIn(folder, "ffmpeg -loglevel error -y -i " + Path("a.wav") + " " +
                      (strName == "a.aifc" ? "-f aiff " : "") +
                      (strName == "a.opus" ? "-c:a libopus " : "") + Path(strName));
    EXPECT_EQ(Verdict(strName), "good\n") << strName;
    auto bytes = Content(strName);
    bytes.resize(bytes.size() - bytes.size() / 3);
    Write(strName, bytes);
    EXPECT_THAT(Verdict(strName), StartsWith("cut: ")) << strName;
  }
  for (const std::string strName : {"b.w64", "b.caf"}) {
    RunIn(folder, "sox " + Path("a.wav") + " " + Path(strName));
    EXPECT_EQ(Verdict(strName), "good\n") << strName;
    auto bytes = Content(strName);
    bytes.resize(bytes.size() - 40);
    Write(strName, bytes);
    EXPECT_EQ(Verdict(strName), "cut: its end is missing\n") << strName;
  }
  EXPECT_EQ(RunLine("ffmpeg -loglevel error -i @a.wav -f w64 - | cat > @piped.w64").nExit, 0);
  EXPECT_EQ(Verdict("piped.w64"), "good\n");
  RunIn(folder, "sox " + Path("a.wav") + " " + Path("b.aiff"));
  auto bytes = Content("b.aiff");
  bytes.resize(bytes.size() - 2);
  Write("b.aiff", bytes);
  EXPECT_EQ(Verdict("b.aiff"), "cut: its end is missing\n");
}

TEST_F(CheckCommand, MpegThatTellsNoLength_IsNotCut) {
  WriteWav("a.wav");
  const C_TempFolder folder;
  RunIn(folder, "ffmpeg -loglevel error -y -i " + Path("a.wav") +
                    " -write_xing 0 -id3v2_version 0 " + Path("guessed.mp3"));
  RunIn(folder, "ffmpeg -loglevel error -y -i " + Path("a.wav") + " " + Path("told.mp3"));
  EXPECT_EQ(Verdict("guessed.mp3"), "good\n");
  EXPECT_EQ(Verdict("told.mp3"), "good\n");
  for (const std::string strName : {"guessed.mp3", "told.mp3"}) {
    auto bytes = Content(strName);
    bytes.resize(bytes.size() / 2);
    Write(strName, bytes);
  }
  EXPECT_EQ(Verdict("guessed.mp3"), "good\n");
  EXPECT_THAT(Verdict("told.mp3"), StartsWith("cut: it ends after "));
}

// Libraries say on standard error what they think of such a file.
TEST_F(CheckCommand, NoiseInAnMpegStream_IsToldInOneLine) {
  WriteSound("a.wav", FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16),
             PublicSamples(160000));
  const C_TempFolder folder;
  RunIn(folder, "ffmpeg -loglevel error -y -i " + Path("a.wav") + " -write_xing 0 -b:a 64k " +
                    Path("a.mp3"));
  auto bytes = Content("a.mp3");
  std::uint32_t dwNoise = 1;
  for (std::size_t n = bytes.size() / 3; n < bytes.size() / 2; ++n) {
    bytes[n] = static_cast<std::uint8_t>((dwNoise = dwNoise * 1664525U + 1013904223U) >> 24U);
  }
  Write("a.mp3", bytes);
  // Whether the decoder finds a way on is its own affair.
  EXPECT_THAT(Verdict("a.mp3"), testing::AnyOf("good\n", "cut: its end is missing\n"));
}

TEST_F(CheckCommand, StreamBesideGoodPcm_IsChecked) {
  auto bytes =
      WrittenBytes(FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_KESTREL), PublicSamples(16000));
  std::fill(bytes.end() - 400, bytes.end() - 360, std::uint8_t{0});
  Write("a.vef", bytes);
  EXPECT_THAT(Verdict("a.vef"), StartsWith("damaged: its stream: 320 of 16,000 frames"));
}

TEST_F(CheckCommand, OtherFiles_AreUnknown) {
  Write("a", {'n', 'o'});
  Write("empty", {});
  EXPECT_EQ(Verdict("a"), "unknown: none of the known formats\n");
  EXPECT_EQ(Verdict("empty"), "unknown: none of the known formats\n");
}

TEST_F(CheckCommand, FilesThatCannotBeRead_AreFailures) {
  const S_Run run = Voxtool({"check", "@missing", "@"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strOut, "");
  EXPECT_THAT(run.strErr, HasSubstr(Path("missing") + ": unreadable: there is no such file\n"));
  EXPECT_THAT(run.strErr, HasSubstr(Folder() + ": is a folder: -r takes the sounds in it\n"));
}

TEST_F(CheckCommand, Quiet_NamesOnlyWhatIsNotGood) {
  WriteWav("good.wav");
  Write("bad", {'n', 'o'});
  const S_Run run = Voxtool({"check", "-q", "@good.wav", "@bad", "@good.wav"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strOut, Path("bad") + ": unknown: none of the known formats\n");
  EXPECT_EQ(Output({"check", "-q", "@good.wav"}), "");
  EXPECT_EQ(Output({"check", "-qq", "@good.wav", "@good.wav"}), "");
}

TEST_F(CheckCommand, Json_HasOneObjectPerFile) {
  WriteWav("good.wav");
  Write("bad", {'n', 'o'});
  const S_Run run = Voxtool({"check", "--json", "@good.wav", "@bad"});
  EXPECT_EQ(run.nExit, 1);
  const auto json = nlohmann::json::parse(run.strOut);
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["verdict"], "good");
  EXPECT_EQ(json[0]["frames"], 16000);
  EXPECT_EQ(json[0]["damaged_frames"], 0);
  EXPECT_EQ(json[1]["verdict"], "unknown");
  EXPECT_EQ(json[1]["reason"], "none of the known formats");
}

TEST_F(CheckCommand, JsonLines_HaveAnObjectPerFile) {
  WriteWav("good.wav");
  const S_Run run = Voxtool({"check", "--json-lines", "@missing", "@good.wav"});
  EXPECT_EQ(run.nExit, 1);
  const std::size_t nEnd = run.strOut.find('\n');
  EXPECT_EQ(nlohmann::json::parse(run.strOut.substr(0, nEnd))["verdict"], "unreadable");
  EXPECT_EQ(nlohmann::json::parse(run.strOut.substr(nEnd + 1))["verdict"], "good");
}

TEST_F(CheckCommand, Folders_AreCheckedInOrderAndSummedUp) {
  for (const char* const pszName : {"c", "a", "b"}) {
    std::filesystem::create_directory(Path(pszName));
    WriteWav(pszName + std::string("/1.wav"));
  }
  Write("b/2.wav", {'n', 'o'});
  const S_Run run = Voxtool({"check", "-r", "-j", "3", "@c", "@a", "@b"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strOut, Path("c/1.wav") + ": good\n" + Path("a/1.wav") + ": good\n" +
                            Path("b/1.wav") + ": good\n" + Path("b/2.wav") +
                            ": unknown: none of the known formats\n");
  EXPECT_THAT(run.strErr, StartsWith("4 files: 3 good, 1 not good; 3 s of sound in "));
}

TEST_F(CheckCommand, NamesInAFile_AreChecked) {
  WriteWav("a.wav");
  const std::string strName = Path("a.wav");
  C_Bytes names(strName.begin(), strName.end());
  names.push_back(0);
  Write("names", names);
  EXPECT_EQ(Output({"check", "--files-from", "@names", "-0"}), strName + ": good\n");
}

TEST_F(CheckCommand, NameThatIsNoUtf8_IsAlsoThereInHexadecimal) {
  WriteWav("caf\xE9.wav");
  const auto json = Json({"check", "--json", "@caf\xE9.wav"}).at(0);
  const std::string strHex = json["file_bytes"];
  EXPECT_TRUE(strHex.ends_with("636166e92e776176")) << strHex;
  EXPECT_TRUE(json["file"].get<std::string>().ends_with("caf\xEF\xBF\xBD.wav"));
  WriteWav("a.wav");
  EXPECT_FALSE(Json({"check", "--json", "@a.wav"}).at(0).contains("file_bytes"));
}

TEST_F(CheckCommand, SoundWithoutARate_IsDamaged) {
  auto bytes = MonoWav(1000).Take();
  std::fill_n(bytes.begin() + 24, 4, std::uint8_t{0});
  Write("a.wav", bytes);
  EXPECT_EQ(Verdict("a.wav"), "damaged: it has no sample rate\n");
}

TEST_F(CheckCommand, InterruptWhilePipesHaveNoWriter_EndsIt) {
  for (const char* pszName : {"a", "b"}) ASSERT_EQ(mkfifo(Path(pszName).c_str(), 0600), 0);
  // With one, the thread that gets the signal is the one that reads.
  for (const char* pszThreads : {"1", "2"}) {
    C_RunningProgram run = Program().Start({"check", Path("a"), Path("b"), "-j", pszThreads});
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    run.Send(SIGINT);
    EXPECT_EQ(run.Wait().nExit, 130);
  }
}

TEST_F(CheckCommand, NoFile_IsAUsageError) {
  const S_Run run = Voxtool({"check"});
  EXPECT_EQ(run.nExit, 2);
  EXPECT_EQ(run.strErr, "voxtool check: no file is named\nTry \"voxtool check --help\".\n");
}

TEST_F(CheckCommand, FilesOfOtherLibraries_AreChecked) {
  WriteWav("a.wav");
  const C_TempFolder folder;
  RunIn(folder, "sox " + Path("a.wav") + " " + Path("a.flac"));
  EXPECT_EQ(Verdict("a.flac"), "good\n");
}

// Sanitizers need a large room for addresses.
TEST_F(CheckCommand, LongSound_DoesNotHaveToFitInMemory) {
  constexpr std::uint32_t kBytes = 230400000;
  C_Bytes head = MonoWav(0).RiffSize(36 + kBytes).Take();
  head.resize(head.size() - 4);
  const C_Bytes size = U32(kBytes);
  head.insert(head.end(), size.begin(), size.end());
  Write("long.wav", head);
  std::filesystem::resize_file(Path("long.wav"), head.size() + kBytes);
  const C_Program tool(VOXTOOL);
  const S_Run run = tool.Start({"check", Path("long.wav")}, {},
                               [] {
                                 const rlimit limit{160U << 20U, 160U << 20U};
                                 if (!kSanitized) setrlimit(RLIMIT_AS, &limit);
                               })
                        .Wait();
  EXPECT_EQ(run.strOut, Path("long.wav") + ": good\n") << run.strErr;
}

}  // namespace
