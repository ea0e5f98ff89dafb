// SPDX-License-Identifier: Apache-2.0
#include "SweptOperations.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <utility>

#include "CompressedBytes.h"
#include "DecodeToWav.h"
#include "ExampleSound.h"
#include "FileBytes.h"
#include "PublicOperations.h"
#include "WavFileFormat.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"
#include "file/SpHeader.h"
#include "file/WavFile.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::size_t kFrames = 640;
constexpr std::size_t kHeronFrames = 160;  // encoding takes many steps

C_SpHeader HeaderOf(tagAudioFileType eType) {
  C_SpHeader header;
  header.SetID(static_cast<unsigned short>(eType));
  header.SetFreq(16000);
  return header;
}
C_SpHeader KestrelHeader() { return HeaderOf(AUDIO_FILE_KESTREL); }

bool OpensAsWritten(tagAudioFileType eType) {
  return eType == AUDIO_FILE_WAVE || eType == AUDIO_FILE_VEMD;
}

C_SoundPtr AnnotatedSound(std::size_t nFrames = kFrames) {
  C_SoundPtr sound = ExampleSound({}, nFrames);
  AddAnnotations(*sound);
  return sound;
}
C_SoundPtr AnnotatedSoundFor(tagAudioFileType eType) {
  return AnnotatedSound(kHeronTypes.Has(eType) ? kHeronFrames : kFrames);
}

// Codec files hold a bare stream, or are containers when they are written without encoding.
enum class Form { Own, Container };

bool Write(I_WavData& sound, tagAudioFileType eType, const std::string& strPath,
           Form eForm = Form::Own) {
  return sound.Convert(eType, strPath.c_str(), eForm == Form::Own, false, nullptr, true, 0);
}

Bytes ContainerOf(I_WavData& sound, tagAudioFileType eType) {
  const C_TempFolder folder;
  const std::string strPath = folder.Path("made");
  if (!Write(sound, eType, strPath, Form::Container)) std::abort();
  return folder.Read("made");
}

Bytes FileOf(I_WavData& sound, tagAudioFileType eType) {
  const C_TempFolder folder;
  const std::string strPath = folder.Path("made");
  if (!Write(sound, eType, strPath)) std::abort();
  if (!OpensAsWritten(eType) && !PrependSpHeader(HeaderOf(eType), strPath.c_str())) std::abort();
  return folder.Read("made");
}

// With the factory, which makes a second attempt when the first one fails.
C_WavFilePtr LoadWithFactory(const char* pszPath, bool bKeepEncoded) {
  C_WavFileFormat format;
  return C_WavFilePtr(format.CreateWavFile(pszPath, true, bKeepEncoded, nullptr, nullptr));
}

// With one attempt of one class.
template <typename File>
C_WavFilePtr LoadOnce(const char* pszPath, bool bKeepEncoded) {
  auto* const pFile = new File;
  C_WavFilePtr file(pFile);
  if (!pFile->LoadByName(pszPath, bKeepEncoded, nullptr, nullptr)) file.reset();
  return file;
}

using Loader = C_WavFilePtr (*)(const char* pszPath, bool bKeepEncoded);

// Loads a file.
class C_LoadOperation : public C_SweptOperation {
 public:
  C_LoadOperation(const C_TempFolder& folder, Bytes source, bool bKeepEncoded,
                  Loader pfnLoad = LoadWithFactory)
      : C_SweptOperation(folder), m_bKeepEncoded(bKeepEncoded), m_pfnLoad(pfnLoad) {
    m_source = std::move(source);
    Prepare();
    if (!C_LoadOperation::Run()) std::abort();
    m_loaded = Loaded();
  }
  bool Run() override {
    m_file = m_pfnLoad(Source().c_str(), m_bKeepEncoded);
    if (m_file == nullptr) return false;
    m_nCuePoints = InfoOf<I_WavDataCueInfo>(WAV_DATA_INFO_CUE).GetCuePointCount();
    m_nLabels = InfoOf<I_WavDataListInfo>(WAV_DATA_INFO_LIST).GetLabelCount();
    return true;
  }
  bool IsWhole() override { return Loaded() == m_loaded; }

 private:
  void Forget() override { m_file.reset(); }
  template <typename Info>
  [[nodiscard]] Info& InfoOf(tagWavDataInfo eKind) const {
    void* pInfo = nullptr;
    if (!m_file->GetDataInfo(eKind, &pInfo)) std::abort();
    return *static_cast<Info*>(pInfo);
  }
  // Everything that was loaded: a WAV file of the sound has its samples, its annotations, loops and
  // extra chunks. Cue points and labels of others would be missing in it, so they are counted.
  [[nodiscard]] Bytes Loaded() const {
    // No file is written of a sound without samples.
    if (m_file->GetWavData()->GetBufferLength() == 0) return {};
    Bytes loaded = FileOf(*m_file->GetWavData(), AUDIO_FILE_WAVE);
    loaded.push_back(static_cast<std::uint8_t>(m_nCuePoints));
    loaded.push_back(static_cast<std::uint8_t>(m_nLabels));
    return loaded;
  }

  bool m_bKeepEncoded;
  Loader m_pfnLoad;
  C_WavFilePtr m_file;
  int m_nCuePoints = 0;
  int m_nLabels = 0;
  Bytes m_loaded;
};

// What a file is written over: nothing, another file, or the file that the sound came from.
enum class Onto { Nothing, AnotherFile, Itself };

// Writes a sound as a file.
class C_SaveOperation : public C_SweptOperation {
 public:
  C_SaveOperation(const C_TempFolder& folder, tagAudioFileType eType, Form eForm, Onto eOnto)
      : C_SweptOperation(folder),
        m_eType(eType),
        m_eForm(eForm),
        m_bOntoSource(eOnto == Onto::Itself),
        m_sound(AnnotatedSoundFor(eType)) {
    if (m_bOntoSource) {
      m_source = eForm == Form::Own ? FileOf(*m_sound, eType) : ContainerOf(*m_sound, eType);
    }
    if (eOnto == Onto::AnotherFile) m_replaced = Bytes(3000, std::uint8_t{'x'});
    Prepare();
    if (m_bOntoSource) LoadSource();
    if (!C_SaveOperation::Run()) std::abort();
    m_expected = Written();
  }
  bool Run() override {
    return Write(*m_sound, m_eType, m_bOntoSource ? Source() : Target(), m_eForm);
  }
  bool IsWhole() override { return Written() == m_expected; }

 private:
  [[nodiscard]] Bytes Written() const { return m_bOntoSource ? ReadSource() : ReadTarget(); }
  // What a user does who edits a file: loads it, changes a sample, and writes the sound under the
  // same name.
  void LoadSource() {
    C_WavFileFormat format;
    const C_WavFilePtr file(format.CreateWavFile(Source().c_str(), true, false, nullptr, nullptr));
    if (file == nullptr) std::abort();
    if (!m_sound->CopyWavData(file->GetWavData())) std::abort();
    m_sound->GetBuffer()[100] ^= 0xFF;
  }

  tagAudioFileType m_eType;
  Form m_eForm;
  bool m_bOntoSource;
  C_SoundPtr m_sound;
  Bytes m_expected;
};

// The process is nobody while this lives.
class C_AsNobody {
 public:
  C_AsNobody() {
    if (seteuid(kNobody) != 0) std::abort();
  }
  ~C_AsNobody() {
    if (seteuid(0) != 0) std::abort();
  }
  C_AsNobody(const C_AsNobody&) = delete;
  C_AsNobody& operator=(const C_AsNobody&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
};

// Writes over a file of somebody else in a folder that all share. It may be written, but no other
// file may take its place.
class C_SaveInPlaceOperation : public C_SaveOperation {
 public:
  C_SaveInPlaceOperation(const C_TempFolder& folder, tagAudioFileType eType)
      : C_SaveOperation(folder, eType, Form::Own, Onto::AnotherFile), m_new(ReadTarget()) {
    Prepare();
    if (!C_SaveInPlaceOperation::Run() || ReadTarget() != m_new) std::abort();
  }
  bool Run() override {
    const C_AsNobody nobody;
    return C_SaveOperation::Run();
  }
  // Where the file is partial, the whole new one is beside it.
  [[nodiscard]] bool IsEverythingKept() const override {
    const auto beside = FilesBeside();
    if (beside.empty()) return C_SaveOperation::IsEverythingKept();
    return beside.size() == 1 && FileBytes(beside.front().string()) == m_new;
  }
  [[nodiscard]] bool MayStay(const std::string& strPath, bool bDone) const override {
    return C_SaveOperation::MayStay(strPath, bDone) || (!bDone && FileBytes(strPath) == m_new);
  }

 private:
  [[nodiscard]] std::vector<std::filesystem::path> FilesBeside() const {
    std::vector<std::filesystem::path> beside;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
      if (!C_SaveOperation::MayStay(entry.path().string(), true)) beside.push_back(entry.path());
    }
    return beside;
  }
  void Forget() override {
    for (const auto& path : FilesBeside()) std::filesystem::remove(path);
  }
  void Arrange() override {
    using std::filesystem::perms;
    std::filesystem::permissions(m_folder.Path(), perms::all | perms::sticky_bit);
    std::filesystem::permissions(Target(), static_cast<perms>(0666));
  }

  Bytes m_new;
};

// Makes one file from another with a single call.
class C_FileOperation : public C_SweptOperation {
 public:
  // Stripping a header only reports whether its target could be opened.
  enum class Reports { AllThatWasDone, OnlyTheOpening };
  using Action = std::function<bool(C_FileOperation&)>;
  C_FileOperation(const C_TempFolder& folder, Bytes source, Action action, Reports eReports)
      : C_SweptOperation(folder), m_action(std::move(action)), m_eReports(eReports) {
    m_source = std::move(source);
    Prepare();
    if (!C_FileOperation::Run()) std::abort();
    m_expected = Result();
  }
  bool Run() override { return m_action(*this); }
  bool IsWhole() override {
    const Bytes result = Result();
    if (m_eReports == Reports::AllThatWasDone) return result == m_expected;
    return result.size() <= m_expected.size() &&
           std::equal(result.begin(), result.end(), m_expected.begin());
  }

 private:
  // An operation without a target changes its source.
  [[nodiscard]] Bytes Result() const {
    return std::filesystem::exists(Target()) ? ReadTarget() : ReadSource();
  }
  Action m_action;
  Reports m_eReports;
  Bytes m_expected;
};

// Overwrites four bytes of a header in place. When it fails, some of them may be the new ones.
class C_FieldOperation : public C_SweptOperation {
 public:
  explicit C_FieldOperation(const C_TempFolder& folder, Bytes source) : C_SweptOperation(folder) {
    m_source = std::move(source);
    m_expected = m_source;
    std::copy(kNew.begin(), kNew.end(), m_expected.begin() + kOffset);
    Prepare();
    if (!C_FieldOperation::Run() || !C_FieldOperation::IsWhole()) std::abort();
  }
  bool Run() override { return WriteSpDword24(Source().c_str(), 0x12345678); }
  bool IsWhole() override { return ReadSource() == m_expected; }
  [[nodiscard]] bool IsEverythingKept() const override {
    Bytes now = ReadSource();
    if (now.size() != m_source.size()) return false;
    for (std::size_t i = 0; i < kNew.size(); ++i) {
      std::uint8_t& byNow = now[kOffset + i];
      if (byNow == kNew[i]) byNow = m_source[kOffset + i];
    }
    return now == m_source;
  }

 private:
  static constexpr std::size_t kOffset = 24;
  static constexpr std::array<std::uint8_t, 4> kNew = {0x78, 0x56, 0x34, 0x12};
  Bytes m_expected;
};

bool Prepend(C_FileOperation& operation) {
  return PrependSpHeader(KestrelHeader(), operation.Source().c_str());
}

bool Strip(C_FileOperation& operation) {
  C_SpHeader header;
  return StripSpHeader(&header, operation.Source().c_str(), operation.Target().c_str());
}

bool CopyWithHeader(C_FileOperation& operation) {
  return CopyWithSpHeader(operation.Source().c_str(), operation.Target().c_str(), KestrelHeader());
}

bool DecodeForPlayer(C_FileOperation& operation) {
  return DecodeToWav(operation.Source().c_str(), operation.Target().c_str()) == 0;
}

Bytes BareKestrel() {
  Bytes bytes = FileOf(*AnnotatedSound(), AUDIO_FILE_KESTREL);
  bytes.erase(bytes.begin(), bytes.begin() + C_SpHeader::kBytes);
  return bytes;
}

using Maker = std::function<std::unique_ptr<C_SweptOperation>(const C_TempFolder&)>;

Maker Load(tagAudioFileType eType, Loader pfnLoad = LoadWithFactory) {
  return [=](const auto& folder) {
    return std::make_unique<C_LoadOperation>(folder, FileOf(*AnnotatedSound(), eType), true,
                                             pfnLoad);
  };
}
// Cut within the samples, which come right after the format.
Bytes CutFile(tagAudioFileType eType) {
  Bytes bytes = FileOf(*AnnotatedSound(), eType);
  bytes.resize(kFrames);
  return bytes;
}
Maker LoadCut(tagAudioFileType eType, Loader pfnLoad = LoadWithFactory) {
  return [=](const auto& folder) {
    return std::make_unique<C_LoadOperation>(folder, CutFile(eType), true, pfnLoad);
  };
}
Maker LoadCompressed(Loader pfnLoad = LoadWithFactory) {
  return [=](const auto& folder) {
    const S_Blocks blocks = OneOfEachKind().front();
    return std::make_unique<C_LoadOperation>(
        folder, CompressedWav(blocks, RampBytes(std::size_t{9} * blocks.wBlockAlign)).Take(), true,
        pfnLoad);
  };
}
Maker LoadContainer(tagAudioFileType eType, bool bKeepEncoded, Loader pfnLoad = LoadWithFactory) {
  return [=](const auto& folder) {
    return std::make_unique<C_LoadOperation>(folder, ContainerOf(*AnnotatedSound(), eType),
                                             bKeepEncoded, pfnLoad);
  };
}
Maker Save(tagAudioFileType eType, Form eForm = Form::Own, Onto eOnto = Onto::Nothing) {
  return [=](const auto& folder) {
    return std::make_unique<C_SaveOperation>(folder, eType, eForm, eOnto);
  };
}
Maker SaveInPlace(tagAudioFileType eType) {
  return
      [=](const auto& folder) { return std::make_unique<C_SaveInPlaceOperation>(folder, eType); };
}
Maker Files(Bytes (*pfnSource)(), bool (*pfnAction)(C_FileOperation&),
            C_FileOperation::Reports eReports = C_FileOperation::Reports::AllThatWasDone) {
  return [=](const auto& folder) {
    return std::make_unique<C_FileOperation>(folder, pfnSource(), pfnAction, eReports);
  };
}
Maker WriteField(Bytes (*pfnSource)()) {
  return
      [=](const auto& folder) { return std::make_unique<C_FieldOperation>(folder, pfnSource()); };
}
Bytes KestrelFile() { return FileOf(*AnnotatedSound(), AUDIO_FILE_KESTREL); }

std::map<std::string, Maker> ClassMakers() {
  return {
      {"LoadWave", Load(AUDIO_FILE_WAVE)},
      {"LoadVemd", Load(AUDIO_FILE_VEMD)},
      {"LoadKestrel", Load(AUDIO_FILE_KESTREL)},
      {"LoadCutWave", LoadCut(AUDIO_FILE_WAVE)},
      {"LoadCutVemdAtOnce", LoadCut(AUDIO_FILE_VEMD, LoadOnce<C_WavFile>)},
      {"LoadCompressed", LoadCompressed()},
      {"LoadKestrelContainer", LoadContainer(AUDIO_FILE_KESTREL, false)},
      {"LoadKestrelContainerAsStored", LoadContainer(AUDIO_FILE_KESTREL, true)},
      {"LoadHeron", Load(AUDIO_FILE_HERON_4BIT)},
      {"LoadHeronContainer", LoadContainer(AUDIO_FILE_HERON_3BIT, false)},
      {"LoadWaveAtOnce", Load(AUDIO_FILE_WAVE, LoadOnce<C_WavFile>)},
      {"LoadCompressedAtOnce", LoadCompressed(LoadOnce<C_WavFile>)},
      {"LoadKestrelAtOnce", Load(AUDIO_FILE_KESTREL, LoadOnce<C_KestrelFile>)},
      {"LoadKestrelContainerAtOnce",
       LoadContainer(AUDIO_FILE_KESTREL, false, LoadOnce<C_KestrelFile>)},
      {"LoadHeronContainerAsStoredAtOnce",
       LoadContainer(AUDIO_FILE_HERON_3BIT, true, LoadOnce<C_Heron3BitFile>)},
      {"SaveWave", Save(AUDIO_FILE_WAVE)},
      {"SaveVemd", Save(AUDIO_FILE_VEMD)},
      {"SaveKestrel", Save(AUDIO_FILE_KESTREL)},
      {"SaveKestrelContainer", Save(AUDIO_FILE_KESTREL, Form::Container)},
      {"SaveHeron", Save(AUDIO_FILE_HERON_2BIT)},
      {"SaveHeronContainer", Save(AUDIO_FILE_HERON_2BIT, Form::Container)},
      {"SaveWaveOntoAnother", Save(AUDIO_FILE_WAVE, Form::Own, Onto::AnotherFile)},
      {"SaveWaveOntoItself", Save(AUDIO_FILE_WAVE, Form::Own, Onto::Itself)},
      {"SaveVemdOntoItself", Save(AUDIO_FILE_VEMD, Form::Own, Onto::Itself)},
      {"SaveVemdOntoAnother", Save(AUDIO_FILE_VEMD, Form::Own, Onto::AnotherFile)},
      {"SaveKestrelContainerOntoAnother",
       Save(AUDIO_FILE_KESTREL, Form::Container, Onto::AnotherFile)},
      {"SaveHeronContainerOntoAnother",
       Save(AUDIO_FILE_HERON_5BIT, Form::Container, Onto::AnotherFile)},
      {"SaveHeronOntoItself", Save(AUDIO_FILE_HERON_6BIT, Form::Own, Onto::Itself)},
      {"SaveKestrelOntoAnother", Save(AUDIO_FILE_KESTREL, Form::Own, Onto::AnotherFile)},
      {"SaveKestrelOntoItself", Save(AUDIO_FILE_KESTREL, Form::Own, Onto::Itself)},
      {"SaveKestrelContainerOntoItself", Save(AUDIO_FILE_KESTREL, Form::Container, Onto::Itself)},
      {"SaveHeronOntoAnother", Save(AUDIO_FILE_HERON_2BIT, Form::Own, Onto::AnotherFile)},
      {"SaveHeronContainerOntoItself", Save(AUDIO_FILE_HERON_2BIT, Form::Container, Onto::Itself)},
      {"SaveWaveInPlace", SaveInPlace(AUDIO_FILE_WAVE)},
      {"SaveVemdInPlace", SaveInPlace(AUDIO_FILE_VEMD)},
      {"PrependHeader", Files(BareKestrel, Prepend)},
      {"StripHeader", Files(KestrelFile, Strip, C_FileOperation::Reports::OnlyTheOpening)},
      {"CopyWithHeader", Files(BareKestrel, CopyWithHeader)},
      {"WriteDword24", WriteField(KestrelFile)},
      {"DecodeKestrelForPlayer", Files(KestrelFile, DecodeForPlayer)},
      {"DecodeBareKestrelForPlayer", Files(BareKestrel, DecodeForPlayer)},
  };
}

const std::map<std::string, Maker>& Makers() {
  static const std::map<std::string, Maker> makers = [] {
    std::map<std::string, Maker> all = ClassMakers();
    all.merge(PublicOperations());
    return all;
  }();
  return makers;
}

}  // namespace

void C_SweptOperation::Prepare() {
  Forget();
  std::filesystem::remove(m_strTarget);
  m_folder.Write("source", m_source);
  if (m_replaced) m_folder.Write("target", *m_replaced);
  Arrange();
}

bool C_SweptOperation::IsEverythingKept() const {
  return m_folder.Read("source") == m_source &&
         (!m_replaced || m_folder.Read("target") == *m_replaced);
}

std::vector<std::string> SweptOperationNames() {
  std::vector<std::string> names;
  for (const auto& [strName, maker] : Makers()) names.push_back(strName);
  return names;
}

std::unique_ptr<C_SweptOperation> MakeSweptOperation(const std::string& strName,
                                                     const C_TempFolder& folder) {
  return Makers().at(strName)(folder);
}

std::string NameOfSweep(const testing::TestParamInfo<C_Sweep>& info) {
  const auto& [strName, bFromThenOn] = info.param;
  return strName + (bFromThenOn ? "_FromThenOn" : "_Once");
}
