// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "picture/CairoObjects.h"

namespace tool {

// The letters of a picture. They come from one font, and those that it lacks, such as those of
// China, from others of the machine. They do not depend on the settings of a desktop. An object
// stays in its thread.
class C_Lettering {
 public:
  C_Lettering();

  // A text as one line that can be drawn.
  [[nodiscard]] C_DrawingPtr<PangoLayout> Line(std::string_view text, double dSize,
                                               bool bBold = false) const;
  // How wide it is.
  [[nodiscard]] double Width(std::string_view text, double dSize, bool bBold = false) const;
  // The text, or as much of its beginning as fits with an ellipsis; "" when nothing fits.
  [[nodiscard]] std::string Cut(std::string_view text, double dWidth, double dSize,
                                bool bBold = false) const;

 private:
  C_DrawingPtr<PangoContext> m_context;
};

double WidthOf(PangoLayout* pLine);

// A text of any bytes as one line of UTF-8 that every picture can hold. Bytes that are no UTF-8 are
// taken for Windows-1252; control characters become spaces. Of a very long text only the beginning
// is kept.
std::string CleanText(std::string_view text);

}  // namespace tool
