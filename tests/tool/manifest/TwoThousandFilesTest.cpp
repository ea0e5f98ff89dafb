// SPDX-License-Identifier: Apache-2.0
//
// A folder of two thousand files, one of them damaged: at once, and by a manifest after a kill.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "ToolTest.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr int kFiles = 2000;
constexpr int kDamaged = 1234;

class TwoThousandFilesTest : public test::C_ToolTest {
 protected:
  void SetUp() override {
    fs::create_directories(Path("in"));
    for (int i = 0; i < kFiles; ++i) MakeWav(Source(i), PublicSamples(FramesOf(i)));
    Write(Source(kDamaged), {'R', 'I', 'F', 'F'});
  }
  // No two are equally long.
  static unsigned FramesOf(int nFile) { return 1600U + static_cast<unsigned>(nFile); }
  // Kestrel has packets of 20 ms.
  static unsigned WholePackets(unsigned nFrames) { return (nFrames + 319) / 320 * 320; }
  static std::string NameOf(int nFile) { return std::to_string(10000 + nFile).substr(1); }
  static std::string Source(int nFile) { return "in/" + NameOf(nFile) + ".wav"; }
  static std::string Target(int nFile) { return "out/" + NameOf(nFile) + ".kst"; }

  // Every good sound has a whole target, once, and the damaged one has none.
  void ExpectTargets() const {
    int nTargets = 0;
    for (const auto& entry : fs::directory_iterator(Path("out"))) {
      if (entry.path().extension() == ".kst") ++nTargets;
    }
    EXPECT_EQ(nTargets, kFiles - 1);
    EXPECT_FALSE(fs::exists(Path(Target(kDamaged))));
    for (int i = 0; i < kFiles; ++i) {
      if (i == kDamaged) continue;
      ASSERT_EQ(voxplay::Reader(Path(Target(i))).info().frames, WholePackets(FramesOf(i))) << i;
    }
  }
  [[nodiscard]] nlohmann::json Status() const {
    return nlohmann::json::parse(Run({"manifest", "status", "--json", "@/a.db"}).strOut).at(0);
  }
  void WaitFor(const std::string& strName) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!fs::exists(Path(strName)) && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
};

TEST_F(TwoThousandFilesTest, OneDamaged_IsNamedAndCounted) {
  const std::string strSaid = Fail(1, {"-r", "@/in", "-d", "@/out", "--to", "kestrel", "-j", "2"});
  EXPECT_TRUE(strSaid.starts_with("@/in/1234.wav: ")) << strSaid;
  EXPECT_NE(strSaid.find("\n2000 files: 1999 converted, 1 failed; 5 min 25 s of sound in "),
            std::string::npos)
      << strSaid;
  ExpectTargets();
}

TEST_F(TwoThousandFilesTest, KilledInTheMiddle_AreFinishedByTheSameCommand) {
  const Texts arguments = {"convert", "--manifest", "@/a.db",  "-r", "@/in", "-d",
                           "@/out",   "--to",       "kestrel", "-j", "2"};
  C_RunningProgram run = Program().Start(Placed(arguments));
  WaitFor(Target(700));
  run.Send(SIGKILL);
  EXPECT_EQ(run.Wait().nSignal, SIGKILL);
  const int nDone = Status()["done"];
  EXPECT_LT(nDone, kFiles - 1);

  const S_Run again = Run(arguments);
  EXPECT_EQ(again.nExit, 1) << again.strErr;
  EXPECT_NE(again.strErr.find(std::to_string(kFiles - 1 - nDone) + " converted, 1 failed"),
            std::string::npos)
      << again.strErr;
  EXPECT_EQ(Status()["done"], kFiles - 1);
  EXPECT_EQ(Status()["failed"], 1);
  ExpectTargets();
}

}  // namespace
}  // namespace tool
