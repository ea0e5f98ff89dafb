// SPDX-License-Identifier: Apache-2.0
//
// Plays speech in both modes on both sound servers, and counts the recordings with gaps. It is no
// test, because a busy machine makes gaps: bench/latency.sh measures with it.
//
//   HeardGaps PLAYER PLAYS
//
// Prints a row for each server and mode: how many recordings are exact, how many have gaps, and in
// how many something is missing or different.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "ChildProcess.h"
#include "HeardSound.h"
#include "PipeWireServer.h"
#include "PrivateTemp.h"
#include "SoundServer.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

constexpr unsigned int kFrames = 250;  // 5 s
constexpr unsigned int kSpeechRate = 16000;
constexpr const char* kNormalMode = "0";
constexpr const char* kRealTimeMode = "1";

class C_Recorder {
 public:
  C_Recorder(const char* pszPlayer, long nPlays) : m_player(pszPlayer), m_nPlays(nPlays) {}

  // Counts on PulseAudio and on PipeWire, in both modes. False when a server does not start.
  bool Run() {
    const C_Bytes converted = AsHeardInNormalMode(m_speech.pcm, kSpeechRate);
    C_SoundServer pulse(kPlaybackRate, "float32le", 2);
    C_SoundServer pulseOfSpeech(kSpeechRate, "s16le", 1);
    C_PipeWireServer pipeWire(kPlaybackRate, "float32le");
    C_PipeWireServer pipeWireOfSpeech(kSpeechRate, "float32le");
    return Count("PulseAudio | normal", pulse, kNormalMode, converted) &&
           Count("PulseAudio | real-time", pulseOfSpeech, kRealTimeMode, m_speech.pcm) &&
           Count("PipeWire | normal", pipeWire, kNormalMode, converted) &&
           Count("PipeWire | real-time", pipeWireOfSpeech, kRealTimeMode,
                 OnBothSides(AsFloat(m_speech.pcm)));
  }

 private:
  bool Count(const char* pszName, C_SoundServer& server, const char* pszMode, const C_Bytes& want) {
    if (!server.Start()) {
      static_cast<void>(std::fprintf(stderr, "%s: the server does not start\n", pszName));
      return false;
    }
    int nExact = 0;
    int nGaps = 0;
    int nWrong = 0;
    for (long i = 0; i < m_nPlays; ++i) {
      const C_Bytes got = server.RecordWhile([&] {
        static_cast<void>(m_player.Run({m_strFile, pszMode}, {server.Environment()}));
      });
      const tagSameSound eSame = CompareSounds(want, got, server.FrameBytes());
      nExact += eSame == tagSameSound::Exact ? 1 : 0;
      nGaps += eSame == tagSameSound::Gaps ? 1 : 0;
      nWrong += eSame == tagSameSound::Wrong ? 1 : 0;
    }
    server.Kill();
    std::printf("%s | %d | %d | %d |\n", pszName, nExact, nGaps, nWrong);
    return std::fflush(stdout) == 0;
  }

  // Opened before the temporary directory is hidden, where it may be.
  C_Program m_player;
  long m_nPlays;
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  S_Speech m_speech = SpeechOf(kFrames);
  std::string m_strFile = m_folder.Write("speech.kst", m_speech.file);
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    static_cast<void>(std::fputs("usage: HeardGaps PLAYER PLAYS\n", stderr));
    return 2;
  }
  C_Recorder recorder(argv[1], std::strtol(argv[2], nullptr, 10));
  return recorder.Run() ? 0 : 1;
}
