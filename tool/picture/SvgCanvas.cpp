// SPDX-License-Identifier: Apache-2.0
#include "picture/SvgCanvas.h"

#include <algorithm>
#include <cstddef>

#include "base/NumberText.h"
#include "picture/PngCanvas.h"

namespace tool {
namespace {

// Verdana has letters of the same widths.
constexpr std::string_view kFonts = "'DejaVu Sans', Verdana, sans-serif";
constexpr int kDecimals = 2;
constexpr std::string_view kBase64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kHex = "0123456789abcdef";

// "12.5", without zeros at the end.
std::string Number(double dValue) {
  std::string strText = NumberText(dValue, kDecimals);
  while (strText.ends_with('0')) strText.pop_back();
  if (strText.ends_with('.')) strText.pop_back();
  return strText == "-0" ? "0" : strText;
}

std::string Attribute(std::string_view name, std::string_view value) {
  return " " + std::string(name) + "=\"" + std::string(value) + "\"";
}
std::string Attribute(std::string_view name, double dValue) {
  return Attribute(name, Number(dValue));
}

std::string ColourText(const S_Colour& colour) {
  std::string strText = "#";
  for (const unsigned int dwPart : {colour.byRed, colour.byGreen, colour.byBlue}) {
    strText += kHex[dwPart / 16];
    strText += kHex[dwPart % 16];
  }
  return strText;
}

std::string Paint(std::string_view what, const S_Colour& colour) {
  std::string strText = Attribute(what, ColourText(colour));
  if (colour.dCover < 1.0) strText += Attribute(std::string(what) + "-opacity", colour.dCover);
  return strText;
}

std::string PointsText(std::span<const S_Point> points) {
  std::string strText;
  for (const S_Point& point : points) {
    if (!strText.empty()) strText += ' ';
    strText += Number(point.dX) + ',' + Number(point.dY);
  }
  return strText;
}

std::string Escaped(std::string_view text) {
  std::string strText;
  for (const char chPart : text) {
    switch (chPart) {
      case '&':
        strText += "&amp;";
        break;
      case '<':
        strText += "&lt;";
        break;
      case '>':
        strText += "&gt;";
        break;
      default:
        strText += chPart;
    }
  }
  return strText;
}

std::string Base64(std::string_view bytes) {
  std::string strText;
  strText.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t n = 0; n < bytes.size(); n += 3) {
    const std::size_t nHere = std::min<std::size_t>(3, bytes.size() - n);
    std::uint32_t dwGroup = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      dwGroup = dwGroup << 8U | (i < nHere ? static_cast<std::uint8_t>(bytes[n + i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      strText += i <= nHere ? kBase64[dwGroup >> (18 - 6 * i) & 63U] : '=';
    }
  }
  return strText;
}

std::string_view Anchor(tagTextPlace ePlace) {
  if (ePlace == TEXT_CENTRED) return "middle";
  return ePlace == TEXT_ENDS ? "end" : "start";
}

}  // namespace

C_SvgCanvas::C_SvgCanvas(int nWidth, int nHeight, std::string_view title) {
  m_strDocument = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg" +
                  Attribute("xmlns", "http://www.w3.org/2000/svg") +
                  Attribute("xmlns:xlink", "http://www.w3.org/1999/xlink") +
                  Attribute("width", nWidth) + Attribute("height", nHeight) +
                  Attribute("viewBox", "0 0 " + Number(nWidth) + ' ' + Number(nHeight)) +
                  Attribute("font-family", kFonts) + ">\n<title>" + Escaped(title) + "</title>\n";
}

void C_SvgCanvas::Fill(const S_Box& box, const S_Colour& colour) {
  m_strDocument += "<rect" + Attribute("x", box.dX) + Attribute("y", box.dY) +
                   Attribute("width", box.dWidth) + Attribute("height", box.dHeight) +
                   Paint("fill", colour) + "/>\n";
}

void C_SvgCanvas::Fill(std::span<const S_Point> outline, const S_Colour& colour) {
  m_strDocument +=
      "<polygon" + Attribute("points", PointsText(outline)) + Paint("fill", colour) + "/>\n";
}

void C_SvgCanvas::Line(std::span<const S_Point> points, const S_Colour& colour, double dWidth) {
  m_strDocument += "<polyline" + Attribute("points", PointsText(points)) +
                   Attribute("fill", "none") + Paint("stroke", colour) +
                   Attribute("stroke-width", dWidth) + Attribute("stroke-linejoin", "round") +
                   "/>\n";
}

void C_SvgCanvas::Dot(S_Point centre, double dRadius, const S_Colour& colour) {
  m_strDocument += "<circle" + Attribute("cx", centre.dX) + Attribute("cy", centre.dY) +
                   Attribute("r", dRadius) + Paint("fill", colour) + "/>\n";
}

void C_SvgCanvas::Text(S_Point place, std::string_view text, const S_TextStyle& style) {
  m_strDocument += "<text" + Attribute("x", place.dX) + Attribute("y", place.dY) +
                   Attribute("font-size", style.dSize) + Paint("fill", style.colour);
  if (style.ePlace != TEXT_BEGINS) m_strDocument += Attribute("text-anchor", Anchor(style.ePlace));
  if (style.bBold) m_strDocument += Attribute("font-weight", "bold");
  if (style.bUpwards) {
    m_strDocument +=
        Attribute("transform", "rotate(-90 " + Number(place.dX) + ' ' + Number(place.dY) + ')');
  }
  m_strDocument += '>' + Escaped(text) + "</text>\n";
}

void C_SvgCanvas::Image(S_Point corner, const S_Image& image) {
  m_strDocument += "<image" + Attribute("x", corner.dX) + Attribute("y", corner.dY) +
                   Attribute("width", image.nWidth) + Attribute("height", image.nHeight) +
                   Attribute("preserveAspectRatio", "none") +
                   Attribute("xlink:href", "data:image/png;base64," + Base64(PngOf(image))) +
                   "/>\n";
}

std::string C_SvgCanvas::Finish() { return m_strDocument + "</svg>\n"; }

}  // namespace tool
