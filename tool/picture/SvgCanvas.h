// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "picture/Canvas.h"

namespace tool {

// Writes what is drawn as an SVG document. Texts stay texts, so that they can be found and copied;
// images are PNG files inside it. Unlike a canvas of cairo, it numbers nothing, so that a document
// does not depend on what was drawn before it.
class C_SvgCanvas final : public I_Canvas {
 public:
  // The title is for programs that read documents aloud.
  C_SvgCanvas(int nWidth, int nHeight, std::string_view title);

  void Fill(const S_Box& box, const S_Colour& colour) override;
  void Fill(std::span<const S_Point> outline, const S_Colour& colour) override;
  void Line(std::span<const S_Point> points, const S_Colour& colour, double dWidth) override;
  void Dot(S_Point centre, double dRadius, const S_Colour& colour) override;
  void Text(S_Point place, std::string_view text, const S_TextStyle& style) override;
  void Image(S_Point corner, const S_Image& image) override;
  std::string Finish() override;

 private:
  std::string m_strDocument;
};

}  // namespace tool
