// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include "base/EachFile.h"
#include "base/Failure.h"
#include "base/TimeText.h"
#include "base/Utf8.h"
#include "manifest/Pieces.h"
#include "manifest/Subcommands.h"
#include "options/WholeNumber.h"

namespace tool {
namespace {

constexpr unsigned kMostPieces = 1'000'000;
constexpr std::string_view kNumber = "%d";

struct S_SplitOptions {
  unsigned nPieces = 0;
  std::string strManifest;
  std::string strNames;
  bool bReplace = false;
};

struct S_MergeOptions {
  std::string strManifest;
  std::vector<std::string> pieces;
};

std::vector<S_Piece> NamedPieces(const S_SplitOptions& options) {
  const std::size_t nNumber = options.strNames.find(kNumber);
  if (nNumber == std::string::npos) {
    throw C_UsageFailure("-o: the name needs a %d, for the number of the piece");
  }
  std::vector<S_Piece> pieces(options.nPieces);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    std::string strName = options.strNames;
    pieces[i].strPath = strName.replace(nNumber, kNumber.size(), std::to_string(i + 1));
  }
  return pieces;
}

int RunSplit(const S_SplitOptions& options, C_Console& console) {
  std::vector<S_Piece> pieces = NamedPieces(options);
  C_Manifest manifest(options.strManifest, tagManifestUse::MANIFEST_EXISTING);
  Split(manifest, pieces, options.bReplace);
  for (const S_Piece& piece : pieces) {
    console.Print(Printable(piece.strPath) + ": " + CountedText(piece.qwFiles, "file") + ", " +
                  CountedText(piece.qwBytes, "byte") + '\n');
  }
  return 0;
}

std::string ForeignText(std::uint64_t qwForeign, const C_Manifest& manifest) {
  if (qwForeign == 0) return "";
  return ", " + CountedText(qwForeign, "file") + " that " + Printable(manifest.Name()) +
         " does not have";
}

int RunMerge(const S_MergeOptions& options, C_Console& console) {
  C_Manifest manifest(options.strManifest, tagManifestUse::MANIFEST_EXISTING);
  return ForEachFile(options.pieces, console, [&](const std::string& strPiece) {
    const S_MergeCounts counts = Merge(manifest, strPiece);
    console.Print(Printable(strPiece) + ": " + CountedText(counts.qwTaken, "new result") + ", " +
                  CountedText(counts.qwLeft, "file") + " left" +
                  ForeignText(counts.qwForeign, manifest) + '\n');
  });
}

}  // namespace

void AddSplitCommand(C_CommandLine& commandLine, CLI::App& manifest) {
  const auto options = std::make_shared<S_SplitOptions>();
  CLI::App& command = commandLine.Add(
      manifest,
      {"split",
       "divide what is planned into manifests of equal work",
       "Writes the files of a manifest that are still to be done into N manifests of their own, "
       "numbered from 1, each with about the same amount to read. Machines can work on them "
       "without knowing of each other. The manifest itself is not changed: until the results are "
       "merged, do not convert with it. Files that have failed are left out. With -f, the results "
       "of pieces that are replaced are merged before.",
       {{"voxtool manifest split 16 archive.db -o piece-%d.db", "divide it into piece-1.db ..."},
        {"voxtool convert --manifest piece-7.db", "work on one of them"}},
       [options](C_Console& console) { return RunSplit(*options, console); }});
  AddOption(command, "N", options->nPieces, "how many")
      .TypeName("N")
      .Required()
      .Check(WholeNumber(1, kMostPieces));
  AddOption(command, "DB", options->strManifest, "the manifest").TypeName("FILE").Required();
  AddOption(command, "-o,--output", options->strNames, "the names of the pieces, with a %d in them")
      .TypeName("FILE")
      .Required();
  AddFlag(command, "-f,--force", options->bReplace, "replace files that exist");
}

void AddMergeCommand(C_CommandLine& commandLine, CLI::App& manifest) {
  const auto options = std::make_shared<S_MergeOptions>();
  CLI::App& command = commandLine.Add(
      manifest, {"merge",
                 "take back the results of pieces",
                 "Takes what became of the files in the pieces of a manifest. The pieces stay as "
                 "they are, and may be merged again, whether work on them has ended or not.",
                 {{"voxtool manifest merge archive.db piece-*.db", "take back what they have done"},
                  {"voxtool manifest failed archive.db", "then see what has failed"}},
                 [options](C_Console& console) { return RunMerge(*options, console); }});
  AddOption(command, "DB", options->strManifest, "the manifest").TypeName("FILE").Required();
  AddOption(command, "PIECE", options->pieces, "the pieces").TypeName("FILE").Required();
}

}  // namespace tool
