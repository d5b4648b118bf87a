#include "runtime/data/dictionary/ddi/ownnotes.h"

#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/dictionary/ddi/dditexts.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

std::optional<Json> ValueOf(pugi::xml_node note, const XmlDocument& document, RepeatedNotes& oddities) {
  try {
    return ParseJson(note.text().get(), document.Where(note));
  } catch (const DataError&) {
    oddities.Add(DdiOddity::UnusableNote, note,
                 fmt::format("this note of the type \"codebook\" and the subject {} is not used, for it is no JSON",
                             QuotedCell(AttributeOf(note, "subject"))));
    return std::nullopt;
  }
}

bool IsOwnNote(pugi::xml_node node) { return node.type() == pugi::node_element && IsCodebookNote(node); }

/// Names that an attribute cannot hold stand in an object of the subject "*".
void Put(const std::string& subject, const Json& value, DdiNoteList& notes) {
  if (subject != kManyProperties || !value.is_object()) {
    notes.properties[subject] = value;
    return;
  }
  for (auto property = value.begin(); property != value.end(); ++property)
    notes.properties[property.key()] = property.value();
}

void AppendTexts(const Json& value, std::vector<std::string>& texts) {
  if (!value.is_array()) return;
  for (const Json& entry : value)
    if (entry.is_string()) texts.push_back(entry.get<std::string>());
}

}  // namespace

void ReadNotesOfStudy(pugi::xml_node study, const XmlDocument& document, DdiNotes& notes, RepeatedNotes& oddities) {
  for (const pugi::xml_node note : study.children()) {
    if (!IsOwnNote(note)) continue;
    const std::optional<Json> value = ValueOf(note, document, oddities);
    if (!value) continue;
    const std::string subject = note.attribute("subject").value();
    const std::string level = AttributeOf(note, "level");
    if (subject == "generated")
      AppendTexts(*value, notes.generated);
    else if (subject == "generatedInVariables")
      AppendTexts(*value, notes.generatedInFields);
    else
      Put(subject, *value, level == "package" ? notes.package : level == "resource" ? notes.resource : notes.table);
  }
}

void ReadNotesOfVariable(pugi::xml_node variable, const XmlDocument& document, DdiNoteList& notes,
                         RepeatedNotes& oddities) {
  for (const pugi::xml_node note : variable.children()) {
    if (!IsOwnNote(note)) continue;
    if (const std::optional<Json> value = ValueOf(note, document, oddities))
      Put(note.attribute("subject").value(), *value, notes);
  }
}

}  // namespace runtime::data
