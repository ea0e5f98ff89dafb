// SPDX-License-Identifier: Apache-2.0
//
// A stretch of samples that is to be stored without compression. Both ends are inclusive and in
// samples; nothing checks their order.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "annotation/RangeChanges.h"
#include "interface/I_SampleRange.h"

// Kept: there is no virtual destructor, because callers are built against a virtual table with five
// entries. Lists delete items through this type. Pinned by Range_HasNoVirtualDestructor.
class C_UncompressRegion final : public I_UncompressRegion {
 public:
  C_UncompressRegion(unsigned int dwStart, unsigned int dwEnd)
      : m_dwStart(dwStart), m_dwEnd(dwEnd) {}

  ~C_UncompressRegion() {
    if (m_changes) m_changes->NoteAny();
  }
  C_UncompressRegion(const C_UncompressRegion&) = delete;
  C_UncompressRegion& operator=(const C_UncompressRegion&) = delete;

  unsigned int GetStartSamplePos() override { return m_dwStart; }
  unsigned int GetEndSamplePos() override { return m_dwEnd; }
  // Wraps when the end is before the start.
  unsigned int GetSampleSize() override { return m_dwEnd - m_dwStart + 1; }
  void SetStartSamplePos(unsigned int dwPos) override { SetUncompressRange(dwPos, m_dwEnd); }
  void SetEndSamplePos(unsigned int dwPos) override { SetUncompressRange(m_dwStart, dwPos); }

  void SetUncompressRange(unsigned int dwStart, unsigned int dwEnd) {
    m_dwStart = dwStart;
    m_dwEnd = dwEnd;
    if (m_changes) m_changes->Note(m_nNumber);
  }
  // Notes this number whenever the region changes, and that something has changed when it is
  // deleted. The list of the region asks for it.
  void ReportChangesTo(std::shared_ptr<vcm::C_RangeChanges> changes, std::size_t nNumber) {
    m_changes = std::move(changes);
    m_nNumber = nNumber;
  }

 private:
  unsigned int m_dwStart;
  unsigned int m_dwEnd;
  std::shared_ptr<vcm::C_RangeChanges> m_changes;
  std::size_t m_nNumber = 0;
};
