// Descriptors from DDI-Codebooks written in the test.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/ddi/readddi.h"
#include "tests/unit/data/dictionary/described.h"

namespace runtime::data {

struct DdiReading {
  TableDescriptor table;
  std::vector<std::string> notes;
  std::string error;  // empty: it was read

  const FieldDescriptor& Field(const std::string& name) const {
    for (const FieldDescriptor& field : table.fields)
      if (field.name == name) return field;
    static const FieldDescriptor kNone;
    ADD_FAILURE() << "no field " << name;
    return kNone;
  }
};

inline DdiReading ReadDdiFile(const std::string& path, const DdiOptions& options = {}) {
  DdiReading reading;
  std::vector<Note> notes;
  try {
    reading.table = ReadDdi(path, options, notes);
  } catch (const DataError& error) {
    reading.error = error.what();
  }
  for (const Note& note : notes) reading.notes.push_back(note.text);
  return reading;
}

/// Of a text; its path in messages is "…/study.xml".
inline DdiReading ReadDdiText(std::string_view text, const DdiOptions& options = {}) {
  const TemporaryFolder folder;
  return ReadDdiFile(folder.Write("study.xml", text), options);
}

/// The variables, in a document around them.
inline DdiReading ReadVariables(const std::string& variables, const DdiOptions& options = {}) {
  return ReadDdiText("<codeBook><dataDscr>\n" + variables + "\n</dataDscr></codeBook>", options);
}

inline std::string DdiPath(const std::string& name) {
  return std::string(CODEBOOK_SOURCE_DIR) + "/tests/data/ddi/" + name;
}

/// "value=label" of entries, without "=" where there is no label.
inline std::vector<std::string> Written(const std::vector<LabelledValue>& entries) {
  std::vector<std::string> texts;
  for (const LabelledValue& entry : entries) texts.push_back(entry.value + (entry.label ? "=" + *entry.label : ""));
  return texts;
}

/// "NAME=value|value" of each attribute.
inline std::vector<std::string> Written(const DatasourceAttributes& attributes) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < attributes.Size(); ++i) {
    std::string text = attributes.Name(i) + "=";
    for (const std::string& value : attributes.Values(i)) text += (text.back() == '=' ? "" : "|") + value;
    texts.push_back(text);
  }
  return texts;
}

/// "NAME: JSON" of each.
inline std::vector<std::string> Written(const std::vector<ExtraProperty>& extras) {
  std::vector<std::string> texts;
  for (const ExtraProperty& extra : extras) texts.push_back(extra.name + ": " + extra.json);
  return texts;
}

}  // namespace runtime::data
