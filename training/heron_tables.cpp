// SPDX-License-Identifier: Apache-2.0
//
// Prints the tables of the Heron codec (heron/Tables.h) as they follow from recorded speech. It
// codes every WAV file named on the command line (16-bit mono) at 2 to 6 bits per sample with the
// present tables, and counts the symbols. train_heron.sh runs it until the tables settle.
#include <algorithm>
#include <array>
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
#include "heron/EntropyCoder.h"
#include "heron/MagnitudeCode.h"
#include "heron/PartSyntax.h"
#include "heron/Quantiser.h"
#include "heron/SoundCoder.h"
#include "heron/StepSize.h"
#include "heron/Tables.h"
#include "interface/I_WavData.h"

namespace {

template <std::size_t nSymbols>
using S_Counts = std::array<double, nSymbols>;

using S_MagnitudeCounts = S_Counts<heron::kMagnitudeSymbols>;

struct S_Statistics {
  std::array<std::array<std::array<S_MagnitudeCounts, heron::kMagnitudeTables>, heron::kQuantisers>,
             heron::kModels>
      magnitudes{};
  S_Counts<heron::kIndexSymbols> indices{};
  std::array<std::array<S_Counts<heron::kPartKinds>, heron::kPartSizes>, heron::kKindContexts>
      kinds{};
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

// Recovers the symbols of a block from its parts and their coefficients, which are multiples of the
// half step.
class C_BlockCounter {
 public:
  C_BlockCounter(std::size_t nUnitLength, S_Statistics& statistics)
      : m_nUnitLength(nUnitLength),
        m_state(nUnitLength),
        m_magnitudes(nUnitLength * heron::kSectionUnits),
        m_statistics(statistics) {}

  // values begins with the first coefficient of the part; nSamples samples are left from there on.
  void Count(const heron::S_Part& part, std::span<const std::int32_t> values,
             std::size_t nSamples) {
    CountSplits(part);
    CountKind(part.nSize, part.kind);
    if (part.kind == heron::E_PartKind::kSilent) {
      m_state.PassSilence();
      return;
    }
    CountIndex(part.nIndex);
    std::size_t nLength = part.Units() * m_nUnitLength;
    if (part.kind == heron::E_PartKind::kPlain) nLength = std::min(nLength, nSamples);
    m_state.Begin(part, nLength);
    if (part.kind == heron::E_PartKind::kSteady) {
      CountLevels<heron::C_SteadyBelow>(values.first(nLength), part.nIndex);
    } else {
      CountLevels<heron::C_NearBelow>(values.first(nLength), part.nIndex);
    }
    m_state.End(part, {m_magnitudes.data(), nLength});
  }

 private:
  // A part that begins where a larger one could begin follows the splits of that one.
  void CountSplits(const heron::S_Part& part) {
    const std::size_t nAt = part.nUnit % heron::kSectionUnits;
    std::size_t nLargest = heron::kPartSizes - 1;
    while (nAt % (std::size_t{1} << nLargest) != 0) --nLargest;
    // The node that ends the last split has been counted unless this part begins it.
    for (std::size_t nSize = nLargest; nSize > part.nSize; --nSize) {
      CountKind(nSize, heron::E_PartKind::kSplit);
    }
  }
  void CountKind(std::size_t nSize, heron::E_PartKind kind) {
    ++m_statistics.kinds[m_state.KindContext()][nSize][static_cast<std::size_t>(kind)];
  }
  void CountIndex(int nIndex) {
    if (m_state.HasStepIndex()) {
      const int nDifference = std::clamp(nIndex - m_state.StepIndex() + 15, -1, 31);
      ++m_statistics.indices[nDifference < 0 ? 31U : static_cast<unsigned int>(nDifference)];
    }
  }
  template <typename T_Below>
  void CountLevels(std::span<const std::int32_t> coefficients, int nIndex) {
    T_Below below;
    std::size_t nState = heron::kFirstState;
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
      const std::size_t nQuantiser = heron::QuantiserOf(nState);
      const auto magnitudeClass =
          heron::ClassOf(m_state.Before().Expectation(k) + below.Expectation());
      m_magnitudes[k] = std::abs(coefficients[k]) / heron::HalfStep(nIndex);
      const auto nLevel = static_cast<std::uint32_t>(m_magnitudes[k] + 1) / 2;
      const std::uint32_t nTop = nLevel >> magnitudeClass.nShift;
      ++m_statistics.magnitudes[heron::ModelOf<T_Below>()][nQuantiser][magnitudeClass.nTable]
                               [std::min(nTop, heron::kEscapeSymbol)];
      below = below.Then(m_magnitudes[k]);
      nState = heron::NextState(nState, nLevel);
    }
  }

  std::size_t m_nUnitLength;
  heron::C_PartState m_state;
  std::vector<std::int32_t> m_magnitudes;
  S_Statistics& m_statistics;
};

void CountBlock(std::span<const std::uint8_t> run, std::size_t nSamples, std::size_t nUnitLength,
                S_Statistics& statistics) {
  heron::C_EntropyDecoder decoder(run);
  heron::C_PartReader reader(decoder, nUnitLength);
  C_BlockCounter counter(nUnitLength, statistics);
  const std::size_t nSection = nUnitLength * heron::kSectionUnits;
  std::vector<std::int32_t> values(nSection);
  for (std::size_t nAt = 0; nAt < nSamples; nAt += nSection) {
    std::vector<heron::S_Part> parts;
    if (!reader.ReadSection(values, nSamples - nAt, nAt / nUnitLength, parts)) return;
    for (const heron::S_Part& part : parts) {
      const std::size_t nIn = part.nUnit * nUnitLength - nAt;
      counter.Count(part, std::span(values).subspan(nIn), nSamples - nAt - nIn);
    }
  }
}

void CountSymbols(const std::vector<std::uint8_t>& coded, int nSampleRate,
                  S_Statistics& statistics) {
  const auto decoder = heron::C_Decoder::Open(coded, nSampleRate);
  if (!decoder) return;
  for (std::size_t n = 0; n < decoder->BlockCount(); ++n) {
    const std::size_t nCount =
        std::min(decoder->Length(), decoder->SampleCount() - n * decoder->Length());
    const auto run = decoder->Run(n);
    if (run) CountBlock(*run, nCount, heron::UnitLength(nSampleRate), statistics);
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

template <std::size_t nSymbols>
S_Counts<nSymbols> EvenPrior() {
  S_Counts<nSymbols> prior{};
  prior.fill(0.3);
  return prior;
}

template <std::size_t nSymbols>
void PrintRow(const std::array<std::uint32_t, nSymbols>& row) {
  std::printf("{");
  for (std::size_t n = 0; n < nSymbols; ++n) std::printf("%s%u", n == 0 ? "" : ", ", row[n]);
  std::printf("}");
}

void PrintMagnitudes(const S_Statistics& statistics) {
  std::printf(
      "inline constexpr std::array<\n"
      "    std::array<std::array<S_MagnitudeFrequencies, kMagnitudeTables>, kQuantisers>, "
      "kModels>\n"
      "    kMagnitudeFrequencies = {{\n");
  for (const auto& quantisers : statistics.magnitudes) {
    std::printf("{{");
    for (const auto& tables : quantisers) {
      std::printf("{{\n");
      for (std::size_t n = 0; n < tables.size(); ++n) {
        PrintRow(Frequencies(tables[n], MagnitudePrior(n)));
        std::printf(",\n");
      }
      std::printf("}},\n");
    }
    std::printf("}},\n");
  }
  std::printf("}};\n\n");
}

void PrintKinds(const S_Statistics& statistics) {
  std::printf(
      "// By the kind of the part before (near or plain, steady, silent), then by size: near,\n"
      "// steady, silent, split, plain (PartSyntax.h).\n"
      "inline constexpr std::array<\n"
      "    std::array<std::array<std::uint16_t, kPartKinds>, kPartSizes>, kKindContexts>\n"
      "    kKindFrequencies = {{\n");
  for (const auto& sizes : statistics.kinds) {
    std::printf("{{");
    for (const auto& kinds : sizes) {
      PrintRow(Frequencies(kinds, EvenPrior<heron::kPartKinds>()));
      std::printf(",\n");
    }
    std::printf("}},\n");
  }
  std::printf("}};\n");
}

void Print(const S_Statistics& statistics) {
  PrintMagnitudes(statistics);
  std::printf("inline constexpr std::array<std::uint16_t, kIndexSymbols> kIndexFrequencies = ");
  PrintRow(Frequencies(statistics.indices, EvenPrior<heron::kIndexSymbols>()));
  std::printf(";\n\n");
  PrintKinds(statistics);
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
