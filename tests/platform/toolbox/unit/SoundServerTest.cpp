// SPDX-License-Identifier: Apache-2.0
//
// What a real sound server receives when the toolbox plays. Sounds may take longer than these tests
// expect, but never less time, so a slow machine makes no difference to the times that they
// compare.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <future>
#include <thread>

#include "Converted.h"
#include "PlayerGraph.h"
#include "SoundFiles.h"
#include "SoundServer.h"
#include "TempFolder.h"
#include "TestSounds.h"
#include "output/CubebDevice.h"
#include "unit/AudioComponent.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Speech as the real-time mode plays it: 16 kHz, 16 bits, mono, handed out by a render callback.
class C_PcmOutput {
 public:
  explicit C_PcmOutput(std::vector<std::int16_t> samples) : m_samples(std::move(samples)) {
    const AudioComponentDescription description = {
        kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput, kAudioUnitManufacturer_Apple, 0, 0};
    EXPECT_EQ(AudioComponentInstanceNew(AudioComponentFindNext(nullptr, &description), &m_unit),
              noErr);
    const AudioStreamBasicDescription format = {16000, kAudioFormatLinearPCM, 12, 2, 1, 2, 1, 16,
                                                0};
    EXPECT_EQ(AudioUnitSetProperty(m_unit, kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input,
                                   0, &format, sizeof format),
              noErr);
    const AURenderCallbackStruct callback = {&OnRender, this};
    EXPECT_EQ(AudioUnitSetProperty(m_unit, kAudioUnitProperty_SetRenderCallback,
                                   kAudioUnitScope_Input, 0, &callback, sizeof callback),
              noErr);
    EXPECT_EQ(AudioUnitInitialize(m_unit), noErr);
  }
  ~C_PcmOutput() {
    EXPECT_EQ(AudioUnitUninitialize(m_unit), noErr);
    EXPECT_EQ(AudioComponentInstanceDispose(m_unit), noErr);
  }
  C_PcmOutput(const C_PcmOutput&) = delete;
  C_PcmOutput& operator=(const C_PcmOutput&) = delete;

  void Start() const { EXPECT_EQ(AudioOutputUnitStart(m_unit), noErr); }
  void Stop() const { EXPECT_EQ(AudioOutputUnitStop(m_unit), noErr); }
  void Rewind() { m_nNext = 0; }
  [[nodiscard]] bool WaitForSamples(std::size_t nSamples) const {
    const auto limit = Clock::now() + 20s;
    while (m_nNext < nSamples && Clock::now() < limit) std::this_thread::sleep_for(2ms);
    return m_nNext >= nSamples;
  }
  void PlayAll() {
    Rewind();
    Start();
    EXPECT_TRUE(WaitForSamples(m_samples.size()));
    Stop();
  }

 private:
  static OSStatus OnRender(void* pThis, AudioUnitRenderActionFlags*, const AudioTimeStamp*, UInt32,
                           UInt32, AudioBufferList* pData) {
    auto& output = *static_cast<C_PcmOutput*>(pThis);
    const std::size_t nNext = output.m_nNext;
    const std::size_t nWanted = pData->mBuffers[0].mDataByteSize / sizeof(std::int16_t);
    const std::size_t nTake = std::min(nWanted, output.m_samples.size() - nNext);
    std::copy_n(output.m_samples.data() + nNext, nTake,
                static_cast<std::int16_t*>(pData->mBuffers[0].mData));
    output.m_nNext = nNext + nTake;
    return noErr;
  }

  const std::vector<std::int16_t> m_samples;
  std::atomic<std::size_t> m_nNext{0};
  AudioUnit m_unit = nullptr;
};

std::vector<float> AsFloat(const std::vector<std::int16_t>& samples) {
  std::vector<float> result;
  for (const std::int16_t nSample : samples) result.push_back(static_cast<float>(nSample) / 32768);
  return result;
}

std::vector<float> OnBothSides(const std::vector<float>& mono) {
  std::vector<float> stereo;
  for (const float fSample : mono) stereo.insert(stereo.end(), {fSample, fSample});
  return stereo;
}

TEST(SoundServerTest, SpeechThroughTheOutputUnit_IsHeardByteForByte) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  const auto samples = SweepWithNoise(32000, 16000);
  C_PcmOutput output(samples);
  const auto sound = server.RecordUntilSame(BytesOf(samples), [&] { output.PlayAll(); });
  EXPECT_EQ(sound.same, tagSameSound::Exact) << sound.Description();
  EXPECT_EQ(sound.bytes.size(), 64000U);
}

TEST(SoundServerTest, AFileThroughTheGraph_IsHeardAsItsOwnConversionByteForByte) {
  C_SoundServer server(44100, "float32le", 2);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  const C_TempFolder folder;
  const auto samples = SweepWithNoise(32000, 16000);
  WriteSoundFile(folder.Path("a.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16000, 1, samples);
  const auto want = OnBothSides(Converted(AsFloat(samples), 16000, 44100));
  const auto sound = server.RecordUntilSame(BytesOf(want), [&] {
    const C_PlayerGraph graph(OpenSoundFile(folder.Path("a.wav")));
    graph.Schedule(32000);
    graph.Start();
    EXPECT_TRUE(graph.WaitFor(88200));
    graph.Stop();
  });
  EXPECT_EQ(sound.same, tagSameSound::Exact) << sound.Description();
  EXPECT_EQ(sound.bytes.size(), 88200U * 8);
}

TEST(SoundServerTest, PauseAndResume_LoseNothingAndRepeatNothing) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  const auto samples = SweepWithNoise(16000, 16000);
  C_PcmOutput output(samples);
  const auto got = server.RecordWhile([&] {
    output.Start();
    EXPECT_TRUE(output.WaitForSamples(6000));
    output.Stop();
    std::this_thread::sleep_for(300ms);
    output.Start();
    EXPECT_TRUE(output.WaitForSamples(16000));
    output.Stop();
  });
  // The sound is complete and in order, with the silence of the pause in between.
  EXPECT_EQ(CompareSounds(BytesOf(samples), got, 2), tagSameSound::Gaps);
  EXPECT_GE(WithoutSilentEnds(got, 2).size(), 2U * (16000 + 4800));
}

TEST(SoundServerTest, AServerThatIsKilledWhilePlaying_StillLetsTheSoundEndInTime) {
  C_SoundServer server(44100, "float32le", 2);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  const C_TempFolder folder;
  WriteSoundFile(folder.Path("a.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16000, 1,
                 SweepWithNoise(24000, 16000));
  const C_PlayerGraph graph(OpenSoundFile(folder.Path("a.wav")));
  graph.Schedule(24000);
  const auto begin = Clock::now();
  graph.Start();
  EXPECT_TRUE(graph.WaitFor(22050));
  server.Kill();
  EXPECT_TRUE(graph.WaitFor(66150));
  // Only the sound that the server had already taken over can shorten the time.
  EXPECT_GE(Clock::now() - begin, 1000ms);
  graph.Stop();
  // After another start nothing is heard, but playback goes on.
  graph.Start();
  EXPECT_TRUE(graph.WaitFor(70000));
  graph.Stop();
}

// Plays, pauses, harms the server and plays on: the sound must go on.
template <typename Harm>
void ExpectNoticedAtTheNextStart(Harm fnHarm) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  C_PcmOutput output(SweepWithNoise(8000, 16000));
  output.Start();
  EXPECT_TRUE(output.WaitForSamples(2000));
  output.Stop();
  fnHarm(server);
  output.Start();
  EXPECT_TRUE(output.WaitForSamples(8000));
  output.Stop();
}

TEST(SoundServerTest, AServerThatIsKilledWhilePaused_IsNoticedAtTheNextStart) {
  ExpectNoticedAtTheNextStart([](C_SoundServer& server) { server.Kill(); });
}

class C_SilentClient final : public toolbox::I_DeviceClient {
 public:
  void RenderFrames(void*, UInt32) override {}
  void DeviceLost() override { bLost = true; }
  std::atomic<bool> bLost{false};
};

TEST(SoundServerTest, AServerThatDoesNotAnswer_CountsAsNone_AndIsLeftAloneWhenItComesBack) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  C_SilentClient client;
  server.Freeze();
  const auto begin = Clock::now();
  EXPECT_EQ(toolbox::OpenCubebDevice({16000, 1, false}, client, 300ms), nullptr);
  EXPECT_GE(Clock::now() - begin, 300ms);
  server.Thaw();
  // The device that was given up opens now and closes itself. That does not disturb a new device.
  std::this_thread::sleep_for(200ms);
  EXPECT_NE(toolbox::OpenCubebDevice({16000, 1, false}, client), nullptr);
  EXPECT_FALSE(client.bLost);
}

// While this object lives, output units wait only this long for the service.
class C_ShortPatience {
 public:
  explicit C_ShortPatience(std::chrono::milliseconds limit) {
    toolbox::SetOpenDevice(
        [limit](const toolbox::S_OutputFormat& format, toolbox::I_DeviceClient& client) {
          return toolbox::OpenCubebDevice(format, client, limit);
        });
  }
  ~C_ShortPatience() { toolbox::SetOpenDevice(nullptr); }
  C_ShortPatience(const C_ShortPatience&) = delete;
  C_ShortPatience& operator=(const C_ShortPatience&) = delete;
};

TEST(SoundServerTest, ServerThatFreezesWhilePlaying_StillLetsTheSoundEnd_AndIsLeftBehind) {
  const C_ShortPatience patience(1000ms);
  C_SoundServer server(44100, "float32le", 2);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  const C_TempFolder folder;
  WriteSoundFile(folder.Path("a.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16000, 1,
                 SweepWithNoise(24000, 16000));
  {
    const C_PlayerGraph graph(OpenSoundFile(folder.Path("a.wav")));
    graph.Schedule(24000);
    graph.Start();
    EXPECT_TRUE(graph.WaitFor(11025));
    server.Freeze();
    EXPECT_TRUE(graph.WaitFor(66150));
    graph.Stop();
    graph.Start();
    EXPECT_TRUE(graph.WaitFor(70000));
    graph.Stop();
    // A server that comes back to life plays silence of its own: the position stays the same.
    const double dPosition = graph.Position();
    server.Thaw();
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(graph.Position(), dPosition);
  }
  // The server plays for the next client.
  C_SilentClient client;
  const auto pDevice = toolbox::OpenCubebDevice({44100, 2, true}, client);
  ASSERT_NE(pDevice, nullptr);
  EXPECT_TRUE(pDevice->Start());
  pDevice->Stop();
  EXPECT_FALSE(client.bLost);
}

TEST(SoundServerTest, AServerThatIsFrozenWhenPlaybackStops_HoldsNobodyUp) {
  const C_ShortPatience patience(500ms);
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  C_PcmOutput output(SweepWithNoise(8000, 16000));
  output.Start();
  EXPECT_TRUE(output.WaitForSamples(2000));
  server.Freeze();
  // A call that waited for the server would never return.
  output.Stop();
  // After another start nothing is heard, but playback goes on.
  output.Start();
  EXPECT_TRUE(output.WaitForSamples(8000));
  output.Stop();
}

TEST(SoundServerTest, AServerThatFreezesWhilePaused_IsNoticedAtTheNextStart) {
  const C_ShortPatience patience(500ms);
  ExpectNoticedAtTheNextStart([](C_SoundServer& server) { server.Freeze(); });
}

// Stops the server when it is first asked for frames. From then on it is only asked for what the
// server had already requested, and nothing of that is played.
class C_FreezingClient final : public toolbox::I_DeviceClient {
 public:
  explicit C_FreezingClient(const C_SoundServer& server) : m_server(server) {}
  void RenderFrames(void*, UInt32 dwFrames) override {
    if (qwFrames == 0) m_server.Freeze();
    qwFrames += dwFrames;
  }
  void DeviceLost() override {}
  std::atomic<UInt64> qwFrames{0};

 private:
  const C_SoundServer& m_server;
};

// On a busy machine a player that is only 0.1 s ahead breaks up. This counts what is rendered
// before anything can be played, so it makes no difference how busy the machine is now.
TEST(SoundServerTest, EveryDevice_IsRenderedForWellAhead) {
  C_SoundServer server(44100, "float32le", 2);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  for (const toolbox::S_OutputFormat& format :
       {toolbox::S_OutputFormat{44100, 2, true}, toolbox::S_OutputFormat{16000, 1, false}}) {
    C_FreezingClient client(server);
    const auto pDevice = toolbox::OpenCubebDevice(format, client, 60s);
    ASSERT_NE(pDevice, nullptr);
    // The start waits for the server.
    auto starting = std::async(std::launch::async, [&pDevice] { return pDevice->Start(); });
    const UInt64 qwQuarter = format.dwRate / 4;
    const auto limit = Clock::now() + 20s;
    while (client.qwFrames < qwQuarter && Clock::now() < limit) std::this_thread::sleep_for(2ms);
    EXPECT_GE(client.qwFrames, qwQuarter);
    server.Thaw();
    EXPECT_TRUE(starting.get());
    pDevice->Stop();
  }
}

class C_SlowClient final : public toolbox::I_DeviceClient {
 public:
  void RenderFrames(void*, UInt32) override {
    if (nCalls++ == 3) std::this_thread::sleep_for(5s);
  }
  void DeviceLost() override { bLost = true; }
  std::atomic<int> nCalls{0};
  std::atomic<bool> bLost{false};
};

TEST(SoundServerTest, ASlowClient_IsNotTakenForAFrozenServer) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  C_SlowClient client;
  // Time enough for a server on a busy machine, and less than the client takes for one call.
  const auto pDevice = toolbox::OpenCubebDevice({16000, 1, false}, client, 3000ms);
  ASSERT_NE(pDevice, nullptr);
  EXPECT_TRUE(pDevice->Start());
  const auto limit = Clock::now() + 20s;
  while (client.nCalls < 6 && Clock::now() < limit) std::this_thread::sleep_for(2ms);
  EXPECT_GE(client.nCalls, 6);
  pDevice->Stop();
  EXPECT_FALSE(client.bLost);
}

// The client goes away while the service still holds its stream, which then comes back to life.
TEST(SoundServerTest, ClientThatIsGone_IsNotAskedByAStreamThatWasLeftBehind) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  server.UseInThisProcess();
  {
    C_SilentClient client;
    const auto pDevice = toolbox::OpenCubebDevice({16000, 1, false}, client, 3000ms);
    ASSERT_NE(pDevice, nullptr);
    EXPECT_TRUE(pDevice->Start());
    server.Freeze();
  }
  server.Thaw();
  std::this_thread::sleep_for(300ms);
}

TEST(SoundServerTest, ALengthQuery_NeedsNoServer_AndAStartWithoutOneIsSilent) {
  UseNoSoundServerInThisProcess();
  const C_TempFolder folder;
  WriteSoundFile(folder.Path("a.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16000, 1,
                 SweepWithNoise(8000, 16000));
  const C_PlayerGraph graph(OpenSoundFile(folder.Path("a.wav")));
  graph.Schedule(8000);
  const auto begin = Clock::now();
  graph.Start();
  EXPECT_TRUE(graph.WaitFor(22050));
  EXPECT_GE(Clock::now() - begin, 490ms);
  graph.Stop();
}

TEST(SoundServerTest, ComparingSounds_TellsGapsFromLosses) {
  using Bytes = std::vector<std::uint8_t>;
  const Bytes want = {0, 0, 1, 0, 2, 2, 0, 0};
  EXPECT_EQ(WithoutSilentEnds(want, 2), (Bytes{1, 0, 2, 2}));
  EXPECT_EQ(CompareSounds(want, {1, 0, 2, 2}, 2), tagSameSound::Exact);
  EXPECT_EQ(CompareSounds(want, {0, 0, 1, 0, 0, 0, 2, 2}, 2), tagSameSound::Gaps);
  EXPECT_EQ(CompareSounds(want, {1, 0, 2, 3}, 2), tagSameSound::Wrong);
  EXPECT_EQ(CompareSounds(want, {1, 0}, 2), tagSameSound::Wrong);
  EXPECT_EQ(CompareSounds(want, {}, 2), tagSameSound::Wrong);
}

}  // namespace
