// SPDX-License-Identifier: Apache-2.0
//
// libsox has samples of 32 bits. Those of our sounds have zeros in the lower half, so a shift makes
// 16 bits of them.
#include <sox.h>

#include <algorithm>
#include <vector>

#include "Peers.h"

namespace peers {
namespace {

constexpr std::size_t kPiece = 8192;  // samples

struct S_Closer {
  void operator()(sox_format_t* pFile) const { sox_close(pFile); }
};
using C_File = std::unique_ptr<sox_format_t, S_Closer>;

C_File OpenToRead(const char* pszPath) {
  C_File file(sox_open_read(pszPath, nullptr, nullptr, "wav"));
  Require(file != nullptr);
  return file;
}

S_Samples Load(const char* pszPath) {
  const C_File file = OpenToRead(pszPath);
  S_Samples samples(file->signal.length);
  std::vector<sox_sample_t> piece(kPiece);
  short* pnNext = samples.values.get();
  std::size_t nLeft = samples.nCount;
  while (const std::size_t nRead = sox_read(file.get(), piece.data(), std::min(kPiece, nLeft))) {
    pnNext = std::transform(piece.data(), piece.data() + nRead, pnNext,
                            [](sox_sample_t nSample) { return static_cast<short>(nSample >> 16); });
    nLeft -= nRead;
  }
  samples.nCount -= nLeft;
  return samples;
}

void Save(std::span<const short> samples, const char* pszPath) {
  sox_signalinfo_t signal{};
  signal.rate = 16000;
  signal.channels = 1;
  signal.precision = 16;
  const C_File file(sox_open_write(pszPath, &signal, nullptr, "wav", nullptr, nullptr));
  Require(file != nullptr);
  std::vector<sox_sample_t> piece(kPiece);
  while (!samples.empty()) {
    const auto now = samples.first(std::min(kPiece, samples.size()));
    std::transform(now.begin(), now.end(), piece.begin(),
                   [](short nSample) { return sox_sample_t{nSample} * 65536; });
    Require(sox_write(file.get(), piece.data(), now.size()) == now.size());
    samples = samples.subspan(now.size());
  }
}

void Look(const char* pszPath) {
  const C_File file = OpenToRead(pszPath);
  Require(file->signal.rate == 16000 && file->signal.channels == 1);
}

[[maybe_unused]] const bool g_bReady = (Require(sox_init() == SOX_SUCCESS), true);

}  // namespace

const S_Peer kSox{"libsox", Load, Save, Look};

}  // namespace peers
