// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace toolbox {

// The name of the audio service that plays here, for `cubeb_init`: PulseAudio where a server
// answers (PipeWire speaks its protocol), otherwise ALSA; on other systems their own service. Null
// leaves the choice to the library. Asks the service, so it may wait for as long as that takes.
//
// Without a name, or when the service with that name does not answer, the library tries every
// service that it knows. Even an attempt to reach JACK leaves files in the user's shared memory.
[[nodiscard]] const char* CubebBackend();

}  // namespace toolbox
