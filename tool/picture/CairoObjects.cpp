// SPDX-License-Identifier: Apache-2.0
#include "picture/CairoObjects.h"

#include <fontconfig/fontconfig.h>

#include <new>
#include <stdexcept>

namespace tool {
namespace {

constexpr const char* kFont = "DejaVu Sans";

// The fonts that cairo and its font library remember are given back when the program ends.
// Otherwise checkers take them for lost.
struct S_Remembered {
  ~S_Remembered() {
    cairo_debug_reset_static_data();
    FcFini();
  }
};

cairo_status_t Append(void* pUser, const unsigned char* pBytes, unsigned int dwLength) {
  try {
    static_cast<std::string*>(pUser)->append(reinterpret_cast<const char*>(pBytes), dwLength);
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

void CheckCairo(cairo_status_t eStatus) {
  if (eStatus == CAIRO_STATUS_SUCCESS) return;
  if (eStatus == CAIRO_STATUS_NO_MEMORY) throw std::bad_alloc();
  throw std::runtime_error(std::string("picture: cannot be drawn: ") +
                           cairo_status_to_string(eStatus));
}

C_CairoPtr MakeCairo(cairo_surface_t* pSurface) {
  static const S_Remembered remembered;
  CheckCairo(cairo_surface_status(pSurface));
  C_CairoPtr cairo(cairo_create(pSurface));
  CheckCairo(cairo_status(cairo.get()));
  const std::unique_ptr<cairo_font_options_t, S_CairoFree> options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  cairo_set_font_options(cairo.get(), options.get());
  return cairo;
}

void ChooseFont(cairo_t* pCairo, double dSize, bool bBold) {
  cairo_select_font_face(pCairo, kFont, CAIRO_FONT_SLANT_NORMAL,
                         bBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(pCairo, dSize);
}

std::string PngBytes(cairo_surface_t* pSurface) {
  std::string strBytes;
  CheckCairo(cairo_surface_write_to_png_stream(pSurface, &Append, &strBytes));
  return strBytes;
}

}  // namespace tool
