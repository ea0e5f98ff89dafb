// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "picture/CairoObjects.h"
#include "picture/Canvas.h"
#include "picture/Lettering.h"

namespace tool {

// Draws into pixels. The same drawing gives the same bytes.
class C_PngCanvas final : public I_Canvas {
 public:
  // The lettering outlives the canvas.
  C_PngCanvas(int nWidth, int nHeight, const C_Lettering& lettering);

  void Fill(const S_Box& box, const S_Colour& colour) override;
  void Fill(std::span<const S_Point> outline, const S_Colour& colour) override;
  void Line(std::span<const S_Point> points, const S_Colour& colour, double dWidth) override;
  void Dot(S_Point centre, double dRadius, const S_Colour& colour) override;
  void Text(S_Point place, std::string_view text, const S_TextStyle& style) override;
  void Image(S_Point corner, const S_Image& image) override;
  std::string Finish() override;

 private:
  void Choose(const S_Colour& colour);
  void Follow(std::span<const S_Point> points);

  const C_Lettering& m_lettering;
  C_SurfacePtr m_surface;
  C_CairoPtr m_cairo;
};

// An image as a file of its own.
std::string PngOf(const S_Image& image);

}  // namespace tool
