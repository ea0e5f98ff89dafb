// SPDX-License-Identifier: Apache-2.0
//
// The other sound server that players meet: PipeWire, with its session manager and the service that
// speaks PulseAudio's protocol. Needs no message bus. Its sink always has two channels, of float
// samples; what is played in another form is converted, and exact where that is.
#pragma once

#include <string>

#include "SoundServer.h"

class C_PipeWireServer final : public C_SoundServer {
 public:
  // The format is the recording's.
  C_PipeWireServer(unsigned nRate, std::string strFormat)
      : C_SoundServer(nRate, std::move(strFormat), 2) {}

 protected:
  void LaunchAll() override;

 private:
  void WriteConfiguration() const;
};
