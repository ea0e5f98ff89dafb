// SPDX-License-Identifier: Apache-2.0
#include "batch/Targets.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <memory>
#include <span>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "batch/TargetNames.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

// A path of one of the files. Only its hash is kept, because there may be millions.
struct S_HashedPath {
  std::size_t nHash;
  std::size_t nFile;
};

using C_HashedPaths = std::vector<S_HashedPath>;

template <typename PathOf>
C_HashedPaths Hashed(std::size_t nFiles, const PathOf& pathOf) {
  C_HashedPaths paths;
  paths.reserve(nFiles);
  for (std::size_t i = 0; i < nFiles; ++i) {
    paths.push_back({std::hash<std::string>()(pathOf(i)), i});
  }
  std::ranges::sort(paths, [](const S_HashedPath& a, const S_HashedPath& b) {
    return a.nHash != b.nHash ? a.nHash < b.nHash : a.nFile < b.nFile;
  });
  ThrowIfInterrupted();
  return paths;
}

// Which name each file has, where it is not the first one.
class C_ChosenNames {
 public:
  C_ChosenNames(std::string strFolder, std::string_view extension)
      : m_names(std::move(strFolder), extension) {}

  [[nodiscard]] std::string Name(const S_ListedFile& file) const {
    return m_names.Name(file, Choice(file));
  }
  // Gives other names to files that have the same one. False when there are none to give.
  bool PartSame(const std::vector<S_ListedFile>& files) {
    bool bParted = false;
    const C_HashedPaths paths =
        Hashed(files.size(), [&](std::size_t i) { return PlainPath(Name(files[i])); });
    for (auto first = paths.begin(); first != paths.end();) {
      const auto last = std::find_if(first, paths.end(), [nHash = first->nHash](const auto& path) {
        return path.nHash != nHash;
      });
      if (last - first > 1 && Part(files, {first, last})) bParted = true;
      first = last;
    }
    return bParted;
  }

 private:
  [[nodiscard]] static std::size_t Key(const S_ListedFile& file) {
    return std::hash<std::string>()(file.strPath);
  }
  [[nodiscard]] unsigned Choice(const S_ListedFile& file) const {
    const auto choice = m_choices.empty() ? m_choices.end() : m_choices.find(Key(file));
    return choice == m_choices.end() ? 0 : choice->second;
  }
  // Those that have their first names go on before those that have given way already.
  bool Part(const std::vector<S_ListedFile>& files, std::span<const S_HashedPath> same) {
    std::vector<std::size_t> parted;
    unsigned nLowest = std::numeric_limits<unsigned>::max();
    for (const S_HashedPath& path : same) {
      const unsigned nChoice = Choice(files[path.nFile]);
      if (nChoice > nLowest || m_names.Name(files[path.nFile], nChoice + 1).empty()) continue;
      if (nChoice < nLowest) parted.clear();
      nLowest = nChoice;
      parted.push_back(path.nFile);
    }
    for (const std::size_t nFile : parted) m_choices[Key(files[nFile])] = nLowest + 1;
    return !parted.empty();
  }

  C_TargetNames m_names;
  // By the hash of the path. Two paths of one hash are as rare as harmless here.
  std::unordered_map<std::size_t, unsigned> m_choices;
};

class C_ClashSearch {
 public:
  C_ClashSearch(const std::vector<S_ListedFile>& files, const PFN_TargetOf& fnTargetOf)
      : m_files(files),
        m_fnTargetOf(fnTargetOf),
        m_targets(Hashed(files.size(), [this](std::size_t i) { return Target(i); })),
        m_sources(Hashed(files.size(), [this](std::size_t i) { return Source(i); })) {}

  void RefuseSameTargets() const {
    for (std::size_t i = 1; i < m_targets.size(); ++i) {
      const auto [nHashA, nA] = m_targets[i - 1];
      const auto [nHashB, nB] = m_targets[i];
      if (nHashA != nHashB || Target(nA) != Target(nB)) continue;
      throw C_UsageFailure(m_files[nB].strPath, "has the same target as " + m_files[nA].strPath,
                           m_fnTargetOf(m_files[nB]));
    }
  }
  void RefuseTargetsThatAreSources() const {
    auto source = m_sources.begin();
    for (const S_HashedPath& target : m_targets) {
      while (source != m_sources.end() && source->nHash < target.nHash) ++source;
      for (auto same = source; same != m_sources.end() && same->nHash == target.nHash; ++same) {
        RefuseSource(target.nFile, same->nFile);
      }
    }
  }

 private:
  [[nodiscard]] std::string Target(std::size_t nFile) const {
    return PlainPath(m_fnTargetOf(m_files[nFile]));
  }
  [[nodiscard]] std::string Source(std::size_t nFile) const {
    return PlainPath(m_files[nFile].strPath);
  }
  void RefuseSource(std::size_t nTarget, std::size_t nSource) const {
    if (nTarget == nSource || Target(nTarget) != Source(nSource)) return;
    throw C_UsageFailure(m_files[nTarget].strPath, "its target is to be read as well",
                         m_files[nSource].strPath);
  }

  const std::vector<S_ListedFile>& m_files;
  const PFN_TargetOf& m_fnTargetOf;
  C_HashedPaths m_targets;
  C_HashedPaths m_sources;
};

}  // namespace

PFN_TargetOf TargetsBelow(const std::string& strFolder, std::string_view extension,
                          const std::vector<S_ListedFile>& files) {
  const auto names = std::make_shared<C_ChosenNames>(strFolder, extension);
  while (names->PartSame(files)) {
  }
  return [names](const S_ListedFile& file) { return names->Name(file); };
}

std::string PlainPath(const std::string& strPath) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(strPath, error);
  return (error ? std::filesystem::path(strPath) : path).lexically_normal().string();
}

void RefuseClashes(const std::vector<S_ListedFile>& files, const PFN_TargetOf& fnTargetOf) {
  if (files.size() < 2) return;
  const C_ClashSearch search(files, fnTargetOf);
  search.RefuseSameTargets();
  search.RefuseTargetsThatAreSources();
}

bool MayWrite(const std::string& strTarget, tagExisting eExisting) {
  struct stat status {};
  if (strTarget == kStandardStream || stat(strTarget.c_str(), &status) != 0) return true;
  if (!S_ISREG(status.st_mode)) {
    throw C_Failure(strTarget, "cannot be written", "it is no regular file");
  }
  if (eExisting == tagExisting::EXISTING_REPLACED) return true;
  if (eExisting == tagExisting::EXISTING_SKIPPED) return false;
  throw C_TargetInWay(strTarget, "exists", "-f replaces it");
}

void MakeFolder(const std::string& strFolder) {
  std::error_code error;
  std::filesystem::create_directories(strFolder, error);
  if (IsOfDisk(error.value())) throw C_DiskFailure(strFolder, "cannot be made", error.message());
  if (error) throw C_Failure(strFolder, "cannot be made", error.message());
}

void MakeFoldersOf(const std::string& strTarget) {
  const std::filesystem::path folder = std::filesystem::path(strTarget).parent_path();
  if (!folder.empty()) MakeFolder(folder.string());
}

}  // namespace tool
