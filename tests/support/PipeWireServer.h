// SPDX-License-Identifier: Apache-2.0
//
// The other sound server that players meet: PipeWire, with its session manager and the service that
// speaks PulseAudio's protocol. It needs no message bus. Its sink always has two channels of float
// samples. Sound in another form is converted, and stays exact where the conversion is exact.
#pragma once

#include <string>

#include "SoundServer.h"

class C_PipeWireServer final : public C_SoundServer {
 public:
  // strFormat is the format of the recording.
  C_PipeWireServer(unsigned nRate, std::string strFormat)
      : C_SoundServer(nRate, std::move(strFormat), 2) {}

 protected:
  void LaunchAll() override;
  // When its turn comes too late, this server drops pieces of a sound, and repeats others.
  [[nodiscard]] bool MayBeDisturbed(tagSameSound same) const override {
    return same != tagSameSound::Exact;
  }

 private:
  void WriteConfiguration() const;
};
