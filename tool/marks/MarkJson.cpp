// SPDX-License-Identifier: Apache-2.0
#include "marks/MarkJson.h"

#include <string>
#include <utility>

#include "marks/MarkNotes.h"
#include "marks/RowMembers.h"

namespace tool {
namespace {

// What JsonText would write at this depth of an array.
std::string Indented(const C_Json& json, std::size_t nSpaces) {
  const std::string strText = JsonText(json);
  const std::string strIndent(nSpaces, ' ');
  std::string strIndented;
  for (std::size_t nAt = 0; nAt < strText.size();) {
    const std::size_t nEnd = strText.find('\n', nAt) + 1;
    strIndented += strIndent + strText.substr(nAt, nEnd - nAt);
    nAt = nEnd;
  }
  strIndented.pop_back();
  return strIndented;
}

// Goes through a text once, and hands out each row as soon as it is whole. A record is an object
// that is a row or says something of a file: the outermost object, or an element of the outermost
// array. In its member "marks", the elements of that array are the records instead.
class C_RowFinder : public nlohmann::json_sax<C_Json> {
 public:
  C_RowFinder(std::uint32_t dwRate, const PFN_Row& fnRow) : m_dwRate(dwRate), m_fnRow(fnRow) {}

  bool null() override { return Take(nullptr); }
  bool boolean(bool bValue) override { return Take(bValue); }
  bool number_integer(std::int64_t nValue) override { return Take(nValue); }
  bool number_unsigned(std::uint64_t qwValue) override { return Take(qwValue); }
  bool number_float(double dValue, const std::string& /*strText*/) override { return Take(dValue); }
  bool string(std::string& strValue) override { return Take(std::move(strValue)); }
  bool binary(C_Json::binary_t& /*value*/) override { return true; }

  bool start_object(std::size_t /*nMembers*/) override {
    if (m_nDepth == m_nList) {
      m_record = C_Json::object();
      m_bInRecord = true;
    } else {
      Take(C_Json::object());
    }
    ++m_nDepth;
    return true;
  }
  bool key(std::string& strKey) override {
    if (IsInRecord()) m_strKey = strKey;
    return true;
  }
  bool end_object() override {
    if (IsInRecord()) EndRecord();
    --m_nDepth;
    return true;
  }
  bool start_array(std::size_t /*nElements*/) override {
    const bool bMarks = IsInRecord() && m_nList <= 1 && m_strKey == "marks";
    if (m_nDepth != 0 && !bMarks) Take(C_Json::array());
    ++m_nDepth;
    if (m_nDepth == 1) m_nList = 1;
    if (bMarks) StartMarks();
    return true;
  }
  bool end_array() override {
    if (m_nDepth == m_nList && m_nList > 1) EndMarks();
    --m_nDepth;
    return true;
  }
  bool parse_error(std::size_t /*nAt*/, const std::string& /*strToken*/,
                   const nlohmann::detail::exception& /*error*/) override {
    throw C_BadRow("it is not JSON");
  }

 private:
  [[nodiscard]] bool IsInRecord() const { return m_bInRecord && m_nDepth == m_nList + 1; }

  // A value that is an element of the list, or a member of a record. What is deeper says nothing.
  bool Take(C_Json value) {
    if (IsInRecord()) {
      m_record[m_strKey] = std::move(value);
    } else if (m_nDepth == m_nList) {
      m_bInRecord = false;
      if (m_nList == 0) throw C_BadRow("the marks are not an array");
      HandOut(value);
    }
    return true;
  }
  void HandOut(const C_Json& row) {
    const std::string strPlace = "row " + std::to_string(++m_nRows);
    if (row.is_object()) {
      for (const auto& member : row.items()) CheckMember(member.key(), strPlace);
    }
    m_fnRow(row, strPlace);
  }
  static void CheckMember(const std::string& strKey, const std::string& strPlace) {
    if (const auto strWhy = UnknownMember(strKey)) throw C_BadRow(strPlace + ": " + *strWhy);
  }

  void StartMarks() {
    m_file = std::move(m_record);
    m_nList = m_nDepth;
    m_bInRecord = false;
    m_bIsFile = true;
  }
  void EndMarks() {
    m_record = std::move(m_file);
    m_nList -= 2;
    m_bInRecord = true;
  }
  void EndRecord() {
    m_bInRecord = false;
    if (m_nList > 1 || (m_nList == 1 && !m_bIsFile)) return HandOut(m_record);
    if (m_record.contains("marks")) throw C_BadRow("the marks are not an array");
    if (!m_bIsFile) throw C_BadRow("it has no member \"marks\"");
    m_bIsFile = false;
    CheckSchema();
    CheckRate();
    if (++m_nFiles > 1) throw C_BadRow("it has the marks of several files");
  }
  void CheckSchema() const {
    const auto found = m_record.find("schema");
    if (found == m_record.end() || *found == kJsonSchema) return;
    throw C_BadRow("its schema is " + Shown(*found) + ", and this program knows " +
                   std::to_string(kJsonSchema));
  }
  static std::string Shown(const C_Json& value) {
    return value.is_structured() ? "[...]" : value.dump();
  }
  void CheckRate() const {
    const auto found = m_record.find("sample_rate");
    if (found == m_record.end() || *found == m_dwRate) return;
    throw C_BadRow("the marks count frames of " + Shown(*found) + " Hz, and the sound has " +
                   std::to_string(m_dwRate) + " Hz");
  }

  std::uint32_t m_dwRate;
  const PFN_Row& m_fnRow;
  std::size_t m_nDepth = 0;  // how many arrays and objects are open
  std::size_t m_nList = 0;   // how many are open where records begin
  bool m_bInRecord = false;
  bool m_bIsFile = false;  // the record has marks of its own
  std::string m_strKey;
  C_Json m_record;
  C_Json m_file;  // the record around the marks
  std::size_t m_nRows = 0;
  std::size_t m_nFiles = 0;
};

}  // namespace

void WriteMarksJson(const C_Json& file, const C_MarkRows& rows,
                    const std::function<void(std::string_view)>& fnWrite) {
  constexpr std::size_t kRowIndent = 6;
  std::string strHead = JsonElement(file);
  strHead.erase(strHead.rfind('\n'));  // and the brace after it
  fnWrite(strHead + ",\n    \"marks\": [");
  bool bFirst = true;
  rows.ForEach([&](const C_Json& row) {
    fnWrite((std::exchange(bFirst, false) ? "\n" : ",\n") + Indented(row, kRowIndent));
  });
  fnWrite(bFirst ? "]\n  }" : "\n    ]\n  }");
}

PFN_Rows RowsOfJson(std::string_view text, std::uint32_t dwRate) {
  return [text, dwRate](const PFN_Row& fnRow) {
    if (!C_Json::accept(text)) throw C_BadRow("it is not JSON");
    C_RowFinder finder(dwRate, fnRow);
    C_Json::sax_parse(text, &finder);
  };
}

}  // namespace tool
