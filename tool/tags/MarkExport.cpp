// SPDX-License-Identifier: Apache-2.0
#include "tags/MarkExport.h"

#include <utility>

#include "base/EachFile.h"
#include "base/Failure.h"
#include "base/JsonText.h"
#include "base/TextTable.h"
#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/LabelText.h"
#include "marks/MarkCsv.h"
#include "marks/MarkRows.h"
#include "marks/MarkTable.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

constexpr std::size_t kIndent = 2;

std::string TableOf(const std::string& strPath, const C_Json& rows, std::uint32_t dwRate,
                    bool bColours) {
  const std::string strName = Bold(Printable(NameOf(strPath)), bColours);
  if (rows.empty()) return strName + ": no marks\n";
  return strName + ": " + CountedText(rows.size(), "mark") + '\n' +
         MarkTable(rows, dwRate, kIndent, bColours);
}

C_Json FileJson(const std::string& strPath, const S_SoundInfo& info, C_Json rows) {
  C_Json json = {{"schema", kJsonSchema}, {"file", strPath}, {"sample_rate", info.dwRate}};
  if (info.qwFrames != kFramesUnknown) json["frames"] = info.qwFrames;
  json["marks"] = std::move(rows);
  return json;
}

class C_Exporter {
 public:
  C_Exporter(tagMarkForm eForm, bool bSeveral, bool bColours)
      : m_eForm(eForm), m_bSeveral(bSeveral), m_bColours(bColours) {}

  void Add(const std::string& strPath) {
    const C_SoundInputPtr sound = OpenSound(strPath);
    const std::uint32_t dwRate = sound->Info().dwRate;
    C_Json rows = RowsOf(sound->Notes(), dwRate);
    switch (m_eForm) {
      case tagMarkForm::TABLE:
        if (!m_strText.empty()) m_strText += '\n';
        m_strText += TableOf(strPath, rows, dwRate, m_bColours);
        break;
      case tagMarkForm::JSON:
        m_array.push_back(FileJson(strPath, sound->Info(), std::move(rows)));
        break;
      case tagMarkForm::CSV:
        AddRows(strPath, std::move(rows));
        break;
      case tagMarkForm::LABELS:
        m_strText = LabelTextOf(sound->Notes(), dwRate);
    }
  }

  std::string Text() {
    if (m_eForm == tagMarkForm::JSON) return JsonText(m_array);
    if (m_eForm == tagMarkForm::CSV) return CsvOf(m_array);
    return std::move(m_strText);
  }

 private:
  void AddRows(const std::string& strPath, C_Json rows) {
    for (C_Json& row : rows) {
      if (m_bSeveral) row["file"] = strPath;
      m_array.push_back(std::move(row));
    }
  }

  tagMarkForm m_eForm;
  bool m_bSeveral;
  bool m_bColours;
  std::string m_strText;
  C_Json m_array = C_Json::array();
};

}  // namespace

S_MarkExport ExportMarks(const std::vector<std::string>& files, tagMarkForm eForm,
                         C_Console& console) {
  if (eForm == tagMarkForm::LABELS && files.size() > 1) {
    throw C_UsageFailure("voxtool tags", "--labels", "a label track is of one file");
  }
  C_Exporter exporter(eForm, files.size() > 1, console.HasColours());
  const int nExit =
      ForEachFile(files, console, [&](const std::string& strPath) { exporter.Add(strPath); });
  return {exporter.Text(), nExit};
}

}  // namespace tool
