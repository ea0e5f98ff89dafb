// SPDX-License-Identifier: Apache-2.0
//
// The real program on real servers that die and come back, and that several players share.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <numeric>
#include <string>
#include <vector>

#include "HeardSound.h"
#include "Speech.h"

namespace {

using namespace std::chrono_literals;
using Pcm = std::vector<int>;

class HeardServers : public Heard {
 protected:
  [[nodiscard]] std::future<S_Run> RunBeside(const std::string& strFile, const char* pszMode,
                                             const C_SoundServer& server) const {
    return std::async(std::launch::async, [this, strFile, pszMode, &server] {
      return m_player.Run({strFile, pszMode}, {server.Environment()});
    });
  }
};

void ExpectPlayed(std::future<S_Run> running) {
  const S_Run run = running.get();
  EXPECT_TRUE(run.strOut.ends_with("Playing...Finished\n")) << run.strOut;
  EXPECT_EQ(run.strErr, "");
  EXPECT_EQ(run.nExit, 0);
}

// A player that was playing when the server died plays on in silence. The next player is heard.
TEST_F(HeardServers, AServerThatIsKilledAndComesBack_IsHeardByTheNextPlayer) {
  const S_Speech speech = SpeechOf(100);
  const std::string strFile = m_folder.Write("x.kst", speech.file);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  const auto begin = std::chrono::steady_clock::now();
  auto normal = RunBeside(strFile, "0", server);
  auto realTime = RunBeside(strFile, "1", server);
  ASSERT_TRUE(server.WaitForStreams(2));
  server.Kill();
  ASSERT_TRUE(server.Start());
  const auto rest = server.RecordWhile([&] {
    ExpectPlayed(std::move(normal));
    ExpectPlayed(std::move(realTime));
  });
  // Silence takes as long as the sound, and longer on a slow machine.
  EXPECT_GE(std::chrono::steady_clock::now() - begin, 2500ms);
  EXPECT_FALSE(rest.empty());
  EXPECT_TRUE(WithoutSilentEnds(rest, 2).empty());
  const std::string strNext = m_folder.Write("next.kst", SpeechOf(25).file);
  const S_Recording sound = server.RecordUntilSame(
      SpeechOf(25).pcm, [&] { ExpectPlayed(RunBeside(strNext, "1", server)); });
  EXPECT_EQ(tagSameSound::Exact, sound.same) << sound.Description();
}

TEST_F(HeardServers, AServerThatIsKilledWhilePlaying_IsToldToTheScreenInALineOfItsOwn) {
  const std::string strFile = m_folder.Write("x.kst", SpeechOf(100).file);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  C_RunningProgram normal = m_player.StartOnScreen({strFile, "0"}, {server.Environment()});
  C_RunningProgram realTime = m_player.StartOnScreen({strFile, "1"}, {server.Environment()});
  ASSERT_TRUE(server.WaitForStreams(2));
  server.Kill();
  const std::string strShown =
      "Playing...\r\noutput device lost; playing silently in real time\r\nFinished\r\n";
  EXPECT_EQ(normal.Wait().strErr, "file duration: 2.000000 secs\r\n" + strShown);
  EXPECT_EQ(realTime.Wait().strErr, strShown);
}

Pcm SamplesOf(const C_Bytes& pcm) {
  const C_Bytes sound = WithoutSilentEnds(pcm, 2);
  Pcm samples;
  for (std::size_t i = 0; i + 1 < sound.size(); i += 2) {
    samples.push_back(static_cast<std::int16_t>(sound[i] | sound[i + 1] << 8));
  }
  return samples;
}

int SampleAt(const Pcm& sound, std::size_t nIndex) {
  return nIndex < sound.size() ? sound[nIndex] : 0;
}

// Whether `mix` is `first` with `second` added from some sample on.
bool IsMixOf(const Pcm& mix, const Pcm& first, const Pcm& second) {
  std::size_t nSecond = 0;
  while (nSecond < mix.size() && mix[nSecond] == SampleAt(first, nSecond)) ++nSecond;
  if (mix.size() != std::max(first.size(), nSecond + second.size())) return false;
  for (std::size_t i = nSecond; i < mix.size(); ++i) {
    const int nSum = SampleAt(first, i) + SampleAt(second, i - nSecond);
    if (mix[i] != std::clamp(nSum, -32768, 32767)) return false;
  }
  return true;
}

// Whether `mix` may be both sounds with gaps in them. Silence in between changes no sum.
bool HasAllSamplesOf(const Pcm& mix, const Pcm& first, const Pcm& second) {
  const auto Sum = [](const Pcm& sound) { return std::accumulate(sound.begin(), sound.end(), 0L); };
  return Sum(mix) == Sum(first) + Sum(second);
}

TEST_F(HeardServers, TwoPlayersInRealTimeMode_AreBothHeardToTheLastSample) {
  const S_Speech longer = SpeechOf(75);
  const S_Speech shorter = SpeechOf(50);
  const std::string strLonger = m_folder.Write("longer.kst", longer.file);
  const std::string strShorter = m_folder.Write("shorter.kst", shorter.file);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  bool bHeard = false;
  bool bWhole = true;
  // A busy machine makes gaps now and then, and a very busy one each time.
  for (int nTry = 0; nTry < 5 && !bHeard; ++nTry) {
    const Pcm mix = SamplesOf(server.RecordWhile([&] {
      auto other = RunBeside(strLonger, "1", server);
      ExpectPlayed(RunBeside(strShorter, "1", server));
      ExpectPlayed(std::move(other));
    }));
    const Pcm a = SamplesOf(longer.pcm);
    const Pcm b = SamplesOf(shorter.pcm);
    bHeard = IsMixOf(mix, a, b) || IsMixOf(mix, b, a);
    bWhole = bWhole && HasAllSamplesOf(mix, a, b);
  }
  EXPECT_TRUE(bHeard || bWhole);
}

}  // namespace
