// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "picture/Lettering.h"
#include "picture/PngCanvas.h"
#include "picture/SvgCanvas.h"
#include "picture/Theme.h"
#include "picture/Ticks.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using tool::CleanText;

std::vector<std::string> Texts(const std::vector<tool::S_Tick>& ticks) {
  std::vector<std::string> texts;
  for (const tool::S_Tick& tick : ticks) texts.push_back(tick.strText);
  return texts;
}

TEST(CleanText, Utf8_StaysAsItIs) {
  EXPECT_EQ(CleanText("Gr\u00fc\u00dfe \u4f60 \U0001F600"), "Gr\u00fc\u00dfe \u4f60 \U0001F600");
}

TEST(CleanText, OtherBytes_AreWindows1252) {
  EXPECT_EQ(CleanText("Gr\xfc\xdf"
                      "e \x80"),
            "Gr\u00fc\u00dfe \u20ac");
  EXPECT_EQ(CleanText("\x81"), " ");
}

TEST(CleanText, ControlCharacters_AreSpaces) {
  EXPECT_EQ(CleanText("a\tb\nc\x01"), "a b c ");
  EXPECT_EQ(CleanText("\u0085x"), " x");
}

TEST(CleanText, WhatNoXmlHolds_IsReplaced) { EXPECT_EQ(CleanText("\uffff"), "\ufffd"); }

TEST(CleanText, SurrogatesAndLongForms_AreNoUtf8) {
  EXPECT_EQ(CleanText("\xed\xa0\x80"), "\u00ed\u00a0\u20ac");
  EXPECT_EQ(CleanText("\xc0\xaf"), "\u00c0\u00af");
  EXPECT_EQ(CleanText("\xe0\x80\xaf"), "\u00e0\u20ac\u00af");
  EXPECT_EQ(CleanText("a\xe2\x82"), "a\u00e2\u201a");
}

TEST(CleanText, MegabyteOfText_IsCut) {
  EXPECT_EQ(CleanText(std::string(1'000'000, 'x')), std::string(256, 'x'));
}

TEST(Lettering, TextThatIsTooWide_EndsWithAnEllipsis) {
  const tool::C_Lettering lettering;
  const double dWhole = lettering.Width("a long name", 12.0);
  EXPECT_GT(dWhole, 50.0);
  EXPECT_LT(dWhole, 90.0);
  EXPECT_EQ(lettering.Cut("a long name", dWhole, 12.0), "a long name");
  EXPECT_EQ(lettering.Cut("a long name", dWhole * 0.7, 12.0), "a long\u2026");
  EXPECT_EQ(lettering.Cut("a long name", 2.0, 12.0), "");
}

TEST(Lettering, BoldText_IsWider) {
  const tool::C_Lettering lettering;
  EXPECT_GT(lettering.Width("speech", 12.0, true), lettering.Width("speech", 12.0));
}

TEST(Lettering, LettersThatTheFontLacks_ComeFromOthers) {
  const tool::C_Lettering lettering;
  // Chinese, Hebrew, Greek and Russian. What no font has is drawn as a box with its number.
  for (const char* const pszText : {"\u4f60\u597d", "\u05e9\u05dc\u05d5\u05dd",
                                    "\u03bb\u03cc\u03b3\u03bf\u03c2", "\u0440\u0435\u0447\u044c"}) {
    const auto line = lettering.Line(pszText, 12.0);
    EXPECT_EQ(pango_layout_get_unknown_glyphs_count(line.get()), 0) << pszText;
    EXPECT_GT(tool::WidthOf(line.get()), 10.0) << pszText;
  }
}

TEST(Ticks, Steps_AreRound) {
  EXPECT_DOUBLE_EQ(tool::RoundStep(0.3), 0.5);
  EXPECT_DOUBLE_EQ(tool::RoundStep(1.0), 1.0);
  EXPECT_DOUBLE_EQ(tool::RoundStep(5.1), 10.0);
  EXPECT_DOUBLE_EQ(tool::TimeStep(0.7), 1.0);
  EXPECT_DOUBLE_EQ(tool::TimeStep(11.0), 15.0);
  EXPECT_DOUBLE_EQ(tool::TimeStep(61.0), 120.0);
  EXPECT_DOUBLE_EQ(tool::TimeStep(0.03), 0.05);
  EXPECT_GE(tool::TimeStep(1e9), 1e9);
}

TEST(Ticks, BothEndsOfARange_HaveTheirTicks) {
  EXPECT_THAT(Texts(tool::NumberTicks(0.0, 4.0, 1.0)), ElementsAre("0", "1", "2", "3", "4"));
  EXPECT_THAT(Texts(tool::NumberTicks(0.0, 0.3, 0.1)), ElementsAre("0.0", "0.1", "0.2", "0.3"));
  EXPECT_THAT(Texts(tool::TimeTicks(59.0, 61.2, 1.0)), ElementsAre("0:59", "1:00", "1:01"));
  EXPECT_THAT(Texts(tool::TimeTicks(0.0, 0.001, 0.0005)),
              ElementsAre("0:00.0000", "0:00.0005", "0:00.0010"));
}

// The lightness that people see, 0 to 100.
double Lightness(std::uint32_t dwColour) {
  const auto linear = [&](unsigned int dwShift) {
    const double d = (dwColour >> dwShift & 0xFFU) / 255.0;
    return d <= 0.04045 ? d / 12.92 : std::pow((d + 0.055) / 1.055, 2.4);
  };
  const double dLuminance = 0.2126 * linear(16) + 0.7152 * linear(8) + 0.0722 * linear(0);
  return dLuminance > 0.008856 ? 116 * std::cbrt(dLuminance) - 16 : 903.3 * dLuminance;
}

TEST(Theme, LevelColours_GrowSteadilyAwayFromThePaper) {
  for (const bool bDark : {false, true}) {
    const auto colours = tool::LevelColours(bDark);
    const double dWhole = Lightness(colours[255]) - Lightness(colours[0]);
    EXPECT_EQ(dWhole > 0, bDark);
    EXPECT_GT(std::abs(dWhole), 70.0);
    for (std::size_t n = 0; n + 16 < colours.size(); n += 16) {
      const double dStep = (Lightness(colours[n + 16]) - Lightness(colours[n])) / dWhole;
      EXPECT_GT(dStep, 0.03) << n;
      EXPECT_LT(dStep, 0.10) << n;
    }
  }
}

tool::S_Colour Red() { return {255, 0, 0}; }

TEST(PngCanvas, SameDrawing_IsTheSameBytes) {
  const auto draw = [] {
    const tool::C_Lettering lettering;
    tool::C_PngCanvas canvas(20, 10, lettering);
    canvas.Fill(tool::S_Box{1, 1, 5, 5}, Red());
    canvas.Text({2, 9}, "x", {});
    return canvas.Finish();
  };
  EXPECT_EQ(draw(), draw());
  EXPECT_THAT(draw().substr(0, 4), "\x89PNG");
}

TEST(SvgCanvas, Texts_StayTexts) {
  tool::C_SvgCanvas canvas(200, 100, "a & b");
  canvas.Text({10, 20.5}, "1 < 2",
              {.dSize = 11, .colour = {}, .ePlace = tool::TEXT_ENDS, .bBold = true});
  const std::string strDocument = canvas.Finish();
  EXPECT_THAT(strDocument, HasSubstr("<title>a &amp; b</title>"));
  EXPECT_THAT(strDocument, HasSubstr("x=\"10\" y=\"20.5\" font-size=\"11\" fill=\"#000000\" "
                                     "text-anchor=\"end\" font-weight=\"bold\">1 &lt; 2</text>"));
}

TEST(SvgCanvas, Shapes_HaveTheirPlacesAndColours) {
  tool::C_SvgCanvas canvas(20, 10, "");
  canvas.Fill(tool::S_Box{1, 2, 3, 4}, {255, 128, 0, 0.5});
  canvas.Line(std::vector<tool::S_Point>{{0, 0}, {1.25, 1}}, Red(), 2);
  const std::string strDocument = canvas.Finish();
  EXPECT_THAT(strDocument, HasSubstr("<rect x=\"1\" y=\"2\" width=\"3\" height=\"4\" "
                                     "fill=\"#ff8000\" fill-opacity=\"0.5\"/>"));
  EXPECT_THAT(strDocument, HasSubstr("<polyline points=\"0,0 1.25,1\" fill=\"none\" "
                                     "stroke=\"#ff0000\" stroke-width=\"2\""));
}

}  // namespace
