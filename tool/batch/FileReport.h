// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "base/Console.h"

namespace tool {

// How much a command says beside its errors.
enum class tagTalk {
  TALK_ERRORS,   // -qq: nothing else
  TALK_RESULTS,  // -q: no progress
  TALK_USUAL,
  TALK_ALL,  // -v
};

// What is said about a file while it is worked on. Any thread may call any operation.
class C_FileReport {
 public:
  C_FileReport(C_Console& console, tagTalk eTalk) : m_console(console), m_eTalk(eTalk) {}

  // What the user wants to know, though nothing has failed.
  void Remark(std::string_view line) const {
    if (m_eTalk >= tagTalk::TALK_RESULTS) m_console.Complain(line);
  }
  // What only the curious want to know.
  void Detail(std::string_view line) const {
    if (TellsAll()) m_console.Complain(line);
  }
  [[nodiscard]] bool TellsAll() const noexcept { return m_eTalk == tagTalk::TALK_ALL; }

 private:
  C_Console& m_console;
  tagTalk m_eTalk;
};

}  // namespace tool
