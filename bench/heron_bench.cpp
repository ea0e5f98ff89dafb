// SPDX-License-Identifier: Apache-2.0
//
// Compares the Heron codec with other coders, on the 16-bit mono WAV files in a folder and with the
// same number of bits. Prints a table of plain text. It also runs one codec step by itself, for
// counting its instructions. bench/heron.sh runs both:
//
//   bench/heron.sh FOLDER
//
//   heron_bench FOLDER                             needs ffmpeg, wavpack and wvunpack
//   heron_bench load|encode|decode DEPTH FILE      each step includes those before it; says how
//                                                  many samples the file has
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "heron/Coders.h"
#include "heron/Configuration.h"
#include "heron/Fidelity.h"
#include "heron/Sound.h"
#include "heron/SoundCoder.h"

namespace {

// WavPack with its defaults, and WavPack set for the highest ratio: full effort, and no noise
// shaping.
constexpr const char* kWavPack = "WavPack -b";
constexpr const char* kWavPackBest = "WavPack -b -hhx6 -s0";

constexpr auto kColumns = std::to_array<std::string_view>(
    {"b", "coder               ", "bits ", "  SNR", "segm.", "mean SNR", "mean segm.", "lowest",
     "gain SNR", "gain segm.", "gain mean SNR", "gain mean segm.", "behind SNR", "behind segm."});
constexpr std::size_t kCoderColumn = 1;

// The results of one coder at one depth.
class C_Record {
 public:
  void Add(const S_Sound& sound, const S_Coded& coded) {
    m_sounds.push_back(Compare(sound.samples, coded.samples, sound.nSampleRate));
    m_all += m_sounds.back();
    m_dBits += 8.0 * static_cast<double>(coded.cbCoded);
    m_dSamples += static_cast<double>(sound.samples.size());
  }
  [[nodiscard]] double BitsPerSample() const { return m_dBits / m_dSamples; }
  // Over all sounds as if they were one.
  [[nodiscard]] double Snr() const { return m_all.Snr(); }
  [[nodiscard]] double SegmentalSnr() const { return m_all.SegmentalSnr(); }

  [[nodiscard]] double MeanSnr() const { return Mean(&S_Fidelity::Snr); }
  [[nodiscard]] double MeanSegmentalSnr() const { return Mean(&S_Fidelity::SegmentalSnr); }
  [[nodiscard]] double LowestSnr() const {
    double dLowest = m_sounds.front().Snr();
    for (const S_Fidelity& sound : m_sounds) dLowest = std::min(dLowest, sound.Snr());
    return dLowest;
  }
  // The number of sounds that have a lower ratio in this record than in the other.
  [[nodiscard]] int Behind(const C_Record& other, double (S_Fidelity::*ratio)() const) const {
    int nBehind = 0;
    for (std::size_t n = 0; n < m_sounds.size(); ++n) {
      nBehind += (m_sounds[n].*ratio)() < (other.m_sounds[n].*ratio)() ? 1 : 0;
    }
    return nBehind;
  }

 private:
  [[nodiscard]] double Mean(double (S_Fidelity::*ratio)() const) const {
    double dSum = 0.0;
    for (const S_Fidelity& sound : m_sounds) dSum += (sound.*ratio)();
    return dSum / static_cast<double>(m_sounds.size());
  }

  std::vector<S_Fidelity> m_sounds;
  S_Fidelity m_all;
  double m_dBits = 0.0;
  double m_dSamples = 0.0;
};

// The coders in the order of the table.
struct S_Depth {
  C_Record heron;
  std::vector<std::pair<std::string, C_Record>> peers;

  C_Record& Peer(const std::string& strName) {
    for (auto& [strKnown, record] : peers) {
      if (strKnown == strName) return record;
    }
    return peers.emplace_back(strName, C_Record()).second;
  }
};
using Table = std::map<int, S_Depth>;

void CodeAt(int nDepth, const S_Sound& sound, const C_Workshop& workshop, S_Depth& depth) {
  const S_Coded heron = CodeWithHeron(sound, nDepth);
  depth.heron.Add(sound, heron);
  if (nDepth <= 5) depth.Peer("G.726").Add(sound, CodeWithG726(sound, nDepth, workshop));
  depth.Peer("mu-255 PCM").Add(sound, CodeWithCompanding(sound, nDepth));
  depth.Peer(kWavPack).Add(sound, CodeWithWavPack(sound, "", heron.cbCoded, workshop));
  depth.Peer(kWavPackBest).Add(sound, CodeWithWavPack(sound, "-hhx6 -s0", heron.cbCoded, workshop));
}

void CodeAtAllDepths(const S_Sound& sound, Table& table) {
  const C_Workshop workshop;
  WriteSound(sound, workshop.Path("in.wav"));
  for (int nDepth = heron::kMinBitDepth; nDepth <= heron::kMaxBitDepth; ++nDepth) {
    CodeAt(nDepth, sound, workshop, table[nDepth]);
  }
}

using Cells = std::vector<std::string>;

std::string Number(double dValue, int nDecimals) {
  std::array<char, 32> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%.*f", nDecimals, dValue));
  return text.data();
}

std::string Gain(double dHeron, double dPeer) {
  std::array<char, 32> text{};
  static_cast<void>(std::snprintf(text.data(), text.size(), "%+.2f", dHeron - dPeer));
  return text.data();
}

Cells Figures(int nDepth, const std::string& strCoder, const C_Record& record) {
  return {std::to_string(nDepth),
          strCoder,
          Number(record.BitsPerSample(), 3),
          Number(record.Snr(), 2),
          Number(record.SegmentalSnr(), 2),
          Number(record.MeanSnr(), 2),
          Number(record.MeanSegmentalSnr(), 2),
          Number(record.LowestSnr(), 2)};
}

Cells Gains(const C_Record& heron, const C_Record& peer) {
  return {Gain(heron.Snr(), peer.Snr()),
          Gain(heron.SegmentalSnr(), peer.SegmentalSnr()),
          Gain(heron.MeanSnr(), peer.MeanSnr()),
          Gain(heron.MeanSegmentalSnr(), peer.MeanSegmentalSnr()),
          std::to_string(heron.Behind(peer, &S_Fidelity::Snr)),
          std::to_string(heron.Behind(peer, &S_Fidelity::SegmentalSnr))};
}

// Each column is as wide as its title. Only the coder's name is left-aligned.
void PrintRow(Cells cells) {
  cells.resize(kColumns.size());
  for (std::size_t n = 0; n < cells.size(); ++n) {
    const auto nWidth = static_cast<int>(kColumns[n].size());
    std::printf("| %*s ", n == kCoderColumn ? -nWidth : nWidth, cells[n].c_str());
  }
  std::puts("|");
}

void PrintHeading() {
  PrintRow(Cells(kColumns.begin(), kColumns.end()));
  for (std::size_t n = 0; n < kColumns.size(); ++n) {
    std::printf("|%s%c", std::string(kColumns[n].size() + 1, '-').c_str(),
                n == kCoderColumn ? '-' : ':');
  }
  std::puts("|");
}

void PrintLegend() {
  std::puts(
      "\nbits: per sample, of everything stored. SNR: signal-to-noise ratio of all sounds as one,\n"
      "dB; segm.: the segmental one. mean: of the sounds' own ratios. lowest: SNR of one sound.\n"
      "gain: Heron's over that coder. behind: sounds in which Heron's ratio is the lower one.");
}

void PrintTable(const Table& table) {
  PrintHeading();
  for (const auto& [nDepth, depth] : table) {
    PrintRow(Figures(nDepth, "Heron", depth.heron));
    for (const auto& [strName, peer] : depth.peers) {
      Cells cells = Figures(nDepth, strName, peer);
      std::ranges::move(Gains(depth.heron, peer), std::back_inserter(cells));
      PrintRow(std::move(cells));
    }
  }
  PrintLegend();
}

std::vector<std::string> WavFilesIn(const std::string& strFolder) {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(strFolder)) {
    if (entry.path().extension() == ".wav") paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  if (paths.empty()) throw std::runtime_error(strFolder + ": no WAV files");
  return paths;
}

bool IsSilent(const S_Sound& sound) {
  return std::ranges::all_of(sound.samples, [](std::int16_t nSample) { return nSample == 0; });
}

void CompareCoders(const std::string& strFolder) {
  const std::vector<std::string> paths = WavFilesIn(strFolder);
  Table table;
  std::size_t nSamples = 0;
  for (const std::string& strPath : paths) {
    static_cast<void>(std::fprintf(stderr, "%s\n", strPath.c_str()));
    const S_Sound sound = ReadSound(strPath);
    if (IsSilent(sound)) throw std::runtime_error(strPath + ": silence has no ratio");
    nSamples += sound.samples.size();
    CodeAtAllDepths(sound, table);
  }
  std::printf("%zu sounds, %zu samples\n\n", paths.size(), nSamples);
  PrintTable(table);
}

void RunStep(std::string_view strStep, int nDepth, const std::string& strPath) {
  const S_Sound sound = ReadSound(strPath);
  std::vector<std::uint8_t> coded;
  std::vector<std::int16_t> decoded;
  bool bDone = true;
  if (strStep != "load") {
    bDone = heron::EncodeSamples(sound.samples, sound.nSampleRate, nDepth, &coded, {});
  }
  if (strStep == "decode") {
    bDone = bDone && heron::DecodeSamples(coded, sound.nSampleRate, &decoded);
  }
  if (!bDone) throw std::runtime_error(strPath + ": Heron fails");
  std::printf("%zu\n", sound.samples.size());
}

bool Run(int argc, char** argv) {
  if (argc == 2) {
    CompareCoders(argv[1]);
    return true;
  }
  const std::string_view strStep = argc == 4 ? argv[1] : "";
  if (strStep != "load" && strStep != "encode" && strStep != "decode") return false;
  RunStep(strStep, static_cast<int>(std::strtol(argv[2], nullptr, 10)), argv[3]);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (Run(argc, argv)) return EXIT_SUCCESS;
    static_cast<void>(
        std::fputs("usage: heron_bench FOLDER | load|encode|decode DEPTH FILE\n", stderr));
  } catch (const std::exception& error) {
    static_cast<void>(std::fprintf(stderr, "heron_bench: %s\n", error.what()));
  }
  return EXIT_FAILURE;
}
