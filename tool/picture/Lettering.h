// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "picture/CairoObjects.h"

namespace tool {

// How wide texts are in a picture.
class C_Lettering {
 public:
  C_Lettering();

  [[nodiscard]] double Width(std::string_view text, double dSize, bool bBold = false) const;
  // The text, or as much of its beginning as fits with an ellipsis; "" when nothing fits.
  [[nodiscard]] std::string Cut(std::string_view text, double dWidth, double dSize,
                                bool bBold = false) const;

 private:
  C_SurfacePtr m_surface;
  C_CairoPtr m_cairo;
};

// A text of any bytes as one line of UTF-8 that every picture can hold. Bytes that are no UTF-8 are
// taken for Windows-1252; control characters become spaces. Of a very long text only the beginning
// is kept.
std::string CleanText(std::string_view text);

}  // namespace tool
