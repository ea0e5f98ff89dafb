// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cairo.h>

#include <memory>
#include <string>

namespace tool {

struct S_CairoFree {
  void operator()(cairo_t* pObject) const noexcept { cairo_destroy(pObject); }
  void operator()(cairo_surface_t* pObject) const noexcept { cairo_surface_destroy(pObject); }
  void operator()(cairo_font_options_t* pObject) const noexcept {
    cairo_font_options_destroy(pObject);
  }
};
using C_CairoPtr = std::unique_ptr<cairo_t, S_CairoFree>;
using C_SurfacePtr = std::unique_ptr<cairo_surface_t, S_CairoFree>;

// Throws std::bad_alloc, or std::runtime_error with what cairo says.
void CheckCairo(cairo_status_t eStatus);

// Something to draw on a surface with. Its letters do not depend on the settings of a desktop.
C_CairoPtr MakeCairo(cairo_surface_t* pSurface);
void ChooseFont(cairo_t* pCairo, double dSize, bool bBold);

// The file of a surface.
std::string PngBytes(cairo_surface_t* pSurface);

}  // namespace tool
