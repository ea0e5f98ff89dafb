// SPDX-License-Identifier: Apache-2.0
#include "compare/Report.h"

#include <cmath>

#include "base/JsonText.h"
#include "base/NumberText.h"
#include "base/TextTable.h"
#include "base/TimeText.h"

namespace tool {
namespace {

constexpr const char* kDefinition =
    "SNR: energy of the first sound over that of the difference. Segmental: mean over\n"
    "segments of 20 ms, each limited to -10..35 dB; silent ones (RMS below 40 of 32768)\n"
    "are left out. Ratios in dB, levels and the greatest difference in dBFS.\n";

std::uint64_t Distance(std::int64_t nLag) {
  return static_cast<std::uint64_t>(nLag < 0 ? -nLag : nLag);
}

std::string SoundLine(const char* pszWhich, const std::string& strName, const S_SoundInfo& info,
                      const S_Side& side) {
  return std::string(pszWhich) + strName + ": " + info.strFormat + ", " + CountText(info.dwRate) +
         " Hz, " + CountedText(info.dwChannels, "channel") + ", " +
         CountedText(side.qwFrames, "frame") + " (" + ClockText(side.qwFrames, info.dwRate) + ")\n";
}

std::string LagLine(const S_Compared& compared) {
  const std::int64_t nLag = compared.result.nLag;
  if (nLag == 0) return "lag      none\n";
  const double dSeconds = SecondsOf(Distance(nLag), compared.first.dwRate);
  return "lag      " + CountedText(Distance(nLag), "frame") + " (" +
         NumberText(dSeconds * 1000, 3) + " ms): the second sound is " +
         (nLag > 0 ? "later\n" : "earlier\n");
}

std::string AloneText(const char* pszWhich, const S_Side& side) {
  if (side.Alone() == 0) return "";
  return std::string("         ") + pszWhich + " alone has " + CountedText(side.qwBefore, "frame") +
         " before and " + CountText(side.qwAfter) + " after them, " +
         (side.bHeardAlone ? "which are not silent\n" : "all silent\n");
}

// What the second sound lacks of the first, and what it has beside it.
std::string LengthsText(const S_Comparison& result) {
  const std::uint64_t qwMissing = result.first.Alone();
  const std::uint64_t qwMore = result.second.Alone();
  std::string strText;
  if (qwMissing > 0) strText = "lacks " + CountedText(qwMissing, "frame");
  if (qwMissing > 0 && qwMore > 0) strText += " and ";
  if (qwMore > 0) strText += "has " + CountedText(qwMore, "frame") + " more";
  return strText;
}

std::string DifferenceLine(const S_Compared& compared) {
  if (compared.result.IsEqual()) return "result   equal\n";
  if (!compared.result.qwFirstFrame) {
    return "result   different: the second sound " + LengthsText(compared.result) +
           "; the frames that both have are equal\n";
  }
  const std::uint64_t qwFrame = *compared.result.qwFirstFrame;
  return "result   different from frame " + CountText(qwFrame) + " (" +
         ClockText(qwFrame, compared.first.dwRate) + ") of the first sound on\n";
}

std::string Number(const std::optional<double>& value, int nDecimals) {
  return value ? NumberText(*value, nDecimals) : "-";
}

std::optional<double> Level(double dAmplitude) {
  if (dAmplitude == 0.0) return {};
  return 20 * std::log10(dAmplitude);
}

// Where nothing differs, the ratio has no bounds.
bool IsInfinite(const S_Sums& sums) { return sums.dNoise == 0.0 && sums.dSignal > 0.0; }

std::string SnrText(const S_Sums& sums) { return IsInfinite(sums) ? "inf" : Number(sums.Snr(), 2); }

C_TextTable::Row Row(const std::string& strName, const S_Sums& sums, const S_Level& first,
                     const S_Level& second) {
  return {strName,
          CountText(sums.qwDiffering),
          Number(Level(sums.dGreatest), 1),
          SnrText(sums),
          Number(sums.SegmentalSnr(), 2),
          Number(first.Rms(), 1),
          Number(first.Peak(), 1),
          Number(second.Rms(), 1),
          Number(second.Peak(), 1)};
}

struct S_Together {
  S_Sums sums;
  S_Level first;
  S_Level second;
};

S_Together Together(const S_Comparison& result) {
  S_Together together;
  for (const S_Sums& sums : result.channels) together.sums += sums;
  for (const S_Level& level : result.first.levels) together.first += level;
  for (const S_Level& level : result.second.levels) together.second += level;
  return together;
}

std::string TableText(const S_Comparison& result) {
  C_TextTable table("lrrrrrrrr", {"", "differing", "greatest", "SNR", "segmental", "RMS 1",
                                  "peak 1", "RMS 2", "peak 2"});
  for (std::size_t n = 0; n < result.channels.size(); ++n) {
    table.Add(Row("channel " + std::to_string(n + 1), result.channels[n], result.first.levels[n],
                  result.second.levels[n]));
  }
  if (result.channels.size() > 1) {
    const S_Together together = Together(result);
    table.Add(Row("together", together.sums, together.first, together.second));
  }
  return table.Text(0);
}

C_Json Optional(const std::optional<double>& value) { return value ? C_Json(*value) : C_Json(); }

C_Json SoundJson(const std::string& strName, const S_SoundInfo& info, const S_Side& side) {
  return {{"file", strName},
          {"format", info.strFormat},
          {"sample_rate", info.dwRate},
          {"channels", info.dwChannels},
          {"frames", side.qwFrames},
          {"frames_alone_before", side.qwBefore},
          {"frames_alone_after", side.qwAfter},
          {"alone_is_silent", !side.bHeardAlone}};
}

C_Json SumsJson(const S_Sums& sums, const S_Level& first, const S_Level& second) {
  return {{"samples", sums.qwSamples},
          {"differing_samples", sums.qwDiffering},
          {"greatest_difference", sums.dGreatest},
          {"snr_db", Optional(sums.Snr())},
          {"snr_is_infinite", IsInfinite(sums)},
          {"segmental_snr_db", Optional(sums.SegmentalSnr())},
          {"segments", sums.qwSegments},
          {"first_rms_dbfs", Optional(first.Rms())},
          {"first_peak_dbfs", Optional(first.Peak())},
          {"second_rms_dbfs", Optional(second.Rms())},
          {"second_peak_dbfs", Optional(second.Peak())}};
}

}  // namespace

std::string ReportText(const S_Compared& compared) {
  const S_Comparison& result = compared.result;
  std::string strText = SoundLine("first    ", compared.strFirst, compared.first, result.first) +
                        SoundLine("second   ", compared.strSecond, compared.second, result.second) +
                        LagLine(compared) + "compared " + CountedText(result.qwFrames, "frame") +
                        "\n" + AloneText("the first", result.first) +
                        AloneText("the second", result.second) + DifferenceLine(compared) + '\n' +
                        kDefinition;
  return strText + '\n' + TableText(result);
}

std::string ReportJson(const S_Compared& compared) {
  const S_Comparison& result = compared.result;
  const S_Together together = Together(result);
  C_Json channels = C_Json::array();
  for (std::size_t n = 0; n < result.channels.size(); ++n) {
    channels.push_back(
        SumsJson(result.channels[n], result.first.levels[n], result.second.levels[n]));
  }
  C_Json json = {
      {"schema", kJsonSchema},
      {"first", SoundJson(compared.strFirst, compared.first, result.first)},
      {"second", SoundJson(compared.strSecond, compared.second, result.second)},
      {"equal", result.IsEqual()},
      {"lag_frames", result.nLag},
      {"frames", result.qwFrames},
      {"first_differing_frame", result.qwFirstFrame ? C_Json(*result.qwFirstFrame) : C_Json()}};
  json["together"] = SumsJson(together.sums, together.first, together.second);
  json["channels"] = std::move(channels);
  return JsonText(json);
}

}  // namespace tool
