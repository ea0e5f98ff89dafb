// SPDX-License-Identifier: Apache-2.0
//
// "tags list" and "tags export", which show the same to people and to programs.
#include <memory>
#include <span>
#include <utility>

#include "base/EachFile.h"
#include "base/ReplacedFile.h"
#include "tags/MarkExport.h"
#include "tags/Subcommands.h"

namespace tool {
namespace {

struct S_FormOptions {
  bool bJson = false;
  bool bCsv = false;
  bool bLabels = false;

  [[nodiscard]] tagMarkForm Form(tagMarkForm eUsual) const {
    if (bJson) return tagMarkForm::JSON;
    if (bCsv) return tagMarkForm::CSV;
    return bLabels ? tagMarkForm::LABELS : eUsual;
  }
};

struct S_ListOptions {
  S_BatchOptions batch;
  S_FormOptions forms;
};

struct S_ExportOptions {
  std::vector<std::string> files;
  S_FormOptions forms;
  std::string strOutput;
  bool bForce = false;
};

S_FileResult ResultOf(const S_SoundInfo& info) {
  S_FileResult result;
  result.dwRate = info.dwRate;
  if (info.qwFrames != kFramesUnknown) result.qwFrames = info.qwFrames;
  return result;
}

int List(const S_ListOptions& options, C_Console& console) {
  const S_BatchOptions& batch = options.batch;
  S_MarkView view;
  view.eForm = options.forms.Form(tagMarkForm::TABLE);
  view.bSeveral = batch.operands.size() != 1 || batch.bFolders || !batch.strList.empty();
  view.bColours = console.HasColours();
  view.Check();
  const PFN_PrintFile fnList = [&view](const std::string& strPath, C_FileOutput& output,
                                       C_FileWatch& /*watch*/) {
    const C_ShownMarks marks(strPath);
    marks.Write(view, [&output](std::string_view piece) { output.Print(piece); });
    return ResultOf(marks.Info());
  };
  return PrintFiles(batch, view.Rule(), fnList, console);
}

// Goes through the files one by one, which an output for all of them needs.
int Export(const S_ExportOptions& options, C_Console& console,
           const std::function<void(std::string_view)>& fnWrite) {
  S_MarkView view;
  view.eForm = options.forms.Form(tagMarkForm::CSV);
  view.bSeveral = options.files.size() > 1;
  view.bForImport = true;
  view.Check();
  const S_PrintRule rule = view.Rule();
  bool bAny = false;
  const int nExit = ForEachFile(options.files, console, [&](const std::string& strPath) {
    const C_ShownMarks marks(strPath);
    fnWrite(std::exchange(bAny, true) ? rule.strBetween : rule.strBefore);
    marks.Write(view, fnWrite);
  });
  fnWrite(bAny ? rule.strAfter : rule.strNothing);
  return nExit;
}

// Collects small pieces.
class C_Pieces {
 public:
  explicit C_Pieces(I_NewFile& file) : m_file(file) {}

  void Write(std::string_view piece) {
    m_strPieces += piece;
    if (m_strPieces.size() >= kEnough) Flush();
  }
  void Flush() {
    m_file.Write(std::as_bytes(std::span(m_strPieces)));
    m_strPieces.clear();
  }

 private:
  static constexpr std::size_t kEnough = 65536;
  I_NewFile& m_file;
  std::string m_strPieces;
};

// A file with only some of what was asked for does not appear.
int Export(const S_ExportOptions& options, C_Console& console) {
  if (options.strOutput.empty() || options.strOutput == kStandardStream) {
    return Export(options, console, [&](std::string_view piece) { console.Print(piece); });
  }
  C_ReplacedFile file(options.strOutput, options.bForce);
  C_Pieces pieces(file);
  const int nExit = Export(options, console, [&](std::string_view piece) { pieces.Write(piece); });
  pieces.Flush();
  if (nExit == 0) file.TakePlace();
  return nExit;
}

void AddFormOptions(CLI::App& command, S_FormOptions& options) {
  const C_Option json =
      AddFlag(command, "--json", options.bJson, "an array with an object for each file");
  const C_Option csv = AddFlag(command, "--csv", options.bCsv, "comma-separated values");
  const C_Option labels =
      AddFlag(command, "--labels", options.bLabels, "a label track, as sound editors have it");
  json.Excludes(csv).Excludes(labels);
  csv.Excludes(labels);
}

}  // namespace

void AddListCommand(C_CommandLine& commandLine, CLI::App& tags) {
  const auto options = std::make_shared<S_ListOptions>();
  CLI::App& command = commandLine.Add(
      tags,
      {"list",
       "show the marks of files",
       "Shows all marks. The table has them in the order of their places; values and JSON have "
       "one kind after the other, and a label track has them by their times. The numbers are those "
       "that \"tags remove\" "
       "takes. Marks that belong to a cue point which does not exist have no place and come last.",
       {{"voxtool tags list talk.wav", "show all marks of a file"},
        {"voxtool tags list -r archive", "show those of all sounds in a folder"},
        {"voxtool tags list --json talk.wav | jq '.[0].marks[].start'", "list their frames"}},
       [options](C_Console& console) { return List(*options, console); }});
  AddFileOptions(command, options->batch, "FILE");
  AddFormOptions(command, options->forms);
  AddThreadsOption(command, options->batch);
  AddQuietOption(command, options->batch);
}

void AddExportCommand(C_CommandLine& commandLine, CLI::App& tags) {
  const auto options = std::make_shared<S_ExportOptions>();
  CLI::App& command = commandLine.Add(
      tags,
      {"export",
       "write the marks of files for other programs",
       "Writes all marks as comma-separated values, or in the form that is asked for. \"tags "
       "import\" reads each of these forms back. Values and JSON hold all that marks have. A "
       "label track holds places and texts: ids, and what is rare, do not come back from it. "
       "Texts that are no UTF-8 are written as what they are in Windows-1252, with their bytes "
       "beside them (\"hex\"). Events that are read from labels are left out, because they come "
       "back with these.",
       {{"voxtool tags export talk.wav -o talk.csv", "write a table"},
        {"voxtool tags export talk.wav --labels -o talk.txt", "write a label track"},
        {"voxtool tags export *.wav --json", "print the marks of many files"}},
       [options](C_Console& console) { return Export(*options, console); }});
  AddOption(command, "FILE", options->files, "the files; \"-\" is standard input")
      .TypeName("FILE")
      .Required();
  AddFormOptions(command, options->forms);
  AddOption(command, "-o,--output", options->strOutput, "the file; standard output without it")
      .TypeName("FILE");
  AddFlag(command, "-f,--force", options->bForce, "replace an existing output");
}

}  // namespace tool
