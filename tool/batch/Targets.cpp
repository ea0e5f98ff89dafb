// SPDX-License-Identifier: Apache-2.0
#include "batch/Targets.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>
#include <unordered_set>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "batch/SoundNames.h"
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

// The hashes that more than one path has. Two paths of one hash are as rare as harmless here.
std::unordered_set<std::size_t> Repeated(const C_HashedPaths& paths) {
  std::unordered_set<std::size_t> repeated;
  for (std::size_t i = 1; i < paths.size(); ++i) {
    if (paths[i].nHash == paths[i - 1].nHash) repeated.insert(paths[i].nHash);
  }
  return repeated;
}

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

std::string TargetBelow(const std::string& strFolder, const S_ListedFile& file,
                        std::string_view extension) {
  return (std::filesystem::path(strFolder) / WithExtension(file.Kept(), extension)).string();
}

std::string WholeNameBelow(const std::string& strFolder, const S_ListedFile& file,
                           std::string_view extension) {
  return (std::filesystem::path(strFolder) / std::string(file.Kept()).append(extension)).string();
}

PFN_TargetOf TargetsBelow(const std::string& strFolder, std::string_view extension,
                          const std::vector<S_ListedFile>& files) {
  const auto Plain = [strFolder, strExtension = std::string(extension)](const S_ListedFile& file) {
    return PlainPath(TargetBelow(strFolder, file, strExtension));
  };
  const auto repeated = std::make_shared<const std::unordered_set<std::size_t>>(
      Repeated(Hashed(files.size(), [&](std::size_t i) { return Plain(files[i]); })));
  return [strFolder, strExtension = std::string(extension), Plain,
          repeated](const S_ListedFile& file) {
    const bool bAlone =
        repeated->empty() || !repeated->contains(std::hash<std::string>()(Plain(file)));
    return bAlone ? TargetBelow(strFolder, file, strExtension)
                  : WholeNameBelow(strFolder, file, strExtension);
  };
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
