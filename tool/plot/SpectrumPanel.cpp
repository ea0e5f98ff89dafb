// SPDX-License-Identifier: Apache-2.0
#include "plot/SpectrumPanel.h"

namespace tool {

void DrawSpectrum(I_Canvas& canvas, const S_Box& panel, const C_SpectrumMeter* pSpectrum,
                  const S_LevelColours& colours) {
  S_Image image{static_cast<int>(panel.dWidth), static_cast<int>(panel.dHeight), {}};
  const std::size_t nPixels =
      static_cast<std::size_t>(image.nWidth) * static_cast<std::size_t>(image.nHeight);
  image.pixels.assign(nPixels, colours.front());
  if (pSpectrum != nullptr) {
    for (std::size_t n = 0; n < nPixels; ++n) image.pixels[n] = colours[pSpectrum->Levels()[n]];
  }
  canvas.Image({panel.dX, panel.dY}, image);
}

}  // namespace tool
