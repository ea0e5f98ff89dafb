// SPDX-License-Identifier: Apache-2.0
//
// The reader and the class library open alike what the fuzzers found, which has been chosen for the
// many ways that it takes through the code.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ClassLibraryComparison.h"
#include "CorpusPack.h"
#include "HeronStreams.h"
#include "LabelsArePlaced.h"

namespace {

using api::test::S_Counts;

// An input of the fuzzer of audio files begins with what chooses how it is read.
constexpr std::size_t kChoices = 16;

C_Bytes AsIs(const C_Bytes& input) { return input; }
C_Bytes WithoutChoices(const C_Bytes& input) {
  const std::size_t cbChoices = std::min(kChoices, input.size());
  return {input.begin() + static_cast<std::ptrdiff_t>(cbChoices), input.end()};
}
C_Bytes AsKestrelFile(const C_Bytes& input) { return C_SpBytes().Stream(input).Take(); }
C_Bytes AsHeronFile(const C_Bytes& input) {
  C_FuzzInput fuzz(input.data(), input.size());
  const auto [nRate, stream] = heronstreams::Take(fuzz, fuzz.U8());
  return C_SpBytes().ID(32).Freq(static_cast<std::uint32_t>(nRate)).Stream(stream).Take();
}

struct S_Corpus {
  std::string strName;
  std::string strPack;
  C_Bytes (*pfnFile)(const C_Bytes& input);
  int nLeastOpened;  // by both
};
void PrintTo(const S_Corpus& corpus, std::ostream* pStream) { *pStream << corpus.strName; }

// The class library stops the program when a label lost its cue point.
bool IsForClasses(const C_Bytes& bytes) {
  const C_SweepFile file(bytes);
  return LabelsArePlaced(file.Path().c_str());
}

// Small blocks may stand for minutes of silence. Longer sounds take more time and show nothing new.
bool IsShort(const C_Bytes& bytes) {
  constexpr std::uint64_t kMostSamples = 500'000;
  const auto attempt = api::test::OpenedByReader(bytes, 0);
  if (!attempt.reader) return true;
  const voxplay_info info = attempt.reader->Info();
  return info.frames <= kMostSamples / info.channels;
}

bool HasText(const C_Bytes& bytes, std::string_view text) {
  return std::search(bytes.begin(), bytes.end(), text.begin(), text.end()) != bytes.end();
}

// Those that make a difference.
std::vector<std::uint32_t> FlagsFor(const C_Bytes& bytes) {
  std::vector<std::uint32_t> flags = {0};
  if (!HasText(bytes, "WAVE")) flags.push_back(VOXPLAY_READ_NO_BARE);
  if (HasText(bytes, "VEFF")) flags.push_back(VOXPLAY_READ_STREAM);
  return flags;
}

class ReaderCorpora : public testing::TestWithParam<S_Corpus> {};

TEST_P(ReaderCorpora, Inputs_OpenAlike) {
  const auto inputs = ReadPack(VOXPLAY_CORPORA "/" + GetParam().strPack + ".pack");
  ASSERT_TRUE(inputs);
  S_Counts counts;
  for (std::size_t i = 0; i < inputs->size() && !HasFailure(); ++i) {
    SCOPED_TRACE(i);
    const C_Bytes bytes = GetParam().pfnFile((*inputs)[i]);
    if (!IsForClasses(bytes) || !IsShort(bytes)) continue;
    for (const std::uint32_t dwFlags : FlagsFor(bytes)) {
      SCOPED_TRACE(dwFlags);
      api::test::Compare(bytes, dwFlags, counts);
    }
  }
  EXPECT_GE(counts.nBoth, GetParam().nLeastOpened);
}

INSTANTIATE_TEST_SUITE_P(
    All, ReaderCorpora,
    testing::Values(
        S_Corpus{"Factory", "factory", &AsIs, 150}, S_Corpus{"Vef", "vef", &AsIs, 200},
        S_Corpus{"WavLoad", "wav_load", &AsIs, 150}, S_Corpus{"FileKind", "file_kind", &AsIs, 120},
        S_Corpus{"RiffList", "riff_list", &AsIs, 2}, S_Corpus{"SpHeader", "sp_header", &AsIs, 0},
        S_Corpus{"Reader", "api_reader", &AsIs, 400}, S_Corpus{"Probe", "api_probe", &AsIs, 30},
        S_Corpus{"AudioFile", "audio_file", &WithoutChoices, 1},
        S_Corpus{"KestrelStreams", "kestrel_stream", &AsIs, 60},
        S_Corpus{"KestrelFiles", "kestrel_stream", &AsKestrelFile, 120},
        S_Corpus{"HeronFiles", "heron_stream", &AsHeronFile, 130}),
    [](const auto& parameters) { return parameters.param.strName; });

}  // namespace
