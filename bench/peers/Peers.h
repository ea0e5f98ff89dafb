// SPDX-License-Identifier: Apache-2.0
//
// Other programs' libraries, as the benchmark beside them uses them: PCM, G.711 and ADPCM in WAV
// files, nothing else. Their licences are not ours. Only bench/peers_bench links libsox and FFmpeg.
// It is built where they are found, to be run there; it is not installed and must not be passed on.
//
// Each is used in the fastest way that its interface offers for mono sounds. The program stops when
// one of them fails.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>

namespace peers {

// The samples of a loaded sound. Their memory is not cleared first.
struct S_Samples {
  explicit S_Samples(std::size_t nRoom) : values(new short[nRoom]), nCount(nRoom) {}

  std::unique_ptr<short[]> values;
  std::size_t nCount;
};

struct S_Peer {
  const char* pszName;
  S_Samples (*pfnLoad)(const char* pszPath);
  // At 16 kHz.
  void (*pfnSave)(std::span<const short> samples, const char* pszPath);
  // Opens a file, reads its format and closes it.
  void (*pfnLook)(const char* pszPath);
};

extern const S_Peer kSndfile;
extern const S_Peer kSox;
extern const S_Peer kFfmpeg;

inline void Require(bool bDone) {
  if (!bDone) std::abort();
}

}  // namespace peers
