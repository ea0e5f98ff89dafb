// SPDX-License-Identifier: Apache-2.0
#include <sndfile.h>

#include "Peers.h"

namespace peers {
namespace {

struct S_Closer {
  void operator()(SNDFILE* pFile) const { sf_close(pFile); }
};
using C_File = std::unique_ptr<SNDFILE, S_Closer>;

C_File Open(const char* pszPath, int nMode, SF_INFO* pInfo) {
  C_File file(sf_open(pszPath, nMode, pInfo));
  Require(file != nullptr);
  return file;
}

S_Samples Load(const char* pszPath) {
  SF_INFO info{};
  const C_File file = Open(pszPath, SFM_READ, &info);
  S_Samples samples(static_cast<std::size_t>(info.frames));
  Require(sf_read_short(file.get(), samples.values.get(), info.frames) == info.frames);
  return samples;
}

void Save(std::span<const short> samples, const char* pszPath) {
  SF_INFO info{};
  info.samplerate = 16000;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  const C_File file = Open(pszPath, SFM_WRITE, &info);
  const auto nCount = static_cast<sf_count_t>(samples.size());
  Require(sf_write_short(file.get(), samples.data(), nCount) == nCount);
}

void Look(const char* pszPath) {
  SF_INFO info{};
  const C_File file = Open(pszPath, SFM_READ, &info);
  Require(info.samplerate == 16000 && info.channels == 1);
}

}  // namespace

const S_Peer kSndfile{"libsndfile", Load, Save, Look};

}  // namespace peers
