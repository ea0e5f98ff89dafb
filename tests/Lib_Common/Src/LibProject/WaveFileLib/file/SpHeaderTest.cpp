// SPDX-License-Identifier: Apache-2.0
//
// The header in memory and in files: recognition, defaults, truncation, fixed offsets.
#include "file/SpHeader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FolderTest.h"
#include "SpBytes.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

class SpHeader : public C_FolderTest {
 protected:
  // Reads a header from a file of these bytes into *pHeader, which held something else before.
  bool Read(const Bytes& bytes, C_SpHeader* pHeader) {
    *pHeader = C_SpHeader(9, 1, 2, 3, 4, 5, 6, 7);
    return ReadSpHeader(pHeader, Write("header", bytes).c_str());
  }
  bool IsRecognised(const C_SpBytes& bytes) {
    C_SpHeader header;
    return Read(bytes.Take(), &header);
  }
  Bytes Written(const C_SpHeader& header) {
    const std::string strPath = Path("written");
    std::FILE* pFile = std::fopen(strPath.c_str(), "wb");
    EXPECT_TRUE(WriteSpHeader(header, pFile));
    EXPECT_EQ(std::fclose(pFile), 0);
    return Content("written");
  }
};

constexpr std::string_view kText("VOXELTRONIC SP");

TEST_F(SpHeader, Write_KestrelAt16000_GivesThese48Bytes) {
  C_SpHeader header;
  header.SetID(14);
  header.SetFreq(16000);
  Bytes expected = {0x00, 0xFF, 0x00, 0xFF, 0x56, 0x4F, 0x58, 0x45, 0x4C, 0x54,
                    0x52, 0x4F, 0x4E, 0x49, 0x43, 0x20, 0x53, 0x50, 0x00, 0x00,
                    0xFE, 0x02, 0x0E, 0x00, 0x10, 0x00, 0x80, 0x3E, 0x00, 0x00};
  expected.resize(48);
  EXPECT_EQ(Written(header), expected);
}

TEST_F(SpHeader, Default_IsVersion254Kind2Format16At8000) {
  const C_SpHeader header;
  EXPECT_EQ(header.GetVersion(), 254);
  EXPECT_EQ(header.GetKind(), 2);
  EXPECT_EQ(header.GetID(), 0);
  EXPECT_EQ(header.GetFormat(), 16);
  EXPECT_EQ(header.GetFreq(), 8000u);
  EXPECT_EQ(Written(header), C_SpBytes().ID(0).Freq(8000).Take());
}

TEST_F(SpHeader, Write_FullConstructor_PutsEveryFieldAtItsOffset) {
  const C_SpHeader header(0xA1, 0xB2B1, 0xC2C1, 0xD4D3D2D1, 0xE4E3E2E1, 0xF2F1, 0x77, 0x44332211);
  const Bytes bytes = Written(header);
  ASSERT_EQ(bytes.size(), 48u);
  EXPECT_EQ(bytes[20], 254);
  const Bytes fields(bytes.begin() + 21, bytes.end());
  EXPECT_THAT(fields, testing::ElementsAre(0xA1, 0xB1, 0xB2, 0xC1, 0xC2, 0xD1, 0xD2, 0xD3, 0xD4,
                                           0xE1, 0xE2, 0xE3, 0xE4, 0xF1, 0xF2, 0x77, 0x11, 0x22,
                                           0x33, 0x44, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(SpHeader, Write_TwiceAtTheStreamsPosition_GivesTwoHeaders) {
  const std::string strPath = Path("two");
  std::FILE* pFile = std::fopen(strPath.c_str(), "wb");
  EXPECT_TRUE(WriteSpHeader(C_SpHeader(), pFile));
  EXPECT_TRUE(WriteSpHeader(C_SpHeader(), pFile));
  std::fclose(pFile);
  EXPECT_EQ(Content("two").size(), 96u);
}

TEST_F(SpHeader, Write_ToAFullDisk_IsFalse) {
  std::FILE* pFile = std::fopen("/dev/full", "wb");
  ASSERT_NE(pFile, nullptr);
  std::setvbuf(pFile, nullptr, _IONBF, 0);
  EXPECT_FALSE(WriteSpHeader(C_SpHeader(), pFile));
  std::fclose(pFile);
}

TEST_F(SpHeader, Read_EveryField_ComesBack) {
  C_SpHeader header;
  const auto bytes = C_SpBytes()
                         .ID(0xB2B1)
                         .Format(0xC2C1)
                         .Freq(0xD4D3D2D1)
                         .Values(0xE4E3E2E1, 0xF2F1, 0x77, 0x44332211);
  ASSERT_TRUE(Read(bytes.Take(), &header));
  EXPECT_EQ(header,
            C_SpHeader(2, 0xB2B1, 0xC2C1, 0xD4D3D2D1, 0xE4E3E2E1, 0xF2F1, 0x77, 0x44332211));
  EXPECT_EQ(header.GetID(), 0xB2B1);
  EXPECT_EQ(header.GetFormat(), 0xC2C1);
  EXPECT_EQ(header.GetFreq(), 0xD4D3D2D1);
  EXPECT_EQ(header.GetValue30(), 0xE4E3E2E1);
  EXPECT_EQ(header.GetValue34(), 0xF2F1);
  EXPECT_EQ(header.GetValue36(), 0x77);
  EXPECT_EQ(header.GetValue37(), 0x44332211u);
  EXPECT_EQ(Written(header), bytes.Take());
}

TEST_F(SpHeader, Read_ReservedBytes_AreNotLookedAt) {
  Bytes bytes = C_SpBytes().Take();
  std::fill(bytes.begin() + 41, bytes.end(), std::uint8_t{0xEE});
  C_SpHeader header;
  ASSERT_TRUE(Read(bytes, &header));
  EXPECT_EQ(Written(header), C_SpBytes().Take());
}

TEST_F(SpHeader, Read_OlderText_IsAcceptedAndWrittenAsTheCurrentOne) {
  C_SpHeader header;
  ASSERT_TRUE(Read(C_SpBytes().Text("ORBITAL SPEECH").Take(), &header));
  EXPECT_EQ(Written(header), C_SpBytes().Text(kText).Take());
}

TEST_F(SpHeader, Read_TextIsComparedUpToItsNul) {
  EXPECT_TRUE(IsRecognised(C_SpBytes().Text(std::string_view("VOXELTRONIC SP\0Z", 16))));
  EXPECT_TRUE(IsRecognised(C_SpBytes().Text(std::string_view("ORBITAL SPEECH\0\xFF", 16))));
  EXPECT_FALSE(IsRecognised(C_SpBytes().Text("VOXELTRONIC SPZ")));
  EXPECT_FALSE(IsRecognised(C_SpBytes().Text("VOXELTRONIC SP  ")));
  EXPECT_FALSE(IsRecognised(C_SpBytes().Text("VOXELTRONIC S")));
  EXPECT_FALSE(IsRecognised(C_SpBytes().Text("voxeltronic sp")));
  EXPECT_FALSE(IsRecognised(C_SpBytes().Text("")));
  EXPECT_FALSE(IsRecognised(C_SpBytes().Text("ORBITAL SPEECHES")));
}

TEST_F(SpHeader, Read_TextWithoutTerminator_IsComparedWithinItsField) {
  // The version and kind fields would continue the text if the comparison read past its field.
  EXPECT_FALSE(IsRecognised(C_SpBytes().Text("VOXELTRONIC SPXX")));
}

TEST_F(SpHeader, Read_AnyBitOfSignatureAndTextFlipped_IsRefused) {
  const Bytes good = C_SpBytes().Take();
  for (std::size_t dwBit = 0; dwBit < 19 * 8; ++dwBit) {
    Bytes bytes = good;
    bytes[dwBit / 8] ^= static_cast<std::uint8_t>(1u << dwBit % 8);
    C_SpHeader header;
    EXPECT_FALSE(Read(bytes, &header)) << "bit " << dwBit;
  }
}

TEST_F(SpHeader, Read_OnlyVersions254And255_AreAccepted) {
  for (unsigned int dwVersion = 0; dwVersion < 256; ++dwVersion) {
    EXPECT_EQ(IsRecognised(C_SpBytes().Version(static_cast<std::uint8_t>(dwVersion))),
              dwVersion >= 254)
        << dwVersion;
  }
}

TEST_F(SpHeader, Read_OnlyKind2_IsAccepted) {
  for (unsigned int dwKind = 0; dwKind < 256; ++dwKind) {
    EXPECT_EQ(IsRecognised(C_SpBytes().Kind(static_cast<std::uint8_t>(dwKind))), dwKind == 2)
        << dwKind;
  }
}

TEST_F(SpHeader, Version255_SkipsTwoBytesAfterTheFormatWordAndReadsBackAs254) {
  C_SpHeader header;
  const auto bytes =
      C_SpBytes().Version(255).Gap(0xDEAD).Freq(16000).Values(0x01020304, 0x0506, 7, 0x08090A0B);
  ASSERT_TRUE(Read(bytes.Take(), &header));
  EXPECT_EQ(header.GetVersion(), 254);
  EXPECT_EQ(header, C_SpHeader(2, 14, 16, 16000, 0x01020304, 0x0506, 7, 0x08090A0B));
}

// The values that are read from a header that is cut at cbSize bytes and whose last fields begin
// dwShift bytes later.
C_SpHeader CutHeader(std::size_t cbSize, std::size_t dwShift) {
  const auto pick = [&](std::size_t dwEnd, auto whole, auto fallback) {
    return cbSize >= dwEnd ? whole : fallback;
  };
  return C_SpHeader(2, pick(24, std::uint16_t{14}, std::uint16_t{0}),
                    pick(26, std::uint16_t{0x1122}, std::uint16_t{16}),
                    pick(30 + dwShift, 0x33445566u, 8000u), pick(34 + dwShift, 0x778899AAu, 0u),
                    pick(36 + dwShift, std::uint16_t{0xBBCC}, std::uint16_t{0}),
                    pick(37 + dwShift, std::uint8_t{0xDD}, std::uint8_t{0}),
                    pick(41 + dwShift, 0xEEFF0011u, 0u));
}

TEST_F(SpHeader, Read_FileCutAtEveryByte_KeepsTheDefaultsOfMissingFields) {
  const auto bytes =
      C_SpBytes().Format(0x1122).Freq(0x33445566).Values(0x778899AA, 0xBBCC, 0xDD, 0xEEFF0011);
  for (std::size_t cbSize = 0; cbSize <= 48; ++cbSize) {
    C_SpHeader header;
    EXPECT_EQ(Read(bytes.Take(cbSize), &header), cbSize >= 22) << cbSize;
    EXPECT_EQ(header, cbSize >= 22 ? CutHeader(cbSize, 0) : C_SpHeader()) << cbSize;
  }
}

TEST_F(SpHeader, Read_Version255CutAtEveryByte_KeepsTheDefaultsOfMissingFields) {
  const auto bytes = C_SpBytes()
                         .Version(255)
                         .Gap(0xFFFF)
                         .Format(0x1122)
                         .Freq(0x33445566)
                         .Values(0x778899AA, 0xBBCC, 0xDD, 0xEEFF0011);
  for (std::size_t cbSize = 0; cbSize <= 50; ++cbSize) {
    C_SpHeader header;
    EXPECT_EQ(Read(bytes.Take(cbSize), &header), cbSize >= 22) << cbSize;
    EXPECT_EQ(header, cbSize >= 22 ? CutHeader(cbSize, 2) : C_SpHeader()) << cbSize;
  }
}

TEST_F(SpHeader, Read_WhenRefused_LeavesTheDefaults) {
  C_SpHeader header(9, 1, 2, 3, 4, 5, 6, 7);
  EXPECT_FALSE(ReadSpHeader(&header, Path("missing").c_str()));
  EXPECT_EQ(header, C_SpHeader());
  EXPECT_FALSE(Read(C_SpBytes().Kind(3).Take(), &header));
  EXPECT_EQ(header, C_SpHeader());
  EXPECT_FALSE(Read({}, &header));
  EXPECT_EQ(header, C_SpHeader());
}

TEST_F(SpHeader, Read_DirectoryOrNullName_IsFalse) {
  C_SpHeader header;
  EXPECT_FALSE(ReadSpHeader(&header, Path(".").c_str()));
  EXPECT_FALSE(ReadSpHeader(&header, nullptr));
  EXPECT_EQ(GetSpFileID(nullptr), 65535);
}

TEST_F(SpHeader, IdentifierOfAFile_Is65535WithoutAHeader) {
  EXPECT_EQ(GetSpFileID(Write("a", C_SpBytes().Take()).c_str()), 14);
  EXPECT_EQ(GetSpFileID(Write("b", C_SpBytes().ID(36).Take()).c_str()), 36);
  EXPECT_EQ(GetSpFileID(Write("c", C_SpBytes().ID(65535).Take()).c_str()), 65535);
  EXPECT_EQ(GetSpFileID(Write("d", C_SpBytes().Version(253).Take()).c_str()), 65535);
  EXPECT_EQ(GetSpFileID(Path("missing").c_str()), 65535);
  EXPECT_EQ(GetSpFileID(Write("e", C_SpBytes().Take(22)).c_str()), 0);
}

TEST_F(SpHeader, Dword24_HoldsTheFormatWordAndTheLowHalfOfTheFrequency) {
  const std::string strPath = Write("a", C_SpBytes().ID(14).Freq(16000).Take());
  EXPECT_EQ(ReadSpWord22(strPath.c_str()), 14);
  EXPECT_EQ(ReadSpDword24(strPath.c_str()), 0x3E800010u);
  EXPECT_EQ(ReadSpWord34(strPath.c_str()), 0);
  const std::string strDefault = Write("b", C_SpBytes().ID(0).Freq(8000).Take());
  EXPECT_EQ(ReadSpDword24(strDefault.c_str()), 524288016u);
}

TEST_F(SpHeader, Word34_IsThe16BitValue) {
  const auto bytes = C_SpBytes().Values(0, 0xABCD, 0, 0).Take();
  EXPECT_EQ(ReadSpWord34(Write("a", bytes).c_str()), 0xABCD);
}

TEST_F(SpHeader, WriteDword24_ReplacesFormatWordAndLowHalfOfTheFrequencyInPlace) {
  Bytes bytes = C_SpBytes().Freq(0x00AB3E80).Stream({1, 2, 3}).Take();
  const std::string strPath = Write("a", bytes);
  EXPECT_TRUE(WriteSpDword24(strPath.c_str(), 0x12345678));
  C_SpHeader header;
  ASSERT_TRUE(ReadSpHeader(&header, strPath.c_str()));
  EXPECT_EQ(header.GetFormat(), 0x5678);
  EXPECT_EQ(header.GetFreq(), 0x00AB1234u);
  bytes[24] = 0x78;
  bytes[25] = 0x56;
  bytes[26] = 0x34;
  bytes[27] = 0x12;
  EXPECT_EQ(Content("a"), bytes);
}

TEST_F(SpHeader, FixedOffsets_DoNotAskForASignature) {
  Bytes bytes(36);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i);
  const std::string strPath = Write("a", bytes);
  EXPECT_EQ(ReadSpWord22(strPath.c_str()), 0x1716);
  EXPECT_EQ(ReadSpDword24(strPath.c_str()), 0x1B1A1918u);
  EXPECT_EQ(ReadSpWord34(strPath.c_str()), 0x2322);
  EXPECT_TRUE(WriteSpDword24(strPath.c_str(), 0xFFFFFFFF));
  EXPECT_EQ(ReadSpDword24(strPath.c_str()), 0xFFFFFFFFu);
}

TEST_F(SpHeader, FixedOffsets_OfAFileThatCannotBeOpened_AreZero) {
  const std::string strPath = Path("missing");
  EXPECT_EQ(ReadSpWord22(strPath.c_str()), 0);
  EXPECT_EQ(ReadSpWord34(strPath.c_str()), 0);
  EXPECT_EQ(ReadSpDword24(strPath.c_str()), 0u);
  EXPECT_FALSE(WriteSpDword24(strPath.c_str(), 1));
  EXPECT_THAT(Entries(), testing::IsEmpty());
}

TEST_F(SpHeader, FixedOffsets_AfterTheEndOfTheFile_AreZero) {
  for (std::size_t cbSize = 0; cbSize <= 36; ++cbSize) {
    const std::string strPath = Write("a", Bytes(cbSize, 0xFF));
    EXPECT_EQ(ReadSpWord22(strPath.c_str()), cbSize >= 24 ? 0xFFFF : 0) << cbSize;
    EXPECT_EQ(ReadSpDword24(strPath.c_str()), cbSize >= 28 ? 0xFFFFFFFFu : 0u) << cbSize;
    EXPECT_EQ(ReadSpWord34(strPath.c_str()), cbSize >= 36 ? 0xFFFF : 0) << cbSize;
  }
}

TEST_F(SpHeader, WriteDword24_ToAFullDisk_IsFalse) { EXPECT_FALSE(WriteSpDword24("/dev/full", 1)); }

TEST_F(SpHeader, HeadersThatDifferInOneField_AreNotEqual) {
  const C_SpHeader header(1, 2, 3, 4, 5, 6, 7, 8);
  EXPECT_EQ(header, C_SpHeader(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_NE(header, C_SpHeader(9, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_NE(header, C_SpHeader(1, 9, 3, 4, 5, 6, 7, 8));
  EXPECT_NE(header, C_SpHeader(1, 2, 9, 4, 5, 6, 7, 8));
  EXPECT_NE(header, C_SpHeader(1, 2, 3, 9, 5, 6, 7, 8));
  EXPECT_NE(header, C_SpHeader(1, 2, 3, 4, 9, 6, 7, 8));
  EXPECT_NE(header, C_SpHeader(1, 2, 3, 4, 5, 9, 7, 8));
  EXPECT_NE(header, C_SpHeader(1, 2, 3, 4, 5, 6, 9, 8));
  EXPECT_NE(header, C_SpHeader(1, 2, 3, 4, 5, 6, 7, 9));
}

}  // namespace
