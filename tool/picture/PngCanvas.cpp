// SPDX-License-Identifier: Apache-2.0
#include "picture/PngCanvas.h"

#include <cstring>
#include <numbers>

namespace tool {
namespace {

constexpr double kMostShade = 255.0;

C_SurfacePtr MakeSurface(int nWidth, int nHeight) {
  C_SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, nWidth, nHeight));
  CheckCairo(cairo_surface_status(surface.get()));
  return surface;
}

C_SurfacePtr SurfaceOf(const S_Image& image) {
  C_SurfacePtr surface = MakeSurface(image.nWidth, image.nHeight);
  cairo_surface_flush(surface.get());
  const auto nWidth = static_cast<std::size_t>(image.nWidth);
  unsigned char* pRow = cairo_image_surface_get_data(surface.get());
  for (std::size_t nRow = 0; nRow < static_cast<std::size_t>(image.nHeight); ++nRow) {
    std::memcpy(pRow, &image.pixels[nRow * nWidth], nWidth * sizeof(std::uint32_t));
    pRow += cairo_image_surface_get_stride(surface.get());
  }
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

// How far to the left of its place a text begins.
double Before(double dWidth, tagTextPlace ePlace) {
  if (ePlace == TEXT_BEGINS) return 0.0;
  return ePlace == TEXT_ENDS ? dWidth : dWidth / 2;
}

}  // namespace

C_PngCanvas::C_PngCanvas(int nWidth, int nHeight, const C_Lettering& lettering)
    : m_lettering(lettering),
      m_surface(MakeSurface(nWidth, nHeight)),
      m_cairo(MakeCairo(m_surface.get())) {
  cairo_set_line_join(m_cairo.get(), CAIRO_LINE_JOIN_ROUND);
}

void C_PngCanvas::Fill(const S_Box& box, const S_Colour& colour) {
  Choose(colour);
  cairo_rectangle(m_cairo.get(), box.dX, box.dY, box.dWidth, box.dHeight);
  cairo_fill(m_cairo.get());
}

void C_PngCanvas::Fill(std::span<const S_Point> outline, const S_Colour& colour) {
  Choose(colour);
  Follow(outline);
  cairo_close_path(m_cairo.get());
  cairo_fill(m_cairo.get());
}

void C_PngCanvas::Line(std::span<const S_Point> points, const S_Colour& colour, double dWidth) {
  Choose(colour);
  Follow(points);
  cairo_set_line_width(m_cairo.get(), dWidth);
  cairo_stroke(m_cairo.get());
}

void C_PngCanvas::Dot(S_Point centre, double dRadius, const S_Colour& colour) {
  Choose(colour);
  cairo_new_path(m_cairo.get());
  cairo_arc(m_cairo.get(), centre.dX, centre.dY, dRadius, 0.0, 2 * std::numbers::pi);
  cairo_fill(m_cairo.get());
}

void C_PngCanvas::Text(S_Point place, std::string_view text, const S_TextStyle& style) {
  cairo_t* const pCairo = m_cairo.get();
  const auto line = m_lettering.Line(text, style.dSize, style.bBold);
  Choose(style.colour);
  cairo_save(pCairo);
  cairo_translate(pCairo, place.dX, place.dY);
  if (style.bUpwards) cairo_rotate(pCairo, -std::numbers::pi / 2);
  cairo_move_to(pCairo, -Before(WidthOf(line.get()), style.ePlace), 0.0);
  pango_cairo_show_layout_line(pCairo, pango_layout_get_line_readonly(line.get(), 0));
  cairo_restore(pCairo);
}

void C_PngCanvas::Image(S_Point corner, const S_Image& image) {
  const C_SurfacePtr surface = SurfaceOf(image);
  cairo_set_source_surface(m_cairo.get(), surface.get(), corner.dX, corner.dY);
  cairo_paint(m_cairo.get());
}

std::string C_PngCanvas::Finish() {
  CheckCairo(cairo_status(m_cairo.get()));
  return PngBytes(m_surface.get());
}

void C_PngCanvas::Choose(const S_Colour& colour) {
  cairo_set_source_rgba(m_cairo.get(), colour.byRed / kMostShade, colour.byGreen / kMostShade,
                        colour.byBlue / kMostShade, colour.dCover);
}

void C_PngCanvas::Follow(std::span<const S_Point> points) {
  cairo_new_path(m_cairo.get());
  for (const S_Point& point : points) cairo_line_to(m_cairo.get(), point.dX, point.dY);
}

std::string PngOf(const S_Image& image) { return PngBytes(SurfaceOf(image).get()); }

}  // namespace tool
