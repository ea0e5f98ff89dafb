// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pango/pangocairo.h>

#include <memory>
#include <string>

namespace tool {

struct S_CairoFree {
  void operator()(cairo_t* pObject) const noexcept { cairo_destroy(pObject); }
  void operator()(cairo_surface_t* pObject) const noexcept { cairo_surface_destroy(pObject); }
  void operator()(cairo_font_options_t* pObject) const noexcept {
    cairo_font_options_destroy(pObject);
  }
  void operator()(PangoContext* pObject) const noexcept { g_object_unref(pObject); }
  void operator()(PangoLayout* pObject) const noexcept { g_object_unref(pObject); }
  void operator()(PangoFontDescription* pObject) const noexcept {
    pango_font_description_free(pObject);
  }
};
template <typename Object>
using C_DrawingPtr = std::unique_ptr<Object, S_CairoFree>;
using C_CairoPtr = C_DrawingPtr<cairo_t>;
using C_SurfacePtr = C_DrawingPtr<cairo_surface_t>;

// Throws std::bad_alloc, or std::runtime_error with what cairo says.
void CheckCairo(cairo_status_t eStatus);

// Something to draw on a surface with.
C_CairoPtr MakeCairo(cairo_surface_t* pSurface);

// The file of a surface.
std::string PngBytes(cairo_surface_t* pSurface);

}  // namespace tool
