// SPDX-License-Identifier: Apache-2.0
#include "batch/FileOutput.h"

#include <algorithm>

namespace tool {

void C_FileOutput::Print(std::string_view text) {
  if (m_pieces.empty() || m_pieces.back().bComplaint) m_pieces.push_back({false, ""});
  m_pieces.back().strText += text;
}

void C_FileOutput::Complain(std::string_view line) {
  m_pieces.push_back({true, std::string(line)});
}

bool C_FileOutput::Prints() const noexcept {
  return std::ranges::any_of(m_pieces, [](const S_Piece& piece) { return !piece.bComplaint; });
}

void C_FileOutput::SendTo(C_Console& console) const {
  for (const S_Piece& piece : m_pieces) {
    if (!piece.bComplaint) {
      console.Print(piece.strText);
      continue;
    }
    // The two streams may be one terminal.
    console.Flush();
    console.Complain(piece.strText);
  }
}

}  // namespace tool
