// SPDX-License-Identifier: Apache-2.0
#include "plot/Picture.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <memory>
#include <numeric>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "picture/PngCanvas.h"
#include "picture/SvgCanvas.h"
#include "plot/Axes.h"
#include "plot/MarkLines.h"
#include "plot/Scene.h"
#include "plot/SpectrumPanel.h"
#include "plot/WavePanel.h"
#include "sound/SoundFaults.h"

namespace tool {
namespace {

constexpr int kHeightPerChannel = 300;
// How often the length of a sound may turn out to be smaller than it said.
constexpr int kAttempts = 2;
constexpr double kTitleSize = 1.2;  // in letters' heights
constexpr std::uint32_t kAssumedRate = 16000;
constexpr std::uint64_t kFewSamples = 1000;
constexpr const char* kBetween = " \u00B7 ";

int HeightOf(const S_PlotOptions& options, std::size_t nChannels) {
  if (options.nHeight > 0) return options.nHeight;
  const auto nWanted = kHeightPerChannel * static_cast<int>(std::min<std::size_t>(nChannels, 100));
  return std::clamp(nWanted, kUsualHeight, kGreatestSize);
}

std::vector<std::uint32_t> ChannelsOf(const S_SoundInfo& info, const std::string& strName,
                                      std::uint32_t dwChannel) {
  if (dwChannel > info.dwChannels) {
    throw C_Failure(strName, "channel " + std::to_string(dwChannel) + " is not drawn",
                    "the sound has " + std::to_string(info.dwChannels));
  }
  if (dwChannel > 0) return {dwChannel - 1};
  std::vector<std::uint32_t> all(info.dwChannels);
  std::iota(all.begin(), all.end(), 0U);
  return all;
}

std::string ChannelName(std::uint32_t dwChannel, std::uint32_t dwChannels) {
  if (dwChannels == 2) return dwChannel == 0 ? "left" : "right";
  return "channel " + std::to_string(dwChannel + 1);
}

std::string ChannelsText(std::uint32_t dwChannels) {
  if (dwChannels <= 2) return dwChannels == 1 ? "mono" : "stereo";
  return std::to_string(dwChannels) + " channels";
}

// A header may hold 0, which no axis can be drawn for.
std::uint32_t RateOf(const S_SoundInfo& info) {
  return info.dwRate == 0 ? kAssumedRate : info.dwRate;
}

std::string RateText(std::uint32_t dwRate) {
  if (dwRate == 0) return "no rate, drawn as 16 kHz";
  char szText[32];
  const auto end = std::to_chars(szText, szText + sizeof szText, dwRate / 1000.0).ptr;
  return std::string(szText, end) + " kHz";
}

S_Part PartOf(const S_PlotOptions& options, std::uint32_t dwRate, const std::string& strName,
              std::uint64_t qwFrames) {
  const std::uint64_t qwFrom = options.from ? options.from->FrameAt(dwRate) : 0;
  const std::uint64_t qwTo = options.to ? options.to->FrameAt(dwRate) : qwFrames;
  if (options.to && qwTo <= qwFrom) {
    throw C_Failure(strName, "nothing is drawn", "--to is not after --from");
  }
  if (options.from && qwFrom >= qwFrames) {
    throw C_Failure(strName, "nothing is drawn from " + ClockText(qwFrom, dwRate) + " on",
                    "the sound ends at " + ClockText(qwFrames, dwRate));
  }
  return {qwFrom, std::min(qwTo, qwFrames) - qwFrom};
}

// Of a very short sound, thousandths of a second say little.
std::string LengthText(std::uint64_t qwFrames, std::uint32_t dwRate) {
  if (qwFrames == 1) return "1 sample";
  if (qwFrames < kFewSamples) return std::to_string(qwFrames) + " samples";
  return ClockText(qwFrames, dwRate);
}

std::string SubtitleOf(const S_SoundInfo& info, std::uint64_t qwFrames) {
  return info.strFormat + kBetween + RateText(info.dwRate) + kBetween +
         ChannelsText(info.dwChannels) + kBetween + LengthText(qwFrames, RateOf(info));
}

void DrawHeading(I_Canvas& canvas, const S_Scene& scene) {
  const double dLetters = scene.layout.Letters();
  const double dLeft = dLetters;
  const double dWidth = scene.options.nWidth - 2 * dLetters;
  const double dTitle = kTitleSize * dLetters;
  const S_TextStyle title = {.dSize = dTitle, .colour = scene.theme.ink, .bBold = true};
  const S_TextStyle subtitle = {.dSize = dLetters, .colour = scene.theme.faint};
  canvas.Text({dLeft, 1.8 * dLetters}, scene.lettering.Cut(scene.strTitle, dWidth, dTitle, true),
              title);
  canvas.Text({dLeft, 3.3 * dLetters}, scene.lettering.Cut(scene.strSubtitle, dWidth, dLetters),
              subtitle);
}

void DrawChannelName(I_Canvas& canvas, const S_Scene& scene, const S_Box& panel,
                     const std::string& strText) {
  const double dLetters = scene.layout.Letters();
  S_Colour under = scene.theme.paper;
  under.dCover = 0.8;
  const double dWidth = scene.lettering.Width(strText, dLetters);
  canvas.Fill(S_Box{panel.dX + 4, panel.dY + 4, dWidth + 8, 1.4 * dLetters}, under);
  canvas.Text({panel.dX + 8, panel.dY + 4 + 1.05 * dLetters}, strText,
              {.dSize = dLetters, .colour = scene.theme.ink});
}

void DrawPanels(I_Canvas& canvas, const S_Scene& scene, const S_LevelColours& colours) {
  const auto& waves = scene.layout.Waves();
  const auto& spectra = scene.layout.Spectra();
  const auto& channels = scene.overview.channels;
  for (std::size_t n = 0; n < waves.size(); ++n) {
    DrawWave(canvas, scene, waves[n], channels.empty() ? nullptr : &*channels[n].wave);
  }
  for (std::size_t n = 0; n < spectra.size(); ++n) {
    DrawSpectrum(canvas, spectra[n], channels.empty() ? nullptr : &*channels[n].spectrum, colours);
  }
}

bool HasClipping(const S_Scene& scene) {
  return std::any_of(
      scene.overview.channels.begin(), scene.overview.channels.end(),
      [](const auto& channel) { return channel.wave && channel.wave->Clippings() > 0; });
}

// What explains the panels.
void DrawAround(I_Canvas& canvas, const S_Scene& scene, const S_LevelColours& colours) {
  DrawHeading(canvas, scene);
  scene.legend.Draw(canvas, scene.layout.Letters(), scene.layout.LegendTop(), HasClipping(scene));
  for (const S_Box& panel : scene.layout.Waves()) DrawLevelAxis(canvas, scene, panel);
  for (const S_Box& panel : scene.layout.Spectra()) DrawFrequencyAxis(canvas, scene, panel);
  if (scene.layout.HasScale()) DrawColourScale(canvas, scene, colours);
  DrawTimeAxis(canvas, scene);
  for (const auto* pPanels : {&scene.layout.Waves(), &scene.layout.Spectra()}) {
    for (std::size_t n = 0; n < std::min(pPanels->size(), scene.channelNames.size()); ++n) {
      DrawChannelName(canvas, scene, (*pPanels)[n], scene.channelNames[n]);
    }
  }
  if (scene.part.qwCount > 0) return;
  const S_Box& panel = scene.layout.Spectra().empty() ? scene.layout.Waves().front()
                                                      : scene.layout.Spectra().front();
  canvas.Text({panel.dX + panel.dWidth / 2, panel.dY + panel.dHeight * 0.4}, "no samples",
              {.dSize = scene.layout.Letters(), .colour = scene.theme.ink, .ePlace = TEXT_CENTRED});
}

std::string Draw(const S_Scene& scene, int nHeight) {
  const int nWidth = scene.options.nWidth;
  std::unique_ptr<I_Canvas> canvas;
  if (scene.options.bSvg) {
    canvas = std::make_unique<C_SvgCanvas>(nWidth, nHeight, scene.strTitle);
  } else {
    canvas = std::make_unique<C_PngCanvas>(nWidth, nHeight, scene.lettering);
  }
  const S_LevelColours colours = LevelColours(scene.options.bDark);
  canvas->Fill(S_Box{0, 0, static_cast<double>(nWidth), static_cast<double>(nHeight)},
               scene.theme.paper);
  DrawPanels(*canvas, scene, colours);
  DrawMarks(*canvas, scene);
  if (scene.options.bAxes) DrawAround(*canvas, scene, colours);
  return canvas->Finish();
}

class C_PictureMaker {
 public:
  C_PictureMaker(I_SoundInput& input, const std::string& strName, const S_PlotOptions& options)
      : m_input(input),
        m_strName(strName),
        m_options(options),
        m_channels(ChannelsOf(input.Info(), strName, options.dwChannel)),
        m_nHeight(HeightOf(options, m_channels.size())) {}

  S_Picture Make(const PFN_FramesDone& fnDone) {
    std::uint64_t qwFrames = FramesOf(m_input);
    for (int i = 1;; ++i) {
      S_Scene scene = SceneOf(qwFrames);
      scene.overview = Measure(m_input, MeasuredOf(scene), fnDone);
      if (i == kAttempts || scene.overview.qwFrames == scene.part.qwCount) {
        S_Picture picture;
        picture.qwFrames = FramesThere(scene, qwFrames);
        picture.bCut = IsCutAfter(m_input, picture.qwFrames);
        AddFaults(scene, picture.bCut);
        picture.strFile = Draw(scene, m_nHeight);
        return picture;
      }
      qwFrames = scene.part.qwFirst + scene.overview.qwFrames;
    }
  }

 private:
  [[nodiscard]] S_Scene SceneOf(std::uint64_t qwFrames) const {
    const S_SoundInfo& info = m_input.Info();
    const S_Theme& theme = m_options.bDark ? DarkTheme() : LightTheme();
    C_Layout layout(m_options, m_nHeight);
    C_Legend legend(theme, layout.Letters());
    S_Scene scene{m_options,
                  theme,
                  m_lettering,
                  CleanText(std::filesystem::path(m_strName).filename().string()),
                  CleanText(SubtitleOf(info, qwFrames)),
                  RateOf(info),
                  {},
                  PartOf(m_options, RateOf(info), m_strName, qwFrames),
                  layout,
                  {},
                  {},
                  legend,
                  {}};
    for (const std::uint32_t dwChannel : m_channels) {
      if (info.dwChannels == 1) break;
      scene.channelNames.push_back(ChannelName(dwChannel, info.dwChannels));
    }
    AddMarks(scene);
    Arrange(scene);
    return scene;
  }

  void AddMarks(S_Scene& scene) const {
    const C_Columns columns(scene.part.qwCount, std::max(scene.layout.Columns(), 1));
    scene.marks =
        MarksOf(m_input.Notes(), m_input.Info().dwNotesContainer, scene.part.qwFirst, columns);
    if (!m_options.bAxes) return;
    scene.names = PlaceNames(scene.marks, m_lettering, columns.Count(), scene.layout.Letters(),
                             scene.layout.MostNameRows());
    scene.legend.AddMarks(scene.marks, scene.names);
    if (!m_options.bWaveform || scene.part.qwCount == 0) return;
    // Fewer samples are drawn one by one.
    const bool bColumns = scene.part.qwCount > static_cast<std::uint64_t>(columns.Count());
    if (bColumns) scene.legend.AddWaves();
    scene.legend.AddClipping();
  }

  void Arrange(S_Scene& scene) const {
    const double dRoom = m_options.nWidth - 2 * scene.layout.Letters();
    S_Heading heading;
    heading.nLegendRows = scene.legend.Arrange(m_lettering, dRoom);
    heading.nNameRows = scene.names.nRows;
    heading.bTicks = scene.marks.AreCrowded(scene.layout.Columns());
    heading.nBars =
        static_cast<int>(std::count_if(scene.marks.ranges.begin(), scene.marks.ranges.end(),
                                       [](const auto& runs) { return !runs.empty(); }));
    if (scene.layout.Arrange(heading, m_channels.size())) return;
    throw C_Failure(m_strName,
                    "is not drawn with " + std::to_string(m_options.nWidth) + "x" +
                        std::to_string(m_nHeight) + " pixels",
                    "it needs more of them; --no-axes, --waveform and --channel need fewer");
  }

  [[nodiscard]] S_Measured MeasuredOf(const S_Scene& scene) const {
    const auto& spectra = scene.layout.Spectra();
    const double dRows = spectra.empty() ? 0.0 : spectra.front().dHeight;
    return {scene.part, m_channels, scene.layout.Columns(), m_options.bWaveform,
            static_cast<int>(dRows)};
  }

  // Of the whole sound. When it was not read to its end, nobody knows better than the file.
  static std::uint64_t FramesThere(const S_Scene& scene, std::uint64_t qwFrames) {
    const bool bToEnd = scene.part.qwFirst + scene.part.qwCount == qwFrames;
    return bToEnd ? scene.part.qwFirst + scene.overview.qwFrames : qwFrames;
  }
  void AddFaults(S_Scene& scene, bool bCut) const {
    const std::uint64_t qwDamaged = m_input.DamagedFrames();
    if (bCut) scene.strSubtitle += std::string(kBetween) + "cut";
    if (qwDamaged != 0) scene.strSubtitle += kBetween + CountedText(qwDamaged, "damaged frame");
  }

  I_SoundInput& m_input;
  const std::string& m_strName;
  const S_PlotOptions& m_options;
  C_Lettering m_lettering;
  std::vector<std::uint32_t> m_channels;
  int m_nHeight;
};

}  // namespace

S_Picture PictureOf(I_SoundInput& input, const std::string& strName, const S_PlotOptions& options,
                    const PFN_FramesDone& fnDone) {
  return C_PictureMaker(input, strName, options).Make(fnDone);
}

}  // namespace tool
