// SPDX-License-Identifier: Apache-2.0
#include "heron/RateControl.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "heron/Block.h"
#include "heron/BlockDecoder.h"
#include "heron/BlockEncoder.h"
#include "heron/BlockGroup.h"
#include "heron/Configuration.h"
#include "heron/Forecast.h"
#include "heron/SampleCount.h"

namespace heron {
namespace {

// After so many passes, the interval is halved.
constexpr std::size_t kNewtonPasses = 8;

// What may stay unused of the allowed size, as reciprocals. The sizes of short sounds jump up and
// down from step to step, so more may stay unused after some passes. A smaller share would cost more
// passes than it is worth.
constexpr std::int64_t kUnusedAtFirst = 256;
constexpr std::int64_t kUnusedLater = 200;
constexpr std::int64_t kUnusedAtLast = 100;
constexpr std::size_t kFirstPasses = 3;
constexpr std::size_t kLaterPasses = 5;
// Aimed at is this fraction less than the size, so that a step that misses a little fits.
constexpr std::int64_t kAimedBelow = 512;

// Blocks at the end of a sound that are held in memory and coded several times.
constexpr std::size_t kHeldBlocks = 2;
// More than a run takes when all its parts are silent.
constexpr std::uint64_t kLeastRun = 100;

// Sounds of so few sections are tried at every coarseness.
constexpr std::int64_t kFewSections = 4;

// Where a search begins.
struct S_Start {
  int nOffset;
  std::int64_t nBytesPerOctave;  // what twice the step size saves
};

struct S_Pass {
  std::int64_t nCoarseness;
  std::int64_t nSize;
};

// Approaches the size in Newton's way. What a step saves is foretold at first; after that, the last
// two passes tell. Once the search knows a coarseness that is too fine and one that is coarse enough,
// it stays between them, and halves what is left when it does not get close soon.
class C_Search {
 public:
  C_Search(const C_BlockGroup& group, std::uint64_t qwMost, const S_Start& start)
      : m_nMost(static_cast<std::int64_t>(qwMost)),
        m_nStepsPerOctave(group.StepsPerOctave()),
        m_nFine(group.Finest() - 1),
        m_nCoarse(group.Coarsest() + 1),
        m_nNext(Limit(group.FromOffset(start.nOffset))),
        m_nForeseenPerOctave(start.nBytesPerOctave),
        m_nBytesPerOctave(start.nBytesPerOctave) {}

  // The coarseness to try next; without a meaning once IsDone().
  [[nodiscard]] std::int64_t Next() const { return m_nNext; }

  // Takes what it gave.
  void Learn(S_GroupRuns runs) {
    const S_Pass pass{m_nNext, static_cast<std::int64_t>(runs.nBytes)};
    const bool bFits = pass.nSize <= m_nMost;
    (bFits ? m_nCoarse : m_nFine) = m_nNext;
    if (!m_bFits || (bFits && pass.nSize > m_nBestSize)) {
      m_best = std::move(runs);
      m_nBest = pass.nCoarseness;
      m_nBestSize = pass.nSize;
    }
    m_bFits = m_bFits || bFits;
    if (m_nPasses > 0) m_nBytesPerOctave = BytesPerOctave(pass);
    m_last = pass;
    ++m_nPasses;
    if (!IsClosed()) m_nNext = m_nPasses < kNewtonPasses ? Limit(m_nNext + Step(pass)) : Middle();
  }

  // True when the best result is close enough or nothing is left to try.
  [[nodiscard]] bool IsDone() const {
    return IsWithin(m_nPasses <= kFirstPasses   ? kUnusedAtFirst
                    : m_nPasses <= kLaterPasses ? kUnusedLater
                                                : kUnusedAtLast) ||
           IsClosed();
  }
  // True when the best result fits and leaves at most this share of the size.
  [[nodiscard]] bool IsWithin(std::int64_t nShare) const {
    return m_bFits && m_nMost - m_nBestSize <= m_nMost / nShare;
  }
  [[nodiscard]] std::int64_t BestCoarseness() const { return m_nBest; }
  // The size of the best result if it fits, or else -1.
  [[nodiscard]] std::int64_t SizeThatFits() const { return m_bFits ? m_nBestSize : -1; }
  S_GroupRuns TakeBest() { return std::move(m_best); }

 private:
  // True when nothing is left between the two known ones.
  [[nodiscard]] bool IsClosed() const { return m_nFine + 1 >= m_nCoarse; }
  [[nodiscard]] std::int64_t Middle() const { return m_nFine + (m_nCoarse - m_nFine) / 2; }
  // The search must not be closed.
  [[nodiscard]] std::int64_t Limit(std::int64_t nCoarseness) const {
    return std::clamp(nCoarseness, m_nFine + 1, m_nCoarse - 1);
  }
  // What an octave saves by the last two passes, when they agree roughly with what was foretold.
  [[nodiscard]] std::int64_t BytesPerOctave(const S_Pass& pass) const {
    const std::int64_t nSteps = pass.nCoarseness - m_last.nCoarseness;
    if (nSteps == 0) return m_nForeseenPerOctave;
    return std::clamp((m_last.nSize - pass.nSize) * m_nStepsPerOctave / nSteps,
                      m_nForeseenPerOctave / 2, 2 * m_nForeseenPerOctave);
  }
  // From this pass to where the size is as aimed at.
  [[nodiscard]] std::int64_t Step(const S_Pass& pass) const {
    const std::int64_t nExcess = pass.nSize - (m_nMost - m_nMost / kAimedBelow);
    const std::int64_t nPerOctave = std::max<std::int64_t>(m_nBytesPerOctave, 1);
    // A step of several octaves would rest on too rough a guess.
    return std::clamp(nExcess, -2 * nPerOctave, 2 * nPerOctave) * m_nStepsPerOctave / nPerOctave;
  }

  std::int64_t m_nMost;
  std::int64_t m_nStepsPerOctave;
  std::int64_t m_nFine;    // too fine, or finer than makes sense
  std::int64_t m_nCoarse;  // coarse enough, or coarser than makes sense
  std::int64_t m_nNext;
  std::size_t m_nPasses = 0;
  S_Pass m_last{0, 0};
  std::int64_t m_nForeseenPerOctave;
  std::int64_t m_nBytesPerOctave;
  S_GroupRuns m_best;
  std::int64_t m_nBest = 0;
  std::int64_t m_nBestSize = -1;
  bool m_bFits = false;
};

// The squared error of what a run decodes to.
std::uint64_t ErrorOf(C_BlockDecoder& decoder, std::span<const std::uint8_t> run,
                      std::span<const std::int16_t> samples) {
  std::vector<std::int16_t> decoded(samples.size());
  if (!decoder.Decode(run, decoded)) return std::numeric_limits<std::uint64_t>::max();
  std::uint64_t qwError = 0;
  for (std::size_t n = 0; n < samples.size(); ++n) {
    const std::int64_t nError = decoded[n] - samples[n];
    qwError += static_cast<std::uint64_t>(nError * nError);
  }
  return qwError;
}

C_Search Search(C_BlockGroup& group, std::uint64_t qwMost, const S_Start& start) {
  C_Search search(group, qwMost, start);
  while (!search.IsDone()) search.Learn(group.Encode(search.Next()));
  return search;
}

// Codes a group so that its runs fill qwMost bytes.
S_GroupRuns EncodeGroup(C_BlockGroup& group, std::uint64_t qwMost, const S_Start& start) {
  C_Search search = Search(group, qwMost, start);
  if (search.IsWithin(kUnusedAtLast)) return search.TakeBest();
  const int nFound = group.ToOffset(search.BestCoarseness());
  group.UseWholeIndices();
  C_Search second = Search(group, qwMost, {nFound, start.nBytesPerOctave});
  const bool bBetter = second.SizeThatFits() > search.SizeThatFits();
  return bBetter ? second.TakeBest() : search.TakeBest();
}

// The same for a group that is one block of a few sections. The sizes of short sounds jump up and
// down from step to step, so a finer coarseness than the search found may fit as well. Of all within
// an octave the one with the least error is taken.
S_GroupRuns EncodeFew(C_BlockGroup& group, std::uint64_t qwMost, const S_Start& start,
                      std::span<const std::int16_t> samples, int nSampleRate) {
  C_Search search = Search(group, qwMost, start);
  const std::int64_t nFound = search.BestCoarseness();
  C_BlockDecoder decoder(nSampleRate);
  S_GroupRuns best = search.TakeBest();
  std::uint64_t qwLeast = ErrorOf(decoder, best.runs.front(), samples);
  for (std::int64_t n = nFound - group.StepsPerOctave(); n < nFound; ++n) {
    S_GroupRuns runs = group.Encode(n);
    if (runs.nBytes > qwMost) continue;
    const std::uint64_t qwError = ErrorOf(decoder, runs.runs.front(), samples);
    if (qwError >= qwLeast) continue;
    qwLeast = qwError;
    best = std::move(runs);
  }
  return best;
}

// nValue * nTimes / nBy for large numbers; the ratio is rounded to about 24 bits.
std::uint64_t InRatio(std::uint64_t qwValue, std::uint64_t qwTimes, std::uint64_t qwBy) {
  while (std::max(qwTimes, qwBy) >> 24 != 0) {
    qwTimes >>= 1;
    qwBy >>= 1;
  }
  return qwValue * qwTimes / std::max<std::uint64_t>(qwBy, 1);
}

// Codes the blocks of a sound one after another.
class C_SoundEncoder {
 public:
  C_SoundEncoder(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                 const S_Write& fnWrite, const S_Progress& fnProgress)
      : m_samples(samples),
        m_nSampleRate(nSampleRate),
        m_nLength(BlockLength(nSampleRate)),
        m_nBlocks((samples.size() + m_nLength - 1) / m_nLength),
        m_qwRoom(CodedRoom(samples.size(), nBitDepth)),
        m_forecast(nSampleRate, nBitDepth),
        m_encoder(nSampleRate, nBitDepth),
        m_fnWrite(fnWrite),
        m_fnProgress(fnProgress) {}

  bool Encode() {
    for (std::size_t n = 0; n < m_nBlocks; ++n) m_forecast.Add(Block(n));
    std::vector<std::uint8_t> count;
    AppendCount(count, m_samples.size());
    m_qwRoom -= count.size() + (m_nBlocks == 1 ? kCheckBytes : m_nBlocks * kBlockHeadBytes);
    if (!m_fnWrite(count)) return false;
    std::size_t nBlock = 0;
    for (; nBlock + kHeldBlocks < m_nBlocks; ++nBlock) {
      if (!Put(nBlock, EncodeOne(nBlock))) return false;
      Report(nBlock + 1);
    }
    return EncodeRest(nBlock);
  }

 private:
  [[nodiscard]] std::span<const std::int16_t> Block(std::size_t nBlock) const {
    const std::size_t nAt = nBlock * m_nLength;
    return m_samples.subspan(nAt, std::min(m_nLength, m_samples.size() - nAt));
  }
  // The offset at which the blocks that are left should take the room that is left.
  [[nodiscard]] int NextOffset() const {
    // The forecast is corrected by how the blocks so far have turned out.
    const std::uint64_t qwBits = m_qwRoom * 8;
    return m_forecast.OffsetFor(m_qwTaken == 0 ? qwBits
                                               : InRatio(qwBits, m_qwForeseen, m_qwTaken));
  }

  std::vector<std::uint8_t> EncodeOne(std::size_t nBlock) {
    int nOffset = NextOffset();
    const auto divided = m_encoder.Divide(Block(nBlock), nOffset);
    const std::uint64_t qwBitsBefore = m_forecast.BitsAt(nOffset);
    m_forecast.Remove(Block(nBlock));
    const std::uint64_t qwForeseen = qwBitsBefore - m_forecast.BitsAt(nOffset);
    // What the blocks after this one need at least.
    const std::uint64_t qwKept = (m_nBlocks - nBlock - 1) * kLeastRun;
    std::vector<std::uint8_t> run;
    for (;; nOffset += C_BlockGroup::kOffsetsPerOctave / 4) {
      m_encoder.Encode(divided, {nOffset, nOffset, 0}, run);
      if (run.size() + qwKept <= m_qwRoom || nOffset >= C_Forecast::kMostOffset) break;
    }
    m_qwRoom -= std::min<std::uint64_t>(run.size(), m_qwRoom);
    m_qwForeseen += qwForeseen;
    m_qwTaken += run.size() * 8;
    return run;
  }

  bool EncodeRest(std::size_t nFirst) {
    const int nOffset = NextOffset();
    std::vector<S_DividedBlock> blocks;
    for (std::size_t n = nFirst; n < m_nBlocks; ++n) {
      blocks.push_back(m_encoder.Divide(Block(n), nOffset));
      Report(n + 1);
    }
    C_BlockGroup group(m_encoder, std::move(blocks));
    const S_Start start{nOffset, m_forecast.BytesPerOctave(nOffset)};
    const S_GroupRuns coded = group.SectionCount() == 1 ? EncodeOneSection(start)
                              : group.SectionCount() <= kFewSections
                                  ? EncodeFew(group, m_qwRoom, start, m_samples, m_nSampleRate)
                                  : EncodeGroup(group, m_qwRoom, start);
    for (std::size_t n = nFirst; n < m_nBlocks; ++n) {
      if (!Put(n, coded.runs[n - nFirst])) return false;
    }
    return true;
  }

  // So few samples can take much more or less than foreseen, and then the parts that were chosen do
  // not suit the steps. So parts for much finer and for much coarser steps are tried as well.
  S_GroupRuns EncodeOneSection(const S_Start& start) {
    C_BlockDecoder decoder(m_nSampleRate);
    S_GroupRuns best;
    std::uint64_t qwLeast = 0;
    for (const int nOctaves : {0, -4, 4}) {
      const int nOffset = start.nOffset + nOctaves * C_BlockGroup::kOffsetsPerOctave;
      std::vector<S_DividedBlock> block;
      block.push_back(m_encoder.Divide(m_samples, nOffset));
      C_BlockGroup group(m_encoder, std::move(block));
      S_GroupRuns runs = EncodeFew(group, m_qwRoom, start, m_samples, m_nSampleRate);
      const std::uint64_t qwError = ErrorOf(decoder, runs.runs.front(), m_samples);
      if (!best.runs.empty() && (runs.nBytes > m_qwRoom || qwError >= qwLeast)) continue;
      qwLeast = qwError;
      best = std::move(runs);
    }
    return best;
  }

  bool Put(std::size_t nBlock, std::span<const std::uint8_t> run) {
    std::vector<std::uint8_t> bytes;
    if (m_nBlocks == 1) {
      AppendOnlyBlock(bytes, run);
    } else {
      AppendBlock(bytes, nBlock, run);
    }
    return m_fnWrite(bytes);
  }
  void Report(std::size_t nBlocks) {
    if (m_fnProgress) m_fnProgress(std::min(nBlocks * m_nLength, m_samples.size()));
  }

  std::span<const std::int16_t> m_samples;
  int m_nSampleRate;
  std::size_t m_nLength;  // of a block
  std::size_t m_nBlocks;
  std::uint64_t m_qwRoom;  // bytes that are left for runs
  C_Forecast m_forecast;   // of the blocks that are left
  C_BlockEncoder m_encoder;
  const S_Write& m_fnWrite;
  const S_Progress& m_fnProgress;
  // Bits of the blocks that were coded one by one.
  std::uint64_t m_qwForeseen = 0;
  std::uint64_t m_qwTaken = 0;
};

}  // namespace

std::uint64_t CodedRoom(std::size_t nSamples, int nBitDepth) noexcept {
  const std::uint64_t qwByDepth =
      std::uint64_t{nSamples} * static_cast<unsigned int>(nBitDepth) / 8;
  const std::uint64_t qwShort = kShortBytes + std::uint64_t{nSamples} * kShortBitsOf8 / 64;
  return std::max(qwByDepth, std::min<std::uint64_t>(qwShort, kMostShortBytes)) - kHeadBytes;
}

bool EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                  const S_Write& fnWrite, const S_Progress& fnProgress) {
  return C_SoundEncoder(samples, nSampleRate, nBitDepth, fnWrite, fnProgress).Encode();
}

}  // namespace heron
