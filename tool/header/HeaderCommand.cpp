// SPDX-License-Identifier: Apache-2.0
#include "header/HeaderCommand.h"

#include <algorithm>
#include <memory>

#include "base/EachFile.h"
#include "base/Failure.h"
#include "base/JsonText.h"
#include "base/TextTable.h"
#include "base/Utf8.h"
#include "header/HeaderEdit.h"
#include "options/WholeNumber.h"
#include "sound/HeaderFields.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

struct S_ShowOptions {
  std::vector<std::string> files;
  bool bJson = false;
};

struct S_EditOptions {
  std::vector<std::string> files;
  std::string strOutput;
  std::string strCodec = "kestrel";
  std::uint32_t dwRate = 0;
  bool bForce = false;
  bool bAnyway = false;
};

std::vector<S_HeaderFields> HeadersIn(const std::string& strPath) {
  const C_SoundInputPtr sound = OpenSound(strPath);
  auto headers = HeaderFieldsOf(sound->Info().headers.value_or(voxplay::Headers{}));
  if (!headers.empty()) return headers;
  throw C_Failure(NameOf(strPath), "there is no header", "it is " + sound->Info().strFormat);
}

std::string FieldTable(const S_HeaderFields& header) {
  C_TextTable table("lr");
  for (const auto& field : header.fields) {
    std::string strName = field.strKey;
    std::ranges::replace(strName, '_', ' ');
    table.Add({strName, std::to_string(field.dwValue)});
  }
  constexpr std::size_t kIndent = 4;
  return "  " + header.strName + '\n' + table.Text(kIndent);
}

C_Json FieldsJson(const std::string& strPath, const std::vector<S_HeaderFields>& headers) {
  C_Json json = {{"schema", kJsonSchema}, {"file", strPath}};
  for (const S_HeaderFields& header : headers) {
    for (const auto& field : header.fields) json[header.strKey][field.strKey] = field.dwValue;
  }
  return json;
}

int Show(const S_ShowOptions& options, C_Console& console) {
  C_Json array = C_Json::array();
  bool bFirst = true;
  const int nExit = ForEachFile(options.files, console, [&](const std::string& strPath) {
    const auto headers = HeadersIn(strPath);
    array.push_back(FieldsJson(strPath, headers));
    if (options.bJson) return;
    if (!std::exchange(bFirst, false)) console.Print("\n");
    console.Print(Bold(Printable(NameOf(strPath)), console.HasColours()) + '\n');
    for (const S_HeaderFields& header : headers) console.Print(FieldTable(header));
  });
  if (options.bJson) console.Print(JsonText(array));
  return nExit;
}

template <typename Edit>
int EditAll(const S_EditOptions& options, C_Console& console, Edit&& fnEdit) {
  if (!options.strOutput.empty() && options.files.size() > 1) {
    throw C_UsageFailure("-o: it takes one file, and there are several");
  }
  return ForEachFile(options.files, console, [&](const std::string& strPath) {
    fnEdit(S_HeaderEdit{strPath, {options.strOutput, options.bForce, options.bAnyway}});
  });
}

void AddShow(C_CommandLine& commandLine, CLI::App& parent) {
  const auto options = std::make_shared<S_ShowOptions>();
  CLI::App& command = commandLine.Add(
      parent,
      {"show",
       "print the fields of headers",
       "Prints the SP header of each file, and the codec head or the \"vafm\" chunk of those "
       "that have one. Fields without a known meaning are named by their place in the header.",
       {{"voxtool header show speech.kst", "print the header of a file"}},
       [options](C_Console& console) { return Show(*options, console); }});
  AddOption(command, "FILE", options->files, "the files").TypeName("FILE").Required();
  AddFlag(command, "--json", options->bJson, "print an array with an object for each file");
}

void AddEditOptions(CLI::App& command, S_EditOptions& options) {
  AddOption(command, "FILE", options.files,
            "the files, which are changed in place; \"-\" is standard input, with -o")
      .TypeName("FILE")
      .Required();
  AddOption(command, "-o,--output", options.strOutput,
            "write another file; \"-\" is standard output")
      .TypeName("FILE");
}

void AddAdd(C_CommandLine& commandLine, CLI::App& parent) {
  const auto options = std::make_shared<S_EditOptions>();
  CLI::App& command = commandLine.Add(
      parent,
      {"add",
       "put an SP header before a stream that has none",
       "Puts an SP header before a coded stream without any header, so that it says what it is. "
       "The file is replaced in one step, after a look at the result.",
       {{"voxtool header add --rate 8000 stream.bin", "say that a Kestrel stream has 8,000 Hz"},
        {"voxtool header add --codec heron4 --rate 22050 -o a.hrn a.bin",
         "make a Heron file of a bare stream"}},
       [options](C_Console& console) {
         return EditAll(*options, console, [&](const S_HeaderEdit& edit) {
           AddHeader(edit, options->strCodec, options->dwRate);
         });
       }});
  AddEditOptions(command, *options);
  AddOption(command, "--codec", options->strCodec, "the codec of the stream")
      .OneOf({"kestrel", "heron4", "heron5", "heron6"})
      .ShowDefault();
  AddOption(command, "--rate", options->dwRate, "the sample rate; 16000 if it is not given")
      .TypeName("HZ")
      .Check(WholeNumber(1, UINT32_MAX));
  AddFlag(command, "-f,--force", options->bForce, "replace an existing output");
}

void AddStrip(C_CommandLine& commandLine, CLI::App& parent) {
  const auto options = std::make_shared<S_EditOptions>();
  CLI::App& command = commandLine.Add(
      parent,
      {"strip",
       "take the SP header away",
       "Takes the SP header away, so that the stream alone is left. This is refused where the rest "
       "would not be known again, as a Heron stream would not, and where the sample rate would be "
       "lost; --anyway does it nevertheless.",
       {{"voxtool header strip -o stream.bin speech.kst", "write the stream without its header"}},
       [options](C_Console& console) { return EditAll(*options, console, &StripHeader); }});
  AddEditOptions(command, *options);
  AddFlag(command, "-f,--force", options->bForce, "replace an existing output");
  AddFlag(command, "--anyway", options->bAnyway, "also when something is lost");
}

}  // namespace

void AddHeaderCommand(C_CommandLine& commandLine) {
  CLI::App& command = commandLine.Add(
      {"header",
       "show, add or strip the SP header",
       "An SP header of 48 bytes says of a coded stream which codec and which sample rate it has. "
       "Where a file is changed, a new one takes its place in one step; if it has several names "
       "(hard links), the others keep the old one.",
       {{"voxtool header show speech.kst", "print the fields of the header"},
        {"voxtool header add --rate 8000 stream.bin", "put a header before a Kestrel stream"}},
       {}});
  AddShow(commandLine, command);
  AddAdd(commandLine, command);
  AddStrip(commandLine, command);
}

}  // namespace tool
