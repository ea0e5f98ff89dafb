// SPDX-License-Identifier: Apache-2.0
//
// What pictures are drawn on. Places are in pixels, from the top left.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct S_Colour {
  std::uint8_t byRed = 0;
  std::uint8_t byGreen = 0;
  std::uint8_t byBlue = 0;
  double dCover = 1.0;  // 0 for glass
};

struct S_Point {
  double dX = 0.0;
  double dY = 0.0;
};

struct S_Box {
  double dX = 0.0;
  double dY = 0.0;
  double dWidth = 0.0;
  double dHeight = 0.0;

  [[nodiscard]] double Right() const noexcept { return dX + dWidth; }
  [[nodiscard]] double Bottom() const noexcept { return dY + dHeight; }
};

enum tagTextPlace { TEXT_BEGINS, TEXT_CENTRED, TEXT_ENDS };

struct S_TextStyle {
  double dSize = 11.0;
  S_Colour colour;
  tagTextPlace ePlace = TEXT_BEGINS;  // what its place is of the text
  bool bBold = false;
  bool bUpwards = false;
};

// Rows from the top, each pixel 0xRRGGBB.
struct S_Image {
  int nWidth = 0;
  int nHeight = 0;
  std::vector<std::uint32_t> pixels;
};

class I_Canvas {
 public:
  virtual ~I_Canvas() = default;

  virtual void Fill(const S_Box& box, const S_Colour& colour) = 0;
  virtual void Fill(std::span<const S_Point> outline, const S_Colour& colour) = 0;
  virtual void Line(std::span<const S_Point> points, const S_Colour& colour, double dWidth) = 0;
  virtual void Dot(S_Point centre, double dRadius, const S_Colour& colour) = 0;
  // The place is on the line that the letters stand on. The text is one that CleanText has given.
  virtual void Text(S_Point place, std::string_view text, const S_TextStyle& style) = 0;
  virtual void Image(S_Point corner, const S_Image& image) = 0;

  // The file. Nothing can be drawn after that.
  virtual std::string Finish() = 0;
};

}  // namespace tool
