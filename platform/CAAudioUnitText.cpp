// SPDX-License-Identifier: Apache-2.0
//
// Apart from the class, so that a program which prints no unit does not carry its texts.
#include "CAAudioUnit.h"

void CAAudioUnit::Print(std::FILE* pStream) const {
  std::fprintf(pStream, "AudioUnit:%p\n", static_cast<const void*>(m_unit));
  if (!IsValid()) return;
  std::fprintf(pStream, "\tnode=%ld\t", static_cast<long>(m_node));
  Comp().Print(pStream);
}
