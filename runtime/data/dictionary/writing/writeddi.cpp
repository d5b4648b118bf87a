#include "runtime/data/dictionary/writing/writeddi.h"

#include <cstddef>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/ddi/readddi.h"
#include "runtime/data/dictionary/ddinotes.h"
#include "runtime/data/dictionary/writing/ddidocument.h"
#include "runtime/data/dictionary/writing/xmlwriter.h"

namespace runtime::data {
namespace {

void Serialize(const XmlElement& codeBook, std::ostream& out) {
  XmlWriter writer(out);
  WriteXml(codeBook, writer);
}

/// JSON in which no character stands that XML cannot hold; JSON itself escapes the control characters.
std::string JsonText(const Json& value) {
  std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  for (const auto& [character, escape] : {std::pair{"\xEF\xBF\xBE", "\\ufffe"}, std::pair{"\xEF\xBF\xBF", "\\uffff"}})
    for (std::size_t at = text.find(character); at != std::string::npos; at = text.find(character, at))
      text.replace(at, std::string_view(character).size(), escape);
  return text;
}

void AddNote(const std::string& subject, const Json& value, const char* level, XmlElement& element) {
  XmlElement& note = element.AddText("notes", JsonText(value));
  note.SetAttribute("type", "codebook");
  note.SetAttribute("subject", subject);
  if (level) note.SetAttribute("level", level);
}

void AddNotes(const DdiNoteList& notes, const char* level, XmlElement& element) {
  std::map<std::string, Json> sorted;
  for (auto note = notes.properties.begin(); note != notes.properties.end(); ++note) sorted[note.key()] = note.value();
  Json others = Json::object();
  for (const auto& [subject, value] : sorted) {
    if (XmlCharacters(subject) == subject)
      AddNote(subject, value, level, element);
    else
      others[subject] = value;
  }
  if (!others.empty()) AddNote(kManyProperties, others, level, element);
}

void AddNotes(const DdiNotes& notes, XmlElement& codeBook) {
  XmlElement& study = StudyOf(codeBook);
  AddNotes(notes.package, "package", study);
  AddNotes(notes.resource, "resource", study);
  AddNotes(notes.table, nullptr, study);
  if (!notes.generated.empty()) AddNote("generated", notes.generated, nullptr, study);
  if (!notes.generatedInFields.empty()) AddNote("generatedInVariables", notes.generatedInFields, nullptr, study);
  const std::vector<XmlElement*> variables = VariablesOf(codeBook);
  for (std::size_t i = 0; i < notes.fields.size() && i < variables.size(); ++i)
    AddNotes(notes.fields[i], nullptr, *variables[i]);
}

void CountSubjects(const DdiNoteList& notes, WrittenFacts& facts) {
  for (auto note = notes.properties.begin(); note != notes.properties.end(); ++note) ++facts.extensions[note.key()];
}

}  // namespace

WrittenFacts WriteDdi(const TableDescriptor& table, const DdiStatistics* statistics, std::ostream& out) {
  const std::unique_ptr<XmlElement> codeBook = BuildDdi(table, statistics);
  std::ostringstream text;
  Serialize(*codeBook, text);
  const DdiNotes notes = FindDdiNotes(ReadDdiElements(text.str()), table);
  AddNotes(notes, *codeBook);
  Serialize(*codeBook, out);
  WrittenFacts facts;
  for (const DdiNoteList* list : {&notes.table, &notes.resource, &notes.package}) CountSubjects(*list, facts);
  for (const DdiNoteList& list : notes.fields) CountSubjects(list, facts);
  return facts;
}

}  // namespace runtime::data
