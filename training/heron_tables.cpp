// SPDX-License-Identifier: Apache-2.0
//
// Prints the tables of the Heron codec (heron/Tables.h) as they follow from recorded speech. It
// codes every WAV file named on the command line (16-bit mono) at 2 to 6 bits per sample with the
// present tables, and counts the symbols. train_heron.sh runs it until the tables settle.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

#include "ByteReader.h"
#include "WavFileFormat.h"
#include "heron/Configuration.h"
#include "heron/Decoder.h"
#include "heron/FrameSyntax.h"
#include "heron/MagnitudeCode.h"
#include "heron/Quantiser.h"
#include "heron/SoundCoder.h"
#include "heron/StepSize.h"
#include "heron/Tables.h"
#include "interface/I_WavData.h"

namespace {

template <std::size_t nSymbols>
using S_Counts = std::array<double, nSymbols>;

struct S_Statistics {
  std::array<std::array<S_Counts<heron::kMagnitudeSymbols>, heron::kMagnitudeTables>,
             heron::kQuantisers>
      magnitudes{};
  S_Counts<heron::kIndexSymbols> indices{};
};

struct S_Sound {
  std::vector<std::int16_t> samples;
  int nSampleRate = 0;
};

S_Sound Load(const char* pszFileName) {
  struct S_Release {
    void operator()(I_WavFile* pIFile) const { pIFile->Release(); }
  };
  C_WavFileFormat format;
  const std::unique_ptr<I_WavFile, S_Release> file(
      format.CreateWavFile(pszFileName, true, true, nullptr, nullptr));
  if (!file || file->GetWavInfo()->GetChannels() != 1 ||
      file->GetWavInfo()->GetBitsPerSample() != 16) {
    return {};
  }
  S_Sound sound;
  sound.nSampleRate = static_cast<int>(file->GetWavInfo()->GetSampleRate());
  sound.samples.resize(file->GetWavData()->GetBufferLength() / 2);
  vcm::C_ByteReader pcm({file->GetWavData()->GetBuffer(), sound.samples.size() * 2});
  for (std::int16_t& nSample : sound.samples) nSample = pcm.I16();
  return sound;
}

// Recovers the symbols of one frame from its coefficients, which are multiples of the half step.
class C_FrameCounter {
 public:
  C_FrameCounter(int nLength, S_Statistics& statistics)
      : m_before(nLength),
        m_magnitudes(static_cast<std::size_t>(nLength)),
        m_statistics(statistics) {}

  void Count(std::span<const std::int32_t> coefficients, int nIndex) {
    const int nDifference = std::clamp(nIndex - m_nIndex + 15, -1, 31);
    ++m_statistics.indices[nDifference < 0 ? 31u : static_cast<unsigned>(nDifference)];
    m_nIndex = nIndex;
    m_before.Begin(nIndex);
    heron::S_Below below;
    std::size_t nState = heron::kFirstState;
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
      const std::size_t nQuantiser = heron::QuantiserOf(nState);
      const auto magnitudeClass = heron::ClassOf(m_before.Expectation(k) + FromBelow(below));
      m_magnitudes[k] = HalfSteps(coefficients[k], nIndex);
      const auto nLevel = static_cast<std::uint32_t>(m_magnitudes[k] + 1) / 2;
      const std::uint32_t nTop = nLevel >> magnitudeClass.nShift;
      ++m_statistics
            .magnitudes[nQuantiser][magnitudeClass.nTable][std::min(nTop, heron::kEscapeSymbol)];
      below = below.Then(m_magnitudes[k]);
      nState = heron::NextState(nState, nLevel);
    }
    m_before.End(m_magnitudes);
  }

 private:
  static std::int32_t HalfSteps(std::int32_t nCoefficient, int nIndex) {
    const double dHalfStep = std::exp2(nIndex / 4.0 - 3) * (1 << heron::kCoefficientQ);
    return static_cast<std::int32_t>(std::lround(std::abs(nCoefficient) / dHalfStep));
  }

  int m_nIndex = heron::kFirstIndex;
  heron::C_PreviousFrame m_before;
  std::vector<std::int32_t> m_magnitudes;
  S_Statistics& m_statistics;
};

void CountSymbols(const std::vector<std::uint8_t>& coded, int nSampleRate,
                  S_Statistics& statistics) {
  const int nLength = heron::FrameLength(nSampleRate);
  const auto count = heron::ReadCount(coded);
  const std::span<const std::uint8_t> bytes(coded);
  heron::C_EntropyDecoder decoder(bytes.subspan(count->nBytes));
  heron::C_FrameReader reader(nLength);
  C_FrameCounter counter(nLength, statistics);
  std::vector<std::int32_t> coefficients(static_cast<std::size_t>(nLength));
  // Reads one frame more than the samples fill.
  std::uint64_t qwLeft = count->qwCount + static_cast<unsigned>(nLength);
  while (reader.Read(decoder, coefficients)) {
    counter.Count(coefficients, reader.StepIndex());
    if (qwLeft <= coefficients.size()) break;
    qwLeft -= coefficients.size();
  }
}

// Frequencies that add up to the range coder's total, each at least 1. A little of a geometric
// distribution around the same mean is added, for symbols that the material happens not to contain.
template <std::size_t nSymbols>
std::array<std::uint32_t, nSymbols> Frequencies(const S_Counts<nSymbols>& counts,
                                                const S_Counts<nSymbols>& prior) {
  double dTotal = 0;
  for (std::size_t n = 0; n < nSymbols; ++n) dTotal += counts[n] + prior[n];
  std::array<std::uint32_t, nSymbols> frequencies{};
  std::uint32_t nSum = 0;
  for (std::size_t n = 0; n < nSymbols; ++n) {
    const double dShare = (counts[n] + prior[n]) / dTotal;
    nSum += frequencies[n] =
        std::max(1u, static_cast<std::uint32_t>(dShare * (heron::kFrequencyTotal - nSymbols)));
  }
  *std::max_element(frequencies.begin(), frequencies.end()) += heron::kFrequencyTotal - nSum;
  return frequencies;
}

S_Counts<heron::kMagnitudeSymbols> MagnitudePrior(std::size_t nTable) {
  constexpr double kWeight = 20;
  const double dMean = 8 * std::exp2((static_cast<double>(nTable) + 0.5) / 4) / 128;
  const double dRatio = dMean / (1 + dMean);
  S_Counts<heron::kMagnitudeSymbols> prior{};
  for (std::size_t n = 0; n < prior.size(); ++n) {
    prior[n] = kWeight * std::pow(dRatio, n) * (n < heron::kEscapeSymbol ? 1 - dRatio : 1);
  }
  return prior;
}

S_Counts<heron::kIndexSymbols> IndexPrior() {
  S_Counts<heron::kIndexSymbols> prior{};
  prior.fill(0.3);
  return prior;
}

template <std::size_t nSymbols>
void PrintRow(const char* pszIndent, const std::array<std::uint32_t, nSymbols>& row) {
  std::printf("%s{", pszIndent);
  for (std::size_t n = 0; n < nSymbols; ++n) {
    std::printf("%s%u", n == 0 ? "" : n % 16 == 0 ? ",\n    " : ", ", row[n]);
  }
}

void Print(const S_Statistics& statistics) {
  std::printf(
      "inline constexpr std::array<std::array<S_MagnitudeFrequencies, kMagnitudeTables>,\n"
      "                            kQuantisers> kMagnitudeFrequencies = {{\n");
  for (const auto& tables : statistics.magnitudes) {
    std::printf("    {{\n");
    for (std::size_t n = 0; n < tables.size(); ++n) {
      PrintRow("        ", Frequencies(tables[n], MagnitudePrior(n)));
      std::printf("},\n");
    }
    std::printf("    }},\n");
  }
  std::printf(
      "}};\n\ninline constexpr std::array<std::uint16_t, kIndexSymbols> kIndexFrequencies = ");
  PrintRow("", Frequencies(statistics.indices, IndexPrior()));
  std::printf("};\n");
}

}  // namespace

int main(int argc, char** argv) {
  S_Statistics statistics;
  for (const char* pszFileName : std::span(argv, static_cast<std::size_t>(argc)).subspan(1)) {
    const S_Sound sound = Load(pszFileName);
    for (int nBitDepth = heron::kMinBitDepth; nBitDepth <= heron::kMaxBitDepth; ++nBitDepth) {
      std::vector<std::uint8_t> coded;
      if (!heron::EncodeSamples(sound.samples, sound.nSampleRate, nBitDepth, &coded, {})) {
        static_cast<void>(std::fprintf(stderr, "%s: not 16-bit mono speech\n", pszFileName));
        return EXIT_FAILURE;
      }
      CountSymbols(coded, sound.nSampleRate, statistics);
    }
  }
  Print(statistics);
  return EXIT_SUCCESS;
}
