// SPDX-License-Identifier: Apache-2.0
//
// Adding a header to a file, removing it, and copying a file with a header. Above all, no file is
// ever lost.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <regex>

#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "InChild.h"
#include "SpBytes.h"
#include "file/SpHeader.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr uid_t kNobody = 65534;

Bytes Pattern(std::size_t cbSize) {
  Bytes bytes(cbSize);
  for (std::size_t i = 0; i < cbSize; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
  return bytes;
}

C_SpHeader KestrelHeader() {
  C_SpHeader header;
  header.SetID(14);
  header.SetFreq(16000);
  return header;
}

Bytes Headed(const Bytes& stream) { return C_SpBytes().Stream(stream).Take(); }

class SpFile : public C_FolderTest {
 protected:
  bool Prepend(const std::string& strName) {
    return PrependSpHeader(KestrelHeader(), Path(strName).c_str());
  }
  bool Strip(const std::string& strSource, const std::string& strTarget) {
    C_SpHeader header;
    return StripSpHeader(&header, Path(strSource).c_str(), Path(strTarget).c_str());
  }
  bool Copy(const std::string& strSource, const std::string& strTarget) {
    return CopyWithSpHeader(Path(strSource).c_str(), Path(strTarget).c_str(), KestrelHeader());
  }
  mode_t ModeOf(const std::string& strName) {
    struct stat status {};
    EXPECT_EQ(stat(Path(strName).c_str(), &status), 0);
    return status.st_mode & 07777;
  }
  uid_t OwnerOf(const std::string& strName) {
    struct stat status {};
    EXPECT_EQ(stat(Path(strName).c_str(), &status), 0);
    return status.st_uid;
  }
};

// ---- prepend

TEST_F(SpFile, Prepend_PutsTheHeaderBeforeFilesOfEverySize) {
  for (const std::size_t cbSize : {0u, 1u, 47u, 1023u, 1024u, 1025u, 2048u, 100000u}) {
    Write("a", Pattern(cbSize));
    EXPECT_TRUE(Prepend("a")) << cbSize;
    EXPECT_EQ(Content("a"), Headed(Pattern(cbSize))) << cbSize;
    EXPECT_THAT(Entries(), ElementsAre("a")) << cbSize;
  }
}

TEST_F(SpFile, Prepend_Twice_StacksTwoHeaders) {
  Write("a", Pattern(100));
  EXPECT_TRUE(Prepend("a"));
  EXPECT_TRUE(Prepend("a"));
  EXPECT_EQ(Content("a"), Headed(Headed(Pattern(100))));
}

TEST_F(SpFile, Prepend_MissingFile_IsFalseAndCreatesNothing) {
  EXPECT_FALSE(Prepend("missing"));
  EXPECT_FALSE(Prepend("missing/deeper"));
  EXPECT_FALSE(PrependSpHeader(KestrelHeader(), ""));
  EXPECT_FALSE(PrependSpHeader(KestrelHeader(), nullptr));
  EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(SpFile, Prepend_Directory_IsFalse) {
  std::filesystem::create_directory(Path("d"));
  EXPECT_FALSE(Prepend("d"));
  EXPECT_THAT(Entries(), ElementsAre("d"));
}

TEST_F(SpFile, Prepend_EndlessDevice_IsFalseAtOnce) {
  EXPECT_FALSE(PrependSpHeader(KestrelHeader(), "/dev/zero"));
}

// Collects the names that are created in a folder while it is watched.
class C_CreationWatch {
 public:
  explicit C_CreationWatch(const std::string& strFolder) : m_nWatch(inotify_init1(IN_NONBLOCK)) {
    EXPECT_GE(inotify_add_watch(m_nWatch, strFolder.c_str(), IN_CREATE), 0);
  }
  ~C_CreationWatch() { close(m_nWatch); }
  C_CreationWatch(const C_CreationWatch&) = delete;
  C_CreationWatch& operator=(const C_CreationWatch&) = delete;

  std::vector<std::string> Created() const {
    std::vector<std::string> names;
    alignas(inotify_event) std::array<char, 4096> events{};
    const ssize_t nRead = read(m_nWatch, events.data(), events.size());
    for (ssize_t i = 0; i < nRead;) {
      inotify_event event{};
      std::memcpy(&event, &events[static_cast<std::size_t>(i)], sizeof event);
      names.emplace_back(&events[static_cast<std::size_t>(i) + sizeof event]);
      i += static_cast<ssize_t>(sizeof event + event.len);
    }
    return names;
  }

 private:
  int m_nWatch;
};

TEST_F(SpFile, Prepend_BuildsTheNewFileBesideTheOldOneUnderAHexadecimalName) {
  Write("voice.kst", Pattern(10));
  const C_CreationWatch watch(Path("."));
  ASSERT_TRUE(Prepend("voice.kst"));
  const auto names = watch.Created();
  ASSERT_EQ(names.size(), 1u);
  EXPECT_TRUE(std::regex_match(names[0], std::regex(R"(voice\.kst\.[0-9a-f]{1,8})"))) << names[0];
  EXPECT_THAT(Entries(), ElementsAre("voice.kst"));
}

// The first use in the process seeds the generator; from then on a test can control it.
class SpFileWithKnownNames : public SpFile {
 protected:
  static constexpr unsigned int kSeed = 42;

  void SetUp() override {
    SpFile::SetUp();
    Write("first", {});
    ASSERT_TRUE(Prepend("first"));
    std::filesystem::remove(Path("first"));
  }
  static std::vector<std::string> NextNames(int nCount) {
    std::srand(kSeed);
    std::vector<std::string> names;
    for (int i = 0; i < nCount; ++i) {
      std::array<char, 16> szName{};
      std::snprintf(szName.data(), szName.size(), "a.%x", static_cast<unsigned int>(std::rand()));
      names.emplace_back(szName.data());
    }
    std::srand(kSeed);
    return names;
  }
};

TEST_F(SpFileWithKnownNames, Prepend_SeedsTheGeneratorOncePerProcess) {
  Write("a", Pattern(5));
  const auto names = NextNames(1);
  const C_CreationWatch watch(Path("."));
  ASSERT_TRUE(Prepend("a"));
  EXPECT_EQ(watch.Created(), names);
}

TEST_F(SpFileWithKnownNames, Prepend_StepsOverNamesThatAreTaken) {
  const auto names = NextNames(4);
  Write("a", Pattern(5));
  Write(names[0], {1, 2, 3});
  ASSERT_EQ(symlink("nowhere", Path(names[1]).c_str()), 0);
  std::filesystem::create_directory(Path(names[2]));
  EXPECT_TRUE(Prepend("a"));
  EXPECT_EQ(Content("a"), Headed(Pattern(5)));
  EXPECT_EQ(Content(names[0]), (Bytes{1, 2, 3}));
  EXPECT_THAT(Entries(), UnorderedElementsAre("a", names[0], names[1], names[2]));
}

TEST_F(SpFileWithKnownNames, Prepend_GivesUpAfterTenThousandNames) {
  const auto names = NextNames(10000);
  Write("a", Pattern(5));
  for (const std::string& strName : names) EXPECT_EQ(symlink("nowhere", Path(strName).c_str()), 0);
  EXPECT_FALSE(Prepend("a"));
  EXPECT_EQ(Content("a"), Pattern(5));
  EXPECT_EQ(Entries().size(), 10001u);

  std::filesystem::remove(Path(names.back()));
  std::srand(kSeed);
  EXPECT_TRUE(Prepend("a"));
  EXPECT_EQ(Entries().size(), 10000u);
}

TEST_F(SpFile, Prepend_KeepsTheMode) {
  for (const mode_t nMode : {0600u, 0644u, 0755u, 0400u, 0444u, 04755u, 0666u, 0u}) {
    Write("a", Pattern(5));
    ASSERT_EQ(chmod(Path("a").c_str(), nMode), 0);
    EXPECT_TRUE(Prepend("a"));
    EXPECT_EQ(ModeOf("a"), nMode);
  }
}

TEST_F(SpFile, Prepend_KeepsOwnerAndGroup) {
  if (geteuid() != 0) FAIL() << "these tests run as root";
  Write("a", Pattern(5));
  ASSERT_EQ(chown(Path("a").c_str(), kNobody, 1), 0);
  ASSERT_EQ(chmod(Path("a").c_str(), 04750), 0);
  EXPECT_TRUE(Prepend("a"));
  struct stat status {};
  ASSERT_EQ(stat(Path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kNobody);
  EXPECT_EQ(status.st_gid, 1u);
  EXPECT_EQ(status.st_mode & 07777, 04750u);
}

TEST_F(SpFile, Prepend_ByAnotherUser_SucceedsWithThatUserAsOwnerAndNoSpecialBits) {
  Write("a", Pattern(5));
  ASSERT_EQ(chmod(Path("a").c_str(), 06755), 0);
  ASSERT_EQ(chmod(Path(".").c_str(), 0777), 0);
  EXPECT_TRUE(InChildAs(kNobody, [&] { return Prepend("a"); }));
  EXPECT_EQ(Content("a"), Headed(Pattern(5)));
  EXPECT_EQ(OwnerOf("a"), kNobody);
  EXPECT_EQ(ModeOf("a"), 0755u);
}

TEST_F(SpFile, Prepend_ByTheOwner_KeepsTheSpecialBits) {
  for (const std::size_t cbSize : {0u, 5u, 100000u}) {
    Write("a", Pattern(cbSize));
    ASSERT_EQ(chown(Path("a").c_str(), kNobody, kNobody), 0);
    ASSERT_EQ(chmod(Path("a").c_str(), 06755), 0);
    ASSERT_EQ(chmod(Path(".").c_str(), 0777), 0);
    EXPECT_TRUE(InChildAs(kNobody, [&] { return Prepend("a"); }));
    EXPECT_EQ(ModeOf("a"), 06755u) << cbSize;
    std::filesystem::remove(Path("a"));
  }
}

TEST_F(SpFile, Prepend_ByAnOwnerOutsideTheFilesGroup_DropsTheSpecialBits) {
  constexpr gid_t kGroupOfNobodyHere = 54321;
  Write("a", Pattern(5));
  ASSERT_EQ(chown(Path("a").c_str(), kNobody, kGroupOfNobodyHere), 0);
  ASSERT_EQ(chmod(Path("a").c_str(), 06750), 0);
  ASSERT_EQ(chmod(Path(".").c_str(), 0777), 0);
  EXPECT_TRUE(InChildAs(kNobody, [&] { return Prepend("a"); }));
  EXPECT_EQ(Content("a"), Headed(Pattern(5)));
  EXPECT_EQ(OwnerOf("a"), kNobody);
  EXPECT_EQ(ModeOf("a"), 0750u);
}

TEST_F(SpFile, Prepend_ThroughALink_ReplacesTheLinkAndLeavesItsTarget) {
  Write("real", Pattern(5));
  ASSERT_EQ(symlink("real", Path("link").c_str()), 0);
  EXPECT_TRUE(Prepend("link"));
  EXPECT_EQ(Content("link"), Headed(Pattern(5)));
  EXPECT_EQ(Content("real"), Pattern(5));
}

TEST_F(SpFile, Prepend_DiskFullAtEveryByte_KeepsTheSource) {
  const Bytes source = Pattern(2000);
  Write("a", source);
  for (std::size_t cbLimit = 0; cbLimit < 2048; ++cbLimit) {
    const C_FileSizeLimit limit(cbLimit);
    ASSERT_FALSE(Prepend("a")) << cbLimit;
    ASSERT_EQ(Content("a"), source) << cbLimit;
    ASSERT_THAT(Entries(), ElementsAre("a")) << cbLimit;
  }
  const C_FileSizeLimit limit(2048);
  EXPECT_TRUE(Prepend("a"));
  EXPECT_EQ(Content("a"), Headed(source));
}

TEST_F(SpFile, Prepend_FolderThatTakesNoFile_IsFalseAndKeepsTheSource) {
  Write("a", Pattern(5));
  ASSERT_EQ(chmod(Path(".").c_str(), 0755), 0);
  EXPECT_FALSE(InChildAs(kNobody, [&] { return Prepend("a"); }));
  EXPECT_EQ(Content("a"), Pattern(5));
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(SpFile, Prepend_FileThatMayNotBeRead_IsFalseAndCreatesNothing) {
  Write("a", Pattern(5));
  ASSERT_EQ(chmod(Path("a").c_str(), 0600), 0);
  ASSERT_EQ(chmod(Path(".").c_str(), 0777), 0);
  EXPECT_FALSE(InChildAs(kNobody, [&] { return Prepend("a"); }));
  EXPECT_EQ(Content("a"), Pattern(5));
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(SpFile, Prepend_WhenTheRenameIsRefused_KeepsTheSourceAndRemovesTheNewFile) {
  Write("a", Pattern(5));
  // In a sticky folder everybody may create files, but only the owner may replace one.
  ASSERT_EQ(chmod(Path(".").c_str(), 01777), 0);
  EXPECT_FALSE(InChildAs(kNobody, [&] { return Prepend("a"); }));
  EXPECT_EQ(Content("a"), Pattern(5));
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(SpFile, Prepend_LongestNameThatLeavesRoomForTheSuffix_Succeeds) {
  const std::string strName(255 - 9, 'x');
  Write(strName, Pattern(5));
  EXPECT_TRUE(Prepend(strName));
  EXPECT_EQ(Content(strName), Headed(Pattern(5)));
}

TEST_F(SpFile, Prepend_NameTooLongForAnySuffix_IsFalseAndKeepsTheSource) {
  const std::string strName(255, 'x');
  Write(strName, Pattern(5));
  EXPECT_FALSE(Prepend(strName));
  EXPECT_EQ(Content(strName), Pattern(5));
  EXPECT_THAT(Entries(), ElementsAre(strName));
}

TEST_F(SpFile, Prepend_PathOfMoreThan1024Characters_Succeeds) {
  std::string strFolder;
  for (int i = 0; i < 6; ++i) strFolder += std::string(200, 'd') + "/";
  std::filesystem::create_directories(Path(strFolder));
  Write(strFolder + "a", Pattern(5));
  EXPECT_TRUE(Prepend(strFolder + "a"));
  EXPECT_EQ(Content(strFolder + "a"), Headed(Pattern(5)));
}

TEST_F(SpFile, Prepend_NameWithFormatCharacters_IsTakenAsItIs) {
  Write("%s%n%x.kst", Pattern(5));
  EXPECT_TRUE(Prepend("%s%n%x.kst"));
  EXPECT_EQ(Content("%s%n%x.kst"), Headed(Pattern(5)));
  EXPECT_THAT(Entries(), ElementsAre("%s%n%x.kst"));
}

// ---- strip

TEST_F(SpFile, Strip_TakesAwayWhatPrependPutThere) {
  for (const std::size_t cbSize : {0u, 1u, 1023u, 1024u, 1025u, 5000u}) {
    Write("a", Pattern(cbSize));
    ASSERT_TRUE(Prepend("a"));
    EXPECT_TRUE(Strip("a", "b")) << cbSize;
    EXPECT_EQ(Content("b"), Pattern(cbSize)) << cbSize;
  }
}

TEST_F(SpFile, Strip_ReadsTheHeader) {
  Write("a", C_SpBytes().ID(33).Freq(11025).Take());
  C_SpHeader header;
  EXPECT_TRUE(StripSpHeader(&header, Path("a").c_str(), Path("b").c_str()));
  EXPECT_EQ(header.GetID(), 33);
  EXPECT_EQ(header.GetFreq(), 11025u);
}

TEST_F(SpFile, Strip_FileWithoutAHeader_IsCopiedWhole) {
  Write("a", Pattern(3000));
  EXPECT_TRUE(Strip("a", "b"));
  EXPECT_EQ(Content("b"), Pattern(3000));
  Write("a", C_SpBytes().Version(253).Stream({9}).Take());
  EXPECT_TRUE(Strip("a", "b"));
  EXPECT_EQ(Content("b"), C_SpBytes().Version(253).Stream({9}).Take());
}

TEST_F(SpFile, Strip_Version255_Takes48BytesAndLeavesTwoOfItsHeader) {
  Write("a", C_SpBytes().Version(255).Gap(0).Stream({1, 2, 3}).Take());
  EXPECT_TRUE(Strip("a", "b"));
  EXPECT_EQ(Content("b"), (Bytes{0, 0, 1, 2, 3}));
}

TEST_F(SpFile, Strip_HeaderCutShort_LeavesNothing) {
  for (const std::size_t cbSize : {22u, 30u, 47u, 48u}) {
    Write("a", C_SpBytes().Take(cbSize));
    EXPECT_TRUE(Strip("a", "b")) << cbSize;
    EXPECT_THAT(Content("b"), IsEmpty()) << cbSize;
  }
}

TEST_F(SpFile, Strip_MissingSource_IsFalseAndLeavesTheTargetAlone) {
  Write("b", {1, 2, 3});
  EXPECT_FALSE(Strip("missing", "b"));
  EXPECT_EQ(Content("b"), (Bytes{1, 2, 3}));
  EXPECT_FALSE(Strip("missing", "c"));
  EXPECT_THAT(Entries(), ElementsAre("b"));
}

TEST_F(SpFile, Strip_TargetThatCannotBeOpened_IsFalse) {
  Write("a", Pattern(5));
  EXPECT_FALSE(Strip("a", "no/such/folder"));
  C_SpHeader header;
  EXPECT_FALSE(StripSpHeader(&header, Path("a").c_str(), nullptr));
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(SpFile, Strip_ToAFullDisk_StillReportsThatTheTargetCouldBeOpened) {
  Write("a", Pattern(5000));
  C_SpHeader header;
  EXPECT_TRUE(StripSpHeader(&header, Path("a").c_str(), "/dev/full"));
}

TEST_F(SpFile, Strip_OntoItself_IsFalseAndKeepsTheSource) {
  Write("a", Headed(Pattern(5)));
  ASSERT_EQ(symlink("a", Path("soft").c_str()), 0);
  ASSERT_EQ(link(Path("a").c_str(), Path("hard").c_str()), 0);
  for (const char* pszTarget : {"a", "./a", "soft", "hard"}) {
    EXPECT_FALSE(Strip("a", pszTarget)) << pszTarget;
    EXPECT_EQ(Content("a"), Headed(Pattern(5))) << pszTarget;
  }
}

// ---- copy

TEST_F(SpFile, Copy_WritesTheHeaderAndTheWholeSource) {
  for (const std::size_t cbSize : {0u, 1u, 1023u, 1024u, 1025u}) {
    Write("a", Pattern(cbSize));
    EXPECT_TRUE(Copy("a", "b")) << cbSize;
    EXPECT_EQ(Content("b"), Headed(Pattern(cbSize))) << cbSize;
    EXPECT_EQ(Content("a"), Pattern(cbSize)) << cbSize;
  }
}

TEST_F(SpFile, Copy_SourceWithAHeader_KeepsIt) {
  Write("a", Headed(Pattern(5)));
  EXPECT_TRUE(Copy("a", "b"));
  EXPECT_EQ(Content("b"), Headed(Headed(Pattern(5))));
}

TEST_F(SpFile, Copy_ReplacesALongerTarget) {
  Write("a", {1});
  Write("b", Pattern(500));
  EXPECT_TRUE(Copy("a", "b"));
  EXPECT_EQ(Content("b"), Headed({1}));
}

TEST_F(SpFile, Copy_MissingSource_IsFalseAndLeavesTheTargetAlone) {
  Write("b", {1, 2, 3});
  EXPECT_FALSE(Copy("missing", "b"));
  EXPECT_EQ(Content("b"), (Bytes{1, 2, 3}));
}

TEST_F(SpFile, Copy_TargetThatCannotBeOpened_IsFalse) {
  Write("a", Pattern(5));
  EXPECT_FALSE(Copy("a", "no/such/folder"));
  EXPECT_FALSE(CopyWithSpHeader(Path("a").c_str(), nullptr, KestrelHeader()));
}

TEST_F(SpFile, Copy_DiskFullAtEveryByte_IsFalse) {
  Write("a", Pattern(1200));
  for (std::size_t cbLimit = 0; cbLimit < 1248; ++cbLimit) {
    const C_FileSizeLimit limit(cbLimit);
    ASSERT_FALSE(Copy("a", "b")) << cbLimit;
  }
  const C_FileSizeLimit limit(1248);
  EXPECT_TRUE(Copy("a", "b"));
  EXPECT_FALSE(CopyWithSpHeader(Path("a").c_str(), "/dev/full", KestrelHeader()));
}

TEST_F(SpFile, Copy_OntoItself_IsFalseAndEnds) {
  Write("a", Pattern(5000));
  ASSERT_EQ(link(Path("a").c_str(), Path("hard").c_str()), 0);
  EXPECT_FALSE(Copy("a", "a"));
  EXPECT_FALSE(Copy("a", "hard"));
  EXPECT_EQ(Content("a"), Pattern(5000));
}

TEST_F(SpFile, Copy_DirectoryAsSource_IsFalse) {
  std::filesystem::create_directory(Path("d"));
  EXPECT_FALSE(Copy("d", "b"));
}

}  // namespace
