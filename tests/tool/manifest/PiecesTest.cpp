// SPDX-License-Identifier: Apache-2.0
#include "manifest/Pieces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "ManifestFixture.h"

namespace tool {
namespace {

class PiecesTest : public test::C_ManifestTest {
 protected:
  std::vector<S_Piece> SplitInto(C_Manifest& manifest, int nPieces) const {
    std::vector<S_Piece> pieces;
    for (int i = 1; i <= nPieces; ++i) pieces.push_back({Path("piece-" + std::to_string(i)), 0, 0});
    Split(manifest, pieces, true);
    return pieces;
  }
  // Gives all files of a piece a result.
  void End(const std::string& strPiece, tagRowState eState) const {
    C_Manifest piece = Opened(strPiece);
    piece.Database().Execute(
        "INSERT INTO workers VALUES(5, 'node', 'boot', 77, 88);"
        "UPDATE files SET worker = 5, own = 1, frames = 100, rate = 50, reason = 'because', "
        "state=" +
        std::to_string(static_cast<int>(eState)));
  }
  // As a process leaves a piece that is killed while it records something.
  void KillWriterOf(const std::string& strPiece) const {
    C_Manifest piece = Opened(strPiece);
    piece.Database().Execute("BEGIN IMMEDIATE; UPDATE files SET state = 2, reason = 'unheard'");
    ASSERT_EQ(sqlite3_db_cacheflush(piece.Database().Get()), SQLITE_OK);
    std::filesystem::copy(Path(strPiece), Path("half"));
    std::filesystem::copy(Path(strPiece + "-journal"), Path("journal"));
    piece.Database().Execute("ROLLBACK");
    std::filesystem::rename(Path("half"), Path(strPiece));
    std::filesystem::rename(Path("journal"), Path(strPiece + "-journal"));
  }
};

TEST_F(PiecesTest, Pieces_HaveEqualWorkAndEachFileOnce) {
  MakeSources(100);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 100, "{\"to\":\"wav\"}");
  manifest.Database().Execute("UPDATE files SET bytes = bytes * 100000");
  const std::vector<S_Piece> pieces = SplitInto(manifest, 4);
  std::uint64_t qwFiles = 0;
  for (const S_Piece& piece : pieces) {
    EXPECT_NEAR(static_cast<double>(piece.qwBytes), 5050.0 * 100000 / 4, 200000.0);
    qwFiles += piece.qwFiles;
    C_Manifest part(piece.strPath, tagManifestUse::MANIFEST_EXISTING);
    EXPECT_EQ(part.Counts().qwPlanned, piece.qwFiles);
    EXPECT_EQ(part.Counts().qwBytes, piece.qwBytes);
    EXPECT_EQ(part.Setting(kOptionsSetting), "{\"to\":\"wav\"}");
    manifest.Database().Execute("ATTACH '" + piece.strPath + "' AS p");
    EXPECT_EQ(Value(manifest,
                    "SELECT COUNT(*) FROM p.files a JOIN main.files b ON a.id = b.id AND a.source "
                    "= b.source AND a.target = b.target AND a.modified = b.modified"),
              std::to_string(piece.qwFiles));
    manifest.Database().Execute("DETACH p");
  }
  EXPECT_EQ(qwFiles, 100U);
  EXPECT_EQ(manifest.Counts().qwPlanned, 100U);
}

TEST_F(PiecesTest, WhatIsDone_IsInNoPiece) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 10);
  manifest.Database().Execute("UPDATE files SET state = 2 WHERE id <= 8");
  const std::vector<S_Piece> pieces = SplitInto(manifest, 3);
  EXPECT_EQ(pieces[0].qwFiles + pieces[1].qwFiles, 2U);
  EXPECT_EQ(pieces[2].qwFiles, 0U);
  EXPECT_EQ(Opened("piece-3").Counts().All(), 0U);
}

TEST_F(PiecesTest, ExistingFile_StaysAndNoPieceIsMade) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 3);
  Write("piece-2", {1, 2});
  std::vector<S_Piece> pieces = {{Path("piece-1")}, {Path("piece-2")}};
  EXPECT_EQ(FailureOf([&] { Split(manifest, pieces, false); }),
            Path("piece-2") + ": exists: -f replaces it");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"files.db", "piece-2"}));
}

TEST_F(PiecesTest, PieceThatIsReplaced_GivesItsResultsFirst) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 9);
  SplitInto(manifest, 3);
  End("piece-1", tagRowState::ROW_DONE);
  End("piece-2", tagRowState::ROW_CLAIMED);
  const std::vector<S_Piece> pieces = SplitInto(manifest, 2);
  EXPECT_EQ(manifest.Counts().qwDone, 3U);
  EXPECT_EQ(pieces[0].qwFiles + pieces[1].qwFiles, 6U);
  EXPECT_EQ(Value(manifest, "SELECT COUNT(*) FROM files WHERE own = 2"), "3");
}

TEST_F(PiecesTest, PieceOfAKilledProcess_GivesWhatItHasRecorded) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 400);
  SplitInto(manifest, 1);
  Opened("piece-1").Database().Execute("UPDATE files SET state = 2 WHERE id <= 100");
  KillWriterOf("piece-1");
  EXPECT_EQ(SplitInto(manifest, 1)[0].qwFiles, 300U);
  EXPECT_EQ(manifest.Counts().qwDone, 100U);
  EXPECT_EQ(Opened("piece-1").Counts().qwPlanned, 300U);
  EXPECT_EQ(Entries(), (std::vector<std::string>{"files.db", "piece-1"}));
}

TEST_F(PiecesTest, JournalOfAPieceThatIsGone_IsNotPlayedIntoTheNewOne) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 400);
  SplitInto(manifest, 1);
  KillWriterOf("piece-1");
  std::filesystem::remove(Path("piece-1"));
  std::vector<S_Piece> pieces = {{Path("piece-1")}};
  EXPECT_EQ(FailureOf([&] { Split(manifest, pieces, false); }),
            Path("piece-1-journal") + ": exists: -f replaces it");
  Split(manifest, pieces, true);
  EXPECT_EQ(Value(manifest, "PRAGMA integrity_check"), "ok");
  C_Manifest piece = Opened("piece-1");
  EXPECT_EQ(Value(piece, "PRAGMA integrity_check"), "ok");
  EXPECT_EQ(piece.Counts().qwPlanned, 400U);
}

TEST_F(PiecesTest, WhatIsNoPieceOfTheManifest_IsReplacedWhenAsked) {
  C_Manifest other = Made("piece-1");
  PlanFiles(other, 5);
  Write("piece-2", {1, 2});
  Write("piece-3", {});
  C_Manifest manifest = Made();
  PlanFiles(manifest, 3);
  SplitInto(manifest, 3);
  for (const char* pszPiece : {"piece-1", "piece-2", "piece-3"}) {
    EXPECT_EQ(Opened(pszPiece).Counts().qwPlanned, 1U) << pszPiece;
  }
}

TEST_F(PiecesTest, PieceThatCannotBeRead_IsNotReplaced) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 3);
  SplitInto(manifest, 1);
  Opened("piece-1").Database().Execute("PRAGMA user_version=77");
  std::vector<S_Piece> pieces = {{Path("piece-1")}};
  EXPECT_EQ(FailureOf([&] { Split(manifest, pieces, true); }),
            Path("piece-1") + ": cannot be used: it was made by another version of voxtool");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"files.db", "piece-1"}));
}

TEST_F(PiecesTest, ManifestItself_IsNeverReplaced) {
  C_Manifest manifest = Made("piece-2");
  PlanFiles(manifest, 3);
  std::vector<S_Piece> pieces = {{Path("piece-1")}, {Path("piece-2")}};
  const std::string strWhy = Path("piece-2") + ": cannot be replaced: it is the manifest itself";
  EXPECT_EQ(FailureOf([&] { Split(manifest, pieces, true); }), strWhy);
  EXPECT_EQ(FailureOf([&] { Split(manifest, pieces, false); }), strWhy);
  std::filesystem::create_symlink("piece-2", Path("link"));
  pieces = {{Path("link")}};
  EXPECT_EQ(FailureOf([&] { Split(manifest, pieces, true); }),
            Path("link") + ": cannot be replaced: it is the manifest itself");
  EXPECT_EQ(manifest.Counts().qwPlanned, 3U);
  EXPECT_EQ(Entries(), (std::vector<std::string>{"link", "piece-2"}));
}

// Only what a killed process has left of a piece is of no use to anybody.
TEST_F(PiecesTest, FilesBesideAPiece_Stay) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 3);
  Write("piece-1.new", {1, 2});
  SplitInto(manifest, 1);
  EXPECT_EQ(Content("piece-1.new"), (std::vector<std::uint8_t>{1, 2}));
  EXPECT_EQ(Entries(), (std::vector<std::string>{"files.db", "piece-1", "piece-1.new"}));
}

TEST_F(PiecesTest, Results_AreTakenOnce) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 9);
  SplitInto(manifest, 3);
  End("piece-1", tagRowState::ROW_DONE);
  End("piece-2", tagRowState::ROW_FAILED);
  EXPECT_EQ(Merge(manifest, Path("piece-1")).qwTaken, 3U);
  EXPECT_EQ(Merge(manifest, Path("piece-2")).qwTaken, 3U);
  const S_MergeCounts left = Merge(manifest, Path("piece-3"));
  EXPECT_EQ(left.qwTaken, 0U);
  EXPECT_EQ(left.qwLeft, 3U);
  for (const char* pszPiece : {"piece-1", "piece-2", "piece-3"}) {
    EXPECT_EQ(Merge(manifest, Path(pszPiece)).qwTaken, 0U);
  }
  const S_ManifestCounts counts = manifest.Counts();
  EXPECT_EQ(counts.qwDone, 3U);
  EXPECT_EQ(counts.qwFailed, 3U);
  EXPECT_EQ(counts.qwPlanned, 3U);
  EXPECT_EQ(counts.dSeconds, 6.0);
  EXPECT_EQ(Value(manifest,
                  "SELECT group_concat(DISTINCT host || process) FROM files JOIN workers ON "
                  "workers.id = worker"),
            "node77");
}

TEST_F(PiecesTest, WhatIsDone_IsNotUndone) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  SplitInto(manifest, 1);
  End("piece-1", tagRowState::ROW_FAILED);
  manifest.Database().Execute("UPDATE files SET state = 2");
  EXPECT_EQ(Merge(manifest, Path("piece-1")).qwTaken, 0U);
  EXPECT_EQ(manifest.Counts().qwDone, 2U);
}

TEST_F(PiecesTest, FileThatWasPlannedAnew_IsNotTaken) {
  MakeSources(2);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  SplitInto(manifest, 1);
  End("piece-1", tagRowState::ROW_DONE);
  Write("1", {1, 2, 3});
  EXPECT_EQ(PlanFiles(manifest, 2).qwChanged, 1U);
  EXPECT_EQ(Merge(manifest, Path("piece-1")).qwTaken, 1U);
  EXPECT_EQ(Value(manifest, "SELECT source FROM files WHERE state = 0"), Path("1"));
}

// A node may be lost between making the target and saying so.
TEST_F(PiecesTest, TargetsOfWhatWasBegun_AreOurs) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  SplitInto(manifest, 1);
  End("piece-1", tagRowState::ROW_CLAIMED);
  EXPECT_EQ(Merge(manifest, Path("piece-1")).qwLeft, 2U);
  EXPECT_EQ(manifest.Counts().qwPlanned, 2U);
  EXPECT_EQ(Value(manifest, "SELECT group_concat(own) FROM files"), "2,2");
}

TEST_F(PiecesTest, TargetOfAFileThatWasPlannedAnew_IsOursWhileItIsAsItWasMade) {
  MakeSources(1);
  C_Manifest manifest = Made();
  PlanFiles(manifest, 1);
  SplitInto(manifest, 1);
  End("piece-1", tagRowState::ROW_DONE);
  Opened("piece-1").Database().Execute("UPDATE files SET target_bytes = 5, target_modified = 6");
  Write("1", {1, 2, 3});
  PlanFiles(manifest, 1);
  EXPECT_EQ(Merge(manifest, Path("piece-1")).qwTaken, 0U);
  EXPECT_EQ(Value(manifest, "SELECT state || own || target_bytes || target_modified FROM files"),
            "0156");
}

TEST_F(PiecesTest, FileThatOnlyThePieceHas_IsCounted) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  SplitInto(manifest, 1);
  C_Manifest piece = Opened("piece-1");
  piece.Database().Execute(
      "INSERT INTO files(source, target, bytes, modified) VALUES('/new', '/onew', 1, 1)");
  EXPECT_EQ(Merge(manifest, Path("piece-1")).qwForeign, 1U);
  EXPECT_EQ(manifest.Counts().All(), 2U);
}

TEST_F(PiecesTest, ManifestItself_IsNoPiece) {
  C_Manifest manifest = Made();
  std::filesystem::create_symlink("files.db", Path("link"));
  EXPECT_EQ(FailureOf([&] { Merge(manifest, Path("link")); }),
            Path("link") + ": is no piece: it is the manifest itself");
}

TEST_F(PiecesTest, PieceThatCannotBeRead_IsTheOneThatIsNamed) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  Write("text", std::vector<std::uint8_t>(2000, 'x'));
  EXPECT_EQ(FailureOf([&] { Merge(manifest, Path("text")); }),
            Path("text") + ": is no manifest: it is no database");
  SplitInto(manifest, 1);
  std::vector<std::uint8_t> bytes = Content("piece-1");
  std::fill(bytes.begin() + 4096, bytes.end(), std::uint8_t{0xA5});
  Write("piece-1", bytes);
  EXPECT_TRUE(FailureOf([&] {
                Merge(manifest, Path("piece-1"));
              }).starts_with(Path("piece-1") + ": cannot be used: "));
  // It is to blame no longer.
  EXPECT_TRUE(FailureOf([&] {
                manifest.Database().Execute("SELECT nothing");
              }).starts_with(Path("files.db") + ": "));
}

TEST_F(PiecesTest, PieceOfAnotherManifest_IsRefused) {
  C_Manifest manifest = Made();
  PlanFiles(manifest, 2);
  C_Manifest other = Made("other.db");
  PlanFiles(other, 2);
  SplitInto(other, 1);
  EXPECT_EQ(FailureOf([&] { Merge(manifest, Path("piece-1")); }),
            Path("piece-1") + ": is no piece of " + Path("files.db") +
                ": it comes from another manifest");
  Write("text", std::vector<std::uint8_t>(2000, 'x'));
  EXPECT_NE(FailureOf([&] { Merge(manifest, Path("text")); }), "nothing failed");
  EXPECT_EQ(FailureOf([&] { Merge(manifest, Path("none")); }),
            Path("none") + ": cannot be opened: No such file or directory");
  EXPECT_EQ(manifest.Counts().qwPlanned, 2U);
}

}  // namespace
}  // namespace tool
