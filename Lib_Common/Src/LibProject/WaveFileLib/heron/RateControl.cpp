// SPDX-License-Identifier: Apache-2.0
#include "heron/RateControl.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>
#include <vector>

#include "heron/Block.h"
#include "heron/BlockDecoder.h"
#include "heron/BlockEncoder.h"
#include "heron/Configuration.h"
#include "heron/Forecast.h"
#include "heron/SampleCount.h"
#include "heron/Tail.h"

namespace heron {
namespace {

// After so many passes, the interval is halved.
constexpr std::size_t kNewtonPasses = 8;

// What may stay unused of the allowed size, as reciprocals. The sizes of short sounds jump up and
// down from step to step, so more may stay unused after some passes. A smaller share would cost
// more passes than it is worth.
constexpr std::int64_t kUnusedAtFirst = 256;
constexpr std::int64_t kUnusedLater = 200;
constexpr std::int64_t kUnusedAtLast = 100;
constexpr std::uint64_t kUnusedOfFew = 16;  // of sounds of a few sections
constexpr std::size_t kFirstPasses = 3;
constexpr std::size_t kLaterPasses = 5;
// Aimed at is this fraction less than the size, so that a step that misses a little fits.
constexpr std::int64_t kAimedBelow = 512;

// Sections that are coded at one offset.
constexpr std::size_t kPortion = 10;
static_assert(kBlockSections % kPortion == 0);
// Sections at the end of a sound that are coded several times.
constexpr std::size_t kTailSections = 30;
constexpr std::size_t kLeastTail = 15;
// The forecast is trusted as if it had been right for so many sections.
constexpr std::uint64_t kTrustedSections = 50;
// With each portion, how it went before loses this share of its weight.
constexpr std::uint64_t kFading = 16;
// More bits than what is left of a block takes when it is lost: a section of silence after another
// one takes about a bit, the first one in a row up to 12 bits, and a run ends with two bytes.
constexpr std::uint64_t kLeastBitsOfBlock = 32;
constexpr std::uint64_t kLeastBitsOfSection = 2;

// Sounds of so few sections are tried at every coarseness.
constexpr std::size_t kFewSections = 4;

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
// two passes tell. Once the search knows a coarseness that is too fine and one that is coarse
// enough, it stays between them, and halves what is left when it does not get close soon.
class C_Search {
 public:
  C_Search(const C_Tail& tail, std::uint64_t qwMost, const S_Start& start)
      : m_nMost(static_cast<std::int64_t>(qwMost)),
        m_nStepsPerOctave(tail.StepsPerOctave()),
        m_nFine(tail.Finest() - 1),
        m_nCoarse(tail.AllLost() + 1),
        m_nNext(Limit(tail.FromOffset(start.nOffset))),
        m_nForeseenPerOctave(start.nBytesPerOctave),
        m_nBytesPerOctave(start.nBytesPerOctave) {}

  // The coarseness to try next; without a meaning once IsDone().
  [[nodiscard]] std::int64_t Next() const { return m_nNext; }

  // Takes what it gave.
  void Learn(S_TailRuns runs) {
    const S_Pass pass{m_nNext, static_cast<std::int64_t>(runs.nBytes)};
    const bool bFits = pass.nSize <= m_nMost;
    (bFits ? m_nCoarse : m_nFine) = m_nNext;
    // Of two that fit, the finer one is better, even if it takes fewer bytes.
    if (!m_bFits || (bFits && pass.nCoarseness < m_nBest)) {
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
  [[nodiscard]] const S_TailRuns& Best() const { return m_best; }
  S_TailRuns TakeBest() { return std::move(m_best); }

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
  S_TailRuns m_best;
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

C_Search Search(C_Tail& tail, std::uint64_t qwMost, const S_Start& start) {
  C_Search search(tail, qwMost, start);
  while (!search.IsDone()) search.Learn(tail.Encode(search.Next()));
  return search;
}

// Codes a tail so that its runs fill qwMost bytes.
S_TailRuns EncodeTail(C_Tail& tail, std::uint64_t qwMost, const S_Start& start) {
  C_Search search = Search(tail, qwMost, start);
  if (search.IsWithin(kUnusedAtLast)) return search.TakeBest();
  const int nFound = tail.ToOffset(search.BestCoarseness());
  tail.UseWholeIndices();
  C_Search second = Search(tail, qwMost, {nFound, start.nBytesPerOctave});
  const bool bBetter = second.SizeThatFits() > search.SizeThatFits();
  return bBetter ? second.TakeBest() : search.TakeBest();
}

// The same for a whole sound of a few sections, which is divided into parts. The sizes of short
// sounds jump up and down from step to step, so a finer coarseness than the search found may fit as
// well. Of all within an octave the one with the least error is taken.
struct S_Judged {
  S_TailRuns runs;
  std::uint64_t qwError;  // the largest number when the runs do not fit
};
S_Judged EncodeFew(C_Tail& tail, std::uint64_t qwMost, const S_Start& start,
                   std::span<const std::int16_t> samples, C_BlockDecoder& decoder) {
  C_Search search = Search(tail, qwMost, start);
  const std::int64_t nFound = search.BestCoarseness();
  S_Judged best{{}, std::numeric_limits<std::uint64_t>::max()};
  if (search.SizeThatFits() >= 0) best.qwError = ErrorOf(decoder, search.Best().runs[0], samples);
  best.runs = search.TakeBest();
  if (nFound > tail.Coarsest()) return best;
  std::vector<int> stepsBefore;
  for (std::int64_t n = nFound - tail.StepsPerOctave(); n < nFound; ++n) {
    // Most differ in no step index from the one before.
    std::vector<int> steps = tail.FirstSteps(n);
    if (steps == stepsBefore) continue;
    stepsBefore = std::move(steps);
    S_TailRuns runs = tail.Encode(n);
    if (runs.nBytes > qwMost) continue;
    const std::uint64_t qwError = ErrorOf(decoder, runs.runs.front(), samples);
    if (qwError < best.qwError) best = {std::move(runs), qwError};
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

// Codes the blocks of a sound one after another, portion by portion.
class C_SoundEncoder {
 public:
  C_SoundEncoder(std::size_t nSamples, const S_ReadSamples& fnRead, int nSampleRate, int nBitDepth,
                 const S_Write& fnWrite, const S_Progress& fnProgress)
      : m_nSamples(nSamples),
        m_fnRead(fnRead),
        m_nSampleRate(nSampleRate),
        m_nLength(SectionLength(nSampleRate)),
        // Not by adding first: so many samples may be all that the type can count.
        m_nSections(nSamples / m_nLength + (nSamples % m_nLength == 0 ? 0 : 1)),
        m_nBlocks((m_nSections + kBlockSections - 1) / kBlockSections),
        m_qwRoom(CodedRoom(nSamples, nBitDepth)),
        m_forecast(nSampleRate, nBitDepth),
        m_encoder(nSampleRate, nBitDepth),
        m_fnWrite(fnWrite),
        m_fnProgress(fnProgress) {}

  bool Encode() {
    if (!Foresee()) return false;
    std::vector<std::uint8_t> count;
    AppendCount(count, m_nSamples);
    m_qwRoom -= count.size() + (m_nBlocks == 1 ? kCheckBytes : m_nBlocks * kBlockHeadBytes);
    m_qwTrust = m_qwRoom * 8 * kTrustedSections / m_nSections;
    if (!m_fnWrite(count)) return false;
    if (m_nSections <= kFewSections) return Load(0) && Put(0, EncodeWhole().runs.front());
    const std::size_t nTailAt = TailAt();
    for (std::size_t nBlock = 0; nBlock < m_nBlocks; ++nBlock) {
      const std::size_t nFirst = nBlock * kBlockSections;
      if (!Load(nBlock)) return false;
      S_DividedBlock block = Divide();
      C_PartWriter writer = m_encoder.NewWriter();
      const std::size_t nEnd = std::min(nFirst + kBlockSections, nTailAt);
      for (std::size_t n = nFirst; n < nEnd; n += kPortion) EncodePortion(block, n, writer);
      if (nTailAt < nFirst + kBlockSections) {
        return EncodeRest(nBlock, nTailAt - nFirst, std::move(block), std::move(writer));
      }
      const auto run = writer.Finish();
      m_qwRoom -= std::min<std::uint64_t>(run.size(), m_qwRoom);
      if (!Put(nBlock, run)) return false;
    }
    return true;
  }

 private:
  // The section that the tail begins with: a portion near the end, in the last block if that is not
  // too short. Then only one block has to be held.
  [[nodiscard]] std::size_t TailAt() const {
    const std::size_t nTail = m_nSections - std::min(m_nSections, kTailSections);
    const std::size_t nLastBlock = (m_nBlocks - 1) * kBlockSections;
    const std::size_t nAt = nTail / kPortion * kPortion;
    return nLastBlock + kLeastTail <= m_nSections ? std::max(nAt, nLastBlock) : nAt;
  }
  // Reads the samples of a block.
  bool Load(std::size_t nBlock) {
    const std::size_t nAt = nBlock * kBlockSections * m_nLength;
    m_samples.resize(std::min(kBlockSections * m_nLength, m_nSamples - nAt));
    const std::span<std::int16_t> samples = m_samples;
    for (std::size_t n = 0; n < samples.size(); n += kMostAtOnce) {
      const auto piece = samples.subspan(n, std::min(kMostAtOnce, samples.size() - n));
      if (!m_fnRead(nAt + n, piece)) return false;
    }
    return true;
  }
  bool Foresee() {
    for (std::size_t n = 0; n < m_nBlocks; ++n) {
      if (!Load(n)) return false;
      m_forecast.Add(m_samples);
    }
    return true;
  }
  // The offset at which what is left should take the room that is left. qwBegun: the bits that the
  // present block has taken so far.
  [[nodiscard]] int NextOffset(std::uint64_t qwBegun) const {
    const std::uint64_t qwBits = m_qwRoom * 8 - std::min(m_qwRoom * 8, qwBegun);
    // The forecast is corrected by how it went so far. As long as that is little, it counts little.
    return m_forecast.OffsetFor(InRatio(qwBits, m_qwForeseen + m_qwTrust, m_qwTaken + m_qwTrust));
  }

  // Divides the block that was read, and notes what the forecast counted for each of its portions.
  S_DividedBlock Divide() {
    m_portions.fill({});
    std::size_t nSection = 0;
    return m_encoder.Divide(
        m_samples, NextOffset(0),
        [&](std::span<const std::int16_t> samples, std::span<const std::int32_t> coefficients) {
          m_forecast.Count(samples, coefficients, m_portions[nSection++ / kPortion]);
        });
  }

  // Codes the portion that begins with section nFirst of the sound.
  void EncodePortion(const S_DividedBlock& block, std::size_t nFirst, C_PartWriter& writer) {
    const std::uint64_t qwBegun = writer.Bits();
    const int nOffset = NextOffset(qwBegun);
    const auto& counts = m_portions[nFirst % kBlockSections / kPortion];
    m_forecast.Remove(counts);
    const int nUsed = WritePortion(block, nFirst, nOffset, writer);
    m_qwForeseen = Faded(m_qwForeseen) + m_forecast.BitsAt(counts, nUsed);
    m_qwTaken = Faded(m_qwTaken) + writer.Bits() - qwBegun;
  }
  static std::uint64_t Faded(std::uint64_t qwBits) { return qwBits - qwBits / kFading; }

  // Writes a portion at an offset, or at the least one above it that leaves enough room for what
  // follows. Loses the portion when there is none. Returns the offset.
  int WritePortion(const S_DividedBlock& block, std::size_t nFirst, int nOffset,
                   C_PartWriter& writer) {
    const std::size_t nInBlock = nFirst % kBlockSections;
    // What the sections after this portion need at least, and at the coarsest steps.
    const std::uint64_t qwLeast = (m_nSections - nFirst - kPortion) * kLeastBitsOfSection +
                                  (m_nBlocks - nFirst / kBlockSections) * kLeastBitsOfBlock;
    const std::uint64_t qwCoarsest = qwLeast + m_forecast.BitsAt(C_Forecast::kMostOffset);
    S_Sections portion{nInBlock, nInBlock + kPortion, nOffset, nOffset, 0};
    for (; portion.nOffset < C_Forecast::kMostOffset;
         portion.nOffset += C_Tail::kOffsetsPerOctave / 4) {
      portion.nCoarser = portion.nOffset;
      if (TryPortion(block, portion, qwCoarsest, writer)) return portion.nOffset;
    }
    if (!TryPortion(block, portion, qwLeast, writer)) {
      portion.nLostFrom = nInBlock;
      m_encoder.Write(block, portion, writer);
    }
    return portion.nOffset;
  }

  // Writes a portion if so many bits are left after it.
  bool TryPortion(const S_DividedBlock& block, const S_Sections& portion, std::uint64_t qwLeft,
                  C_PartWriter& writer) {
    C_PartWriter longer = writer;
    m_encoder.Write(block, portion, longer);
    if (longer.Bits() + qwLeft > m_qwRoom * 8) return false;
    writer = std::move(longer);
    return true;
  }

  // Codes a whole sound of a few sections. So few samples can take much more or much less than
  // foreseen, and then the parts that were chosen do not suit the steps. So parts for much finer,
  // for much coarser and for the finest steps are tried as well.
  S_TailRuns EncodeWhole() {
    const int nOffset = NextOffset(0);
    const S_Start start{nOffset, m_forecast.BytesPerOctave(nOffset)};
    C_BlockDecoder decoder(m_nSampleRate);
    S_Judged best{{}, std::numeric_limits<std::uint64_t>::max()};
    constexpr int kFar = 4 * C_Tail::kOffsetsPerOctave;
    std::vector<std::vector<S_Part>> tried;
    for (const int nDivided : {nOffset, nOffset - kFar, nOffset + kFar, C_Forecast::kLeastOffset}) {
      std::vector<S_DividedBlock> blocks;
      blocks.push_back(m_encoder.Divide(m_samples, nDivided));
      if (std::ranges::find(tried, blocks[0].parts) != tried.end()) continue;
      tried.push_back(blocks[0].parts);
      C_Tail tail(m_encoder, m_encoder.NewWriter(), 0, std::move(blocks));
      for (const bool bWholeIndices : {false, true}) {
        if (bWholeIndices) tail.UseWholeIndices();
        S_Judged coded = EncodeFew(tail, m_qwRoom, start, m_samples, decoder);
        const bool bFull = m_qwRoom - coded.runs.nBytes <= m_qwRoom / kUnusedOfFew;
        if (best.runs.runs.empty() || coded.qwError < best.qwError) best = std::move(coded);
        if (bFull) break;
      }
    }
    return std::move(best.runs);
  }

  // Codes from section nFirst of this block to the end of the sound.
  bool EncodeRest(std::size_t nBlock, std::size_t nFirst, S_DividedBlock first,
                  C_PartWriter writer) {
    const std::uint64_t qwBegun = writer.Bits();
    const int nOffset = NextOffset(qwBegun);
    std::vector<S_DividedBlock> blocks;
    blocks.push_back(std::move(first));
    for (std::size_t n = nBlock + 1; n < m_nBlocks; ++n) {
      if (!Load(n)) return false;
      blocks.push_back(m_encoder.Divide(m_samples, nOffset));
    }
    const S_Start start{nOffset, m_forecast.BytesPerOctave(nOffset)};
    C_Tail tail(m_encoder, std::move(writer), nFirst, std::move(blocks));
    const S_TailRuns coded = EncodeTail(tail, m_qwRoom, start);
    for (std::size_t n = nBlock; n < m_nBlocks; ++n) {
      if (!Put(n, coded.runs[n - nBlock])) return false;
    }
    return true;
  }

  // Writes a block.
  bool Put(std::size_t nBlock, std::span<const std::uint8_t> run) {
    std::vector<std::uint8_t> bytes;
    if (m_nBlocks == 1) {
      AppendOnlyBlock(bytes, run);
    } else {
      AppendBlock(bytes, nBlock, run);
    }
    if (!m_fnWrite(bytes)) return false;
    const std::size_t nDone = (nBlock + 1) * kBlockSections * m_nLength;
    if (m_fnProgress) m_fnProgress(std::min(nDone, m_nSamples));
    return true;
  }

  std::size_t m_nSamples;
  const S_ReadSamples& m_fnRead;
  std::vector<std::int16_t> m_samples;  // of the present block
  int m_nSampleRate;
  std::size_t m_nLength;  // of a section
  std::size_t m_nSections;
  std::size_t m_nBlocks;
  std::uint64_t m_qwRoom;  // bytes that are left for runs
  C_Forecast m_forecast;   // of what is left
  // Of the present block.
  std::array<C_Forecast::S_Counts, kBlockSections / kPortion> m_portions{};
  C_BlockEncoder m_encoder;
  const S_Write& m_fnWrite;
  const S_Progress& m_fnProgress;
  std::uint64_t m_qwTrust = 0;  // bits of kTrustedSections on average
  // Bits of the portions so far, the last ones above all.
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

bool EncodeWithin(std::size_t nSamples, const S_ReadSamples& fnRead, int nSampleRate, int nBitDepth,
                  const S_Write& fnWrite, const S_Progress& fnProgress) {
  return C_SoundEncoder(nSamples, fnRead, nSampleRate, nBitDepth, fnWrite, fnProgress).Encode();
}

bool EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                  const S_Write& fnWrite, const S_Progress& fnProgress) {
  const auto fnRead = [samples](std::size_t nAt, std::span<std::int16_t> piece) {
    std::ranges::copy(samples.subspan(nAt, piece.size()), piece.begin());
    return true;
  };
  return EncodeWithin(samples.size(), fnRead, nSampleRate, nBitDepth, fnWrite, fnProgress);
}

}  // namespace heron
