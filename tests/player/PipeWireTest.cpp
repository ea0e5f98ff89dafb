// SPDX-License-Identifier: Apache-2.0
//
// The real program on PipeWire, through the service that speaks PulseAudio's protocol.
#include <gtest/gtest.h>

#include "HeardSound.h"
#include "PipeWireServer.h"
#include "Speech.h"

namespace {

using PipeWire = Heard;

TEST_F(PipeWire, NormalMode_IsTheDecodedSoundConverted) {
  const S_Speech speech = SpeechOf(50);
  C_PipeWireServer server(kPlaybackRate, "float32le");
  ExpectHeard(server, {m_folder.Write("x.kst", speech.file), "0"},
              AsHeardInNormalMode(speech.pcm, 16000),
              "file duration: 1.000000 secs\nPlaying...Finished\n", 1.0);
}

TEST_F(PipeWire, RealTimeMode_IsTheDecodedSoundItself) {
  const S_Speech speech = SpeechOf(50);
  C_PipeWireServer server(16000, "float32le");
  ExpectHeard(server, {m_folder.Write("x.kst", speech.file), "1"}, OnBothSides(AsFloat(speech.pcm)),
              "Playing...Finished\n", 0.5 + 1.0 + 0.5);
}

}  // namespace
