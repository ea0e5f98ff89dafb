// SPDX-License-Identifier: Apache-2.0
#include "picture/CairoObjects.h"

#include <new>
#include <stdexcept>

namespace tool {
namespace {

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
  CheckCairo(cairo_surface_status(pSurface));
  C_CairoPtr cairo(cairo_create(pSurface));
  CheckCairo(cairo_status(cairo.get()));
  return cairo;
}

std::string PngBytes(cairo_surface_t* pSurface) {
  std::string strBytes;
  CheckCairo(cairo_surface_write_to_png_stream(pSurface, &Append, &strBytes));
  return strBytes;
}

}  // namespace tool
