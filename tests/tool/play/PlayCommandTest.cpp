// SPDX-License-Identifier: Apache-2.0
//
// "voxtool play" without a sound server and without a terminal.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "ChildProcess.h"
#include "PlayedSounds.h"
#include "TempFolder.h"

namespace {

class PlayCommand : public testing::Test {
 protected:
  [[nodiscard]] S_Run Run(const C_Program::Texts& operands) const {
    C_Program::Texts arguments = {"play"};
    arguments.insert(arguments.end(), operands.begin(), operands.end());
    return program.Run(arguments);
  }
  [[nodiscard]] std::string Wav(const char* pszName, std::size_t nFrames) const {
    WriteWav(folder.Path(pszName), 8000, 1, nFrames);
    return folder.Path(pszName);
  }

  const C_TempFolder folder;
  const C_Program program{VOXTOOL};
};

TEST_F(PlayCommand, WithoutADevice_SaysSoOnceAndTakesTheTime) {
  const std::string strFile = Wav("a.wav", 4000);
  const S_Run run = Run({strFile, strFile});
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(run.strOut, "");
  EXPECT_EQ(run.strErr, "no output device; playing silently in real time\n");
  EXPECT_GE(run.dSeconds, 1.0);
}

TEST_F(PlayCommand, InWantedSilence_SaysNothing) {
  const S_Run run = Run({"--null", Wav("a.wav", 4000)});
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(run.strOut + run.strErr, "");
  EXPECT_GE(run.dSeconds, 0.5);
}

TEST_F(PlayCommand, AFileThatCannotBePlayed_DoesNotStopTheOthers) {
  folder.Write("b.wav", {'n', 'o', 't', 'h', 'i', 'n', 'g'});
  const S_Run run =
      Run({"--null", folder.Path("none.wav"), folder.Path("b.wav"), Wav("a.wav", 2000)});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_TRUE(run.strErr.starts_with(folder.Path("none.wav") + ": ")) << run.strErr;
  EXPECT_NE(run.strErr.find("\n" + folder.Path("b.wav") + ": "), std::string::npos) << run.strErr;
  EXPECT_GE(run.dSeconds, 0.25);
}

TEST_F(PlayCommand, AnEmptySound_IsPlayed) {
  const S_Run run = Run({"--null", Wav("empty.wav", 0)});
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(run.strErr, "");
}

TEST_F(PlayCommand, ACutFile_IsToldAndPlayed) {
  const std::string strFile = Wav("a.wav", 4000);
  auto bytes = folder.Read("a.wav");
  bytes.resize(44 + 2 * 1000);
  folder.Write("a.wav", bytes);
  const S_Run run = Run({"--null", strFile});
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(run.strErr, strFile + ": the file is cut: its end is missing\n");
}

TEST_F(PlayCommand, NothingButFailuresInALoop_Ends) {
  const S_Run run = Run({"--null", "--loop", "/nowhere/a.wav", "/nowhere/b.wav"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_NE(run.strErr.find("/nowhere/b.wav: "), std::string::npos) << run.strErr;
}

TEST_F(PlayCommand, EventsInThePart_PassInOrder) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{800, 3, 7, 0, ""});
  notes.add(voxplay::Event{2400, 1, 2, 0, ""});
  notes.add(voxplay::Event{3200, 1, 3, 0, ""});
  WriteSound(folder.Path("a.wav"),
             {VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 8000, 1, 16, 0, 0, 0, 0},
             SweepWithNoise(8000, 8000), notes);
  const S_Run all = Run({"--null", "-v", "--to", "0.5", folder.Path("a.wav")});
  EXPECT_EQ(all.strOut,
            "0:00.100  event 3/7\n"
            "0:00.300  event 1/2\n"
            "0:00.400  event 1/3\n");
  const S_Run part = Run({"--null", "-v", "--from", "0.2", "--to", "0.35", folder.Path("a.wav")});
  EXPECT_EQ(part.strOut, "0:00.300  event 1/2\n");
  // The player may have ended by the time that somebody looks.
  for (int n = 0; n < 10; ++n) {
    const S_Run end =
        Run({"--null", "-v", "--from", "0.25", "--to", "0.301", folder.Path("a.wav")});
    EXPECT_EQ(end.strOut, "0:00.300  event 1/2\n");
  }
}

TEST_F(PlayCommand, TimesThatCannotBeMeant_AreUsageFailures) {
  const std::string strFile = Wav("a.wav", 8000);
  for (const C_Program::Texts& operands : {C_Program::Texts{"--from", "x", strFile},
                                           {"--to", "1:99", strFile},
                                           {"--from", "0.5", "--to", "0.2", strFile},
                                           {}}) {
    const S_Run run = Run(operands);
    EXPECT_EQ(run.nExit, 2) << run.strErr;
    EXPECT_TRUE(run.strErr.starts_with("voxtool play: ")) << run.strErr;
  }
}

TEST_F(PlayCommand, APartAfterTheEnd_IsAFailureOfTheFile) {
  const std::string strFile = Wav("a.wav", 8000);
  const S_Run run = Run({"--null", "--from", "2", strFile});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strErr, strFile + ": cannot be played: it ends before --from\n");
}

TEST_F(PlayCommand, APartThatEndsBeforeItBegins_IsAFailureOfTheFile) {
  const std::string strFile = Wav("a.wav", 8000);
  const S_Run run = Run({"--null", "--from", "0.5", "--to", "100s", strFile});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strErr, strFile + ": cannot be played: --to is before --from\n");
}

TEST_F(PlayCommand, StandardInputTwice_IsAUsageFailureBeforeAnythingIsPlayed) {
  const S_Run run = Run({"--null", "-", "/nowhere/a.wav", "-"});
  EXPECT_EQ(run.nExit, 2);
  EXPECT_EQ(run.strErr,
            "voxtool play: standard input: it can be named only once\n"
            "Try \"voxtool play --help\".\n");
}

TEST_F(PlayCommand, StandardInputAgainInALoop_IsAFailureOfIt) {
  const std::string strFile = Wav("a.wav", 0);
  const std::string strCommand = std::string(VOXTOOL) + " play --null --loop - /nowhere/a.wav <" +
                                 strFile + " 2>" + folder.Path("err");
  EXPECT_EQ(WEXITSTATUS(std::system(strCommand.c_str())), 1);  // NOLINT(cert-env33-c)
  const auto errors = folder.Read("err");
  const std::string strErrors(errors.begin(), errors.end());
  EXPECT_TRUE(strErrors.starts_with("/nowhere/a.wav: ")) << strErrors;
  EXPECT_TRUE(strErrors.ends_with("\nstandard input: it can be named only once\n")) << strErrors;
}

TEST_F(PlayCommand, NamesThatBeginWithADash_FollowTwoDashes) {
  WriteWav(folder.Path("-a.wav"), 8000, 1, 800);
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  const S_Run run = Run({"--null", "--", "-a.wav"});
  std::filesystem::current_path(before);
  EXPECT_EQ(run.nExit, 0) << run.strErr;
}

TEST_F(PlayCommand, WithoutAService_ThereAreNoDevicesToList) {
  const S_Run run = Run({"--list-devices"});
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(run.strOut, "");
  EXPECT_EQ(run.strErr, "no output device\n");
}

TEST_F(PlayCommand, Interrupted_EndsWith130) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{0, 1, 2, 0, ""});
  WriteSound(folder.Path("a.wav"),
             {VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 8000, 1, 16, 0, 0, 0, 0},
             SweepWithNoise(80000, 8000), notes);
  for (const int nSignal : {SIGINT, SIGTERM}) {
    C_RunningProgram running = program.Start({"play", "-v", "--null", folder.Path("a.wav")});
    ASSERT_TRUE(running.WaitForOutput("event 1/2"));
    running.Send(nSignal);
    EXPECT_EQ(running.Wait().nExit, 130);
  }
}

}  // namespace
