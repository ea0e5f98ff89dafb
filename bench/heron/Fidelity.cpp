// SPDX-License-Identifier: Apache-2.0
#include "heron/Fidelity.h"

#include <algorithm>
#include <cmath>

namespace {

using Samples = std::span<const std::int16_t>;

constexpr double kFlawless = 120.0;  // dB
constexpr double kMinSegment = -10.0;
constexpr double kMaxSegment = 35.0;
constexpr double kMinRms = 40.0;

double Energy(Samples samples) {
  double dEnergy = 0.0;
  for (const double dSample : samples) dEnergy += dSample * dSample;
  return dEnergy;
}

double Difference(Samples a, Samples b) {
  double dEnergy = 0.0;
  for (std::size_t n = 0; n < a.size(); ++n) {
    const double dError = a[n] - b[n];
    dEnergy += dError * dError;
  }
  return dEnergy;
}

double Ratio(double dSignal, double dNoise) {
  if (dNoise == 0.0) return kFlawless;
  return std::min(kFlawless, 10.0 * std::log10(dSignal / dNoise));
}

bool IsAudible(Samples segment) {
  return Energy(segment) >= kMinRms * kMinRms * static_cast<double>(segment.size());
}

void AddSegment(Samples original, Samples decoded, S_Fidelity& fidelity) {
  if (!IsAudible(original)) return;
  const double dRatio = Ratio(Energy(original), Difference(original, decoded));
  fidelity.dSegments += std::clamp(dRatio, kMinSegment, kMaxSegment);
  ++fidelity.nSegments;
}

}  // namespace

S_Fidelity& S_Fidelity::operator+=(const S_Fidelity& other) {
  dSignal += other.dSignal;
  dNoise += other.dNoise;
  dSegments += other.dSegments;
  nSegments += other.nSegments;
  return *this;
}

double S_Fidelity::Snr() const { return Ratio(dSignal, dNoise); }

double S_Fidelity::SegmentalSnr() const {
  return nSegments == 0 ? 0.0 : dSegments / static_cast<double>(nSegments);
}

S_Fidelity Compare(Samples original, Samples decoded, int nSampleRate) {
  S_Fidelity fidelity{Energy(original), Difference(original, decoded)};
  const auto nLength = static_cast<std::size_t>(nSampleRate) / 50;
  for (std::size_t n = 0; original.size() - n >= nLength; n += nLength) {
    AddSegment(original.subspan(n, nLength), decoded.subspan(n, nLength), fidelity);
  }
  return fidelity;
}

bool IsInTime(Samples original, Samples decoded) {
  if (original.size() < 3) return true;
  const std::size_t nCompared = original.size() - 2;
  const Samples middle = original.subspan(1, nCompared);
  const double dNoise = Difference(middle, decoded.subspan(1, nCompared));
  return dNoise <= Difference(middle, decoded.first(nCompared)) &&
         dNoise <= Difference(middle, decoded.last(nCompared));
}
