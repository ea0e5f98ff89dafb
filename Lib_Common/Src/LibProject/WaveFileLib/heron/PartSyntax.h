// SPDX-License-Identifier: Apache-2.0
//
// The sections of a block in the stream. A section is one part of eight units, or it is split into
// two halves, each of which is one part or is split again, down to single units. What begins after
// the last sample of the block is left out. Each part or half begins with its kind:
//
//   near     step index, then the levels of its coefficients from the lowest frequency to the
//            highest, by the near model (Neighbourhood.h)
//   steady   the same, by the steady model
//   silent   nothing; all coefficients are 0
//   split    its two halves; not for a single unit
//   plain    like near, but the coefficients are the samples themselves, up to the last one of the
//            block; only for a single unit. Clicks need few bits this way
//
// The step index is coded as its difference from that of the last part that had one: a difference
// of -15..15 as symbol difference + 15, any other as symbol 31, followed by the index itself as 7
// raw bits. In the first such part of a block, the index is 7 raw bits without a symbol.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Configuration.h"
#include "heron/EntropyCoder.h"
#include "heron/ModelChoice.h"
#include "heron/Neighbourhood.h"
#include "heron/Tables.h"
#include "heron/Trellis.h"

namespace heron {

enum class E_PartKind : std::uint8_t { kNear, kSteady, kSilent, kSplit, kPlain };
static_assert(kPartKinds == 5);

// A part of a block.
struct S_Part {
  std::size_t nUnit;  // the first of its units in the block
  std::size_t nSize;  // it has 2^nSize units
  E_PartKind kind = E_PartKind::kNear;
  int nIndex = 0;  // step index; without a meaning when the part is silent

  [[nodiscard]] std::size_t Units() const noexcept { return std::size_t{1} << nSize; }
  [[nodiscard]] std::size_t End() const noexcept { return nUnit + Units(); }

  friend bool operator==(const S_Part&, const S_Part&) = default;
};

// What writer and reader carry from part to part.
class C_PartState {
 public:
  explicit C_PartState(std::size_t nUnitLength) : m_before(nUnitLength) {}

  // By what the kind of the next part is coded: the context of kKindFrequencies.
  [[nodiscard]] std::size_t KindContext() const noexcept {
    return static_cast<std::size_t>(m_last);
  }
  [[nodiscard]] int StepIndex() const noexcept { return m_nIndex; }
  [[nodiscard]] bool HasStepIndex() const noexcept { return m_nIndex >= 0; }
  [[nodiscard]] const C_PartsBefore& Before() const noexcept { return m_before; }

  // Before a part is quantised or read: its expectations. nLength is its number of coefficients. A
  // plain part says nothing about the spectrum, so neither it nor the part after it sees the one
  // before it.
  void Begin(const S_Part& part, std::size_t nLength) noexcept {
    if (part.kind == E_PartKind::kPlain) m_before.Forget();
    if (part.kind == E_PartKind::kSteady) {
      m_before.BeginSteady(part.nIndex, part.nSize);
    } else {
      m_before.BeginNear(part.nIndex, nLength);
    }
  }
  // The same, with the model that the writer chooses.
  void BeginChosen(C_ModelChoice& choice, S_Part& part,
                   std::span<const std::int32_t> coefficients) noexcept {
    part.kind = choice.Begin(coefficients, part.nIndex, part.nSize, m_before) ? E_PartKind::kSteady
                                                                              : E_PartKind::kNear;
  }
  // After it: its magnitudes in half steps.
  void End(const S_Part& part, std::span<const std::int32_t> magnitudes) noexcept {
    m_nIndex = part.nIndex;
    m_last = part.kind == E_PartKind::kSteady ? E_Last::kSteady : E_Last::kNear;
    if (part.kind != E_PartKind::kPlain) m_before.End(part.nIndex, part.nSize, magnitudes);
  }
  void PassSilence() noexcept {
    m_last = E_Last::kSilent;
    m_before.Forget();
  }

 private:
  int m_nIndex = -1;  // of the last part that had one in this block
  enum class E_Last : std::uint8_t { kNear, kSteady, kSilent };
  E_Last m_last = E_Last::kNear;
  C_PartsBefore m_before;
};

// What coding this difference to the step index before takes, in units of 1/256 bit.
int IndexCost(int nDifference) noexcept;

// What writers work with between two parts; one is enough for any number of writers.
struct S_WriterTools {
  // nLength: coefficients of the longest part.
  explicit S_WriterTools(std::size_t nLength)
      : choice(nLength), trellis(nLength), levels(nLength) {}

  C_ModelChoice choice;
  C_Trellis trellis;
  std::vector<std::int32_t> levels;
};

// Writes the parts of one block. A copy goes on from where the original was.
class C_PartWriter {
 public:
  explicit C_PartWriter(std::size_t nUnitLength) : m_state(nUnitLength) {}

  // A node of the tree that is split.
  void WriteSplit(std::size_t nSize) { WriteKind(nSize, E_PartKind::kSplit); }
  // A part of which nothing is kept.
  void WriteSilence(std::size_t nSize);
  // Quantises the coefficients (Q8) of a part with its step index and writes them. A part that is
  // not plain is written by the model that promises to cost less, and as silence when all of it
  // becomes 0.
  void Write(const S_Part& part, std::span<const std::int32_t> coefficients, S_WriterTools& tools);
  // The index that the next one is coded relative to; -1 before the first.
  [[nodiscard]] int StepIndex() const noexcept { return m_state.StepIndex(); }
  // The bits that were written so far, roughly.
  [[nodiscard]] std::uint64_t Bits() const noexcept { return m_encoder.Bits(); }
  // Ends the block and returns its run.
  std::vector<std::uint8_t> Finish() { return m_encoder.Finish(); }

 private:
  void WriteKind(std::size_t nSize, E_PartKind kind);
  void WriteIndex(int nIndex);
  template <typename T_Below>
  void WriteLevels(std::span<const std::int32_t> coefficients, std::span<std::int32_t> levels);

  C_EntropyEncoder m_encoder;
  C_PartState m_state;
};

// Reads the parts of one block.
class C_PartReader {
 public:
  C_PartReader(C_EntropyDecoder& decoder, std::size_t nUnitLength)
      : m_decoder(decoder), m_state(nUnitLength), m_magnitudes(nUnitLength * kSectionUnits) {}

  // Reads the next section into values, which has the length of a section: coefficients in Q8.
  // The block's sound has nSamples more samples from here on, at least one. Appends its parts to
  // parts; nUnit is the first unit of the section. False for data that no writer writes: a unit
  // that is split, a longer part that is plain, a step index out of range, or a coefficient above
  // kMaxCoefficient.
  bool ReadSection(std::span<std::int32_t> values, std::size_t nSamples, std::size_t nUnit,
                   std::vector<S_Part>& parts);

 private:
  bool ReadNode(const S_Part& node, std::span<std::int32_t> values, std::size_t nSamples,
                std::vector<S_Part>& parts);
  bool ReadCoefficients(S_Part& part, std::span<std::int32_t> coefficients) noexcept;
  bool ReadIndex(int* pIndex) noexcept;
  template <typename T_Below>
  bool ReadLevels(std::span<std::int32_t> coefficients, int nIndex) noexcept;

  C_EntropyDecoder& m_decoder;
  C_PartState m_state;
  std::vector<std::int32_t> m_magnitudes;
};

}  // namespace heron
