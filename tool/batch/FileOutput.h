// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/Console.h"

namespace tool {

// What a command says of one file. It is kept until it is the file's turn.
class C_FileOutput {
 public:
  // As those of C_Console.
  void Print(std::string_view text);
  void Complain(std::string_view line);

  [[nodiscard]] bool Prints() const noexcept;
  void SendTo(C_Console& console) const;

 private:
  struct S_Piece {
    bool bComplaint;
    std::string strText;
  };
  std::vector<S_Piece> m_pieces;
};

}  // namespace tool
