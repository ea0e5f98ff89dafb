// SPDX-License-Identifier: Apache-2.0
//
// The blocks of a Heron stream in a source. Opening reads only their heads when these stand in
// order up to the end of the sound. The checks of the blocks are then looked at one after another,
// before a block is decoded. At the first one that is wrong, the blocks from there on are searched
// for, by the rules of the class library (heron/BlockIndex.h), and the sound may become shorter.
// When the heads do not stand in order, the checks are looked at and the blocks searched for at
// once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "heron/BlockDecoder.h"
#include "heron/BlockIndex.h"
#include "stream/HeronCoded.h"

namespace api {

class C_HeronBlocks {
 public:
  // coded is what comes after the count of samples, nSamples, which is at least 1. The rate must be
  // supported. The source must outlive the object. Throws C_Failure when too much is missing.
  C_HeronBlocks(I_ByteSource& source, S_ByteRange coded, std::size_t nSamples, int nSampleRate);

  // Of the sound, as far as it is known to be there.
  [[nodiscard]] std::uint64_t SampleCount() const noexcept { return m_index.SampleCount(); }
  [[nodiscard]] std::size_t Count() const noexcept { return m_index.Count(); }
  // Samples of each block; the last one has the rest.
  [[nodiscard]] std::size_t Length() const noexcept { return m_nLength; }
  [[nodiscard]] std::size_t SamplesOf(std::size_t nBlock) const noexcept {
    return m_index.SamplesOf(nBlock);
  }

  // Looks at the checks of all blocks up to nBlock, which may not exist afterwards. Throws
  // C_Failure when they cannot be read, and when too much is missing.
  void CheckUpTo(std::size_t nBlock);
  // Decodes a block that has been checked. False when it is missing or damaged; the samples are 0
  // then. samples holds SamplesOf(nBlock) values. Throws C_Failure.
  bool Decode(std::size_t nBlock, std::span<std::int16_t> samples);

 private:
  bool IsRight(std::size_t nBlock);
  void SearchFrom(std::size_t nBlock);
  [[nodiscard]] bool IsTooLong(const heron::S_Run& run) const noexcept;

  C_HeronCoded m_coded;
  std::size_t m_nLength;
  heron::C_BlockIndex m_index;
  heron::C_BlockDecoder m_decoder;
  std::size_t m_nChecked = 0;  // blocks before this one are where a search finds them
  bool m_bSearched = false;    // all of them are
  bool m_bMostlyMissing = false;
};

}  // namespace api
