// SPDX-License-Identifier: Apache-2.0
#include "heron/Coders.h"

#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "heron/Fidelity.h"
#include "heron/SoundCoder.h"

namespace {

void Require(bool bHolds, const char* pszWhat) {
  if (!bHolds) throw std::runtime_error(pszWhat);
}

// Cuts the decoded sound to the length of the original: some coders append up to a byte's worth of
// silence.
S_Coded InTime(const S_Sound& original, std::size_t cbCoded, std::vector<std::int16_t> decoded) {
  Require(decoded.size() >= original.samples.size(), "a decoded sound is too short");
  decoded.resize(original.samples.size());
  Require(IsInTime(original.samples, decoded), "a decoded sound is not in time");
  return {cbCoded, std::move(decoded)};
}

std::int16_t Companded(std::int16_t nSample, int nBits) {
  constexpr double kMu = 255.0;
  constexpr double kFullScale = 32768.0;
  const double dSteps = std::exp2(nBits - 1);  // on either side of zero
  const double dCurve = std::log1p(kMu * std::abs(nSample) / kFullScale) / std::log1p(kMu);
  const double dLevel = std::min(std::floor(dCurve * dSteps), dSteps - 1.0) + 0.5;
  const double dSize = std::expm1(dLevel / dSteps * std::log1p(kMu)) / kMu * kFullScale;
  return static_cast<std::int16_t>(std::lround(nSample < 0 ? -dSize : dSize));
}

// WavPack counts its rate in bits per sample, in steps of 1/256.
class C_WavPackRate {
 public:
  explicit C_WavPackRate(double dBits)
      : m_nSteps(std::clamp(std::lround(dBits * 256), 512L, 6143L)) {}
  [[nodiscard]] double Bits() const { return static_cast<double>(m_nSteps) / 256; }
  friend bool operator==(const C_WavPackRate&, const C_WavPackRate&) = default;

 private:
  long m_nSteps;
};

std::size_t Distance(std::size_t a, std::size_t b) { return a > b ? a - b : b - a; }

// Leaves the coded sound as "out.wv".
void PackAt(C_WavPackRate rate, const std::string& strOptions, const C_Workshop& workshop) {
  // The original's header is dropped, so that every byte serves the sound.
  workshop.Run("wavpack -q -y -r -b" + std::to_string(rate.Bits()) + " " + strOptions +
               " in.wav -o out.wv");
}

// Leaves the coded sound that comes nearest to cbWanted bytes as "best.wv". The size follows the
// rate almost linearly, with a few bytes of jitter that bisection would stumble over. So the rate
// is corrected by the bytes that are missing.
void PackNearest(const S_Sound& sound, const std::string& strOptions, std::size_t cbWanted,
                 const C_Workshop& workshop) {
  constexpr int kMaxTries = 8;
  const double dBitsPerByte = 8.0 / static_cast<double>(sound.samples.size());
  double dBits = static_cast<double>(cbWanted) * dBitsPerByte;
  std::size_t cbBest = 0;
  for (int nTry = 0; nTry < kMaxTries; ++nTry) {
    const C_WavPackRate rate(dBits);
    PackAt(rate, strOptions, workshop);
    const std::size_t cbPacked = workshop.SizeOf("out.wv");
    if (nTry == 0 || Distance(cbPacked, cbWanted) < Distance(cbBest, cbWanted)) {
      cbBest = cbPacked;
      workshop.Run("mv out.wv best.wv");
    }
    dBits = rate.Bits() +
            (static_cast<double>(cbWanted) - static_cast<double>(cbPacked)) * dBitsPerByte;
    if (C_WavPackRate(dBits) == rate) return;
  }
}

}  // namespace

C_Workshop::C_Workshop() {
  char szTemplate[] = "/tmp/heron-bench-XXXXXX";
  Require(mkdtemp(szTemplate) != nullptr, "no temporary folder");
  m_strPath = szTemplate;
}

C_Workshop::~C_Workshop() {
  std::error_code error;
  std::filesystem::remove_all(m_strPath, error);
}

std::string C_Workshop::Path(const std::string& strName) const { return m_strPath + "/" + strName; }

std::size_t C_Workshop::SizeOf(const std::string& strName) const {
  return static_cast<std::size_t>(std::filesystem::file_size(Path(strName)));
}

void C_Workshop::Run(const std::string& strCommand) const {
  const std::string strQuietly =
      "cd " + m_strPath + " && " + strCommand + " </dev/null >/dev/null 2>&1";
  if (std::system(strQuietly.c_str()) != 0) throw std::runtime_error("failed: " + strCommand);
}

S_Coded CodeWithHeron(const S_Sound& sound, int nBitDepth) {
  std::vector<std::uint8_t> coded;
  std::vector<std::int16_t> decoded;
  Require(heron::EncodeSamples(sound.samples, sound.nSampleRate, nBitDepth, &coded, {}) &&
              heron::DecodeSamples(coded, sound.nSampleRate, &decoded),
          "Heron fails");
  return InTime(sound, heron::kHeadBytes + coded.size(), std::move(decoded));
}

S_Coded CodeWithCompanding(const S_Sound& sound, int nBits) {
  std::vector<std::int16_t> decoded;
  for (const std::int16_t nSample : sound.samples) decoded.push_back(Companded(nSample, nBits));
  const std::size_t nCodedBits = sound.samples.size() * static_cast<std::size_t>(nBits);
  return InTime(sound, (nCodedBits + 7) / 8, std::move(decoded));
}

S_Coded CodeWithG726(const S_Sound& sound, int nBits, const C_Workshop& workshop) {
  const std::string strForm = " -f g726 -code_size " + std::to_string(nBits);
  const std::string strQuietly = "ffmpeg -nostdin -v error -y";
  // Without this option, ffmpeg accepts only 8000 Hz.
  workshop.Run(strQuietly + " -i in.wav -c:a g726 -strict unofficial" + strForm + " out.g726");
  workshop.Run(strQuietly + strForm + " -sample_rate " + std::to_string(sound.nSampleRate) +
               " -i out.g726 -c:a pcm_s16le back.wav");
  return InTime(sound, workshop.SizeOf("out.g726"), ReadSound(workshop.Path("back.wav")).samples);
}

S_Coded CodeWithWavPack(const S_Sound& sound, const std::string& strOptions, std::size_t cbWanted,
                        const C_Workshop& workshop) {
  PackNearest(sound, strOptions, cbWanted, workshop);
  workshop.Run("wvunpack -q -y best.wv -o back.wav");
  return InTime(sound, workshop.SizeOf("best.wv"), ReadSound(workshop.Path("back.wav")).samples);
}
