// SPDX-License-Identifier: Apache-2.0
//
// Separate from the class, so that a program that prints no units does not carry these strings.
#include "CAAudioUnit.h"

void CAAudioUnit::Print(std::FILE* pStream) const {
  std::fprintf(pStream, "AudioUnit:%p\n", static_cast<const void*>(m_unit));
  if (!IsValid()) return;
  std::fprintf(pStream, "\tnode=%ld\t", static_cast<long>(m_node));
  Comp().Print(pStream);
}
