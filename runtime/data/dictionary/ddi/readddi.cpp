#include "runtime/data/dictionary/ddi/readddi.h"

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/dictionary/ddi/ddifiles.h"
#include "runtime/data/dictionary/ddi/ddigroups.h"
#include "runtime/data/dictionary/ddi/ddivariable.h"
#include "runtime/data/dictionary/ddi/ownnotes.h"
#include "runtime/data/dictionary/tableschema.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

constexpr std::array<std::string_view, 4> kReadElsewhere = {"stdyDscr/citation/titlStmt/titl",
                                                            "stdyDscr/stdyInfo/abstract", "fileDscr", "dataDscr"};

/// The `codeBook`; repositories wrap it into elements of their own.
pugi::xml_node FindCodeBook(const XmlDocument& document) {
  const pugi::xml_node root = document.root();
  const pugi::xml_node found = root.find_node([](pugi::xml_node node) { return IsElement(node, "codeBook"); });
  if (IsElement(root, "codeBook")) return root;
  if (found) return found;
  if (LocalName(root) == "DDIInstance" || LocalName(root) == "FragmentInstance")
    document.Fail(root, "this is DDI-Lifecycle, and DDI-Codebook is read; save the study as DDI-Codebook 2.5");
  document.Fail(root, fmt::format("this is no DDI-Codebook: there is no element <codeBook>, and the first one is {}",
                                  QuotedCell("<" + std::string(root.name()) + ">")));
}

std::vector<pugi::xml_node> VariablesOf(pugi::xml_node codeBook, const XmlDocument& document) {
  std::vector<pugi::xml_node> variables;
  for (const pugi::xml_node description : ElementsOf(codeBook, "dataDscr"))
    for (const pugi::xml_node variable : ElementsOf(description, "var")) {
      if (NameOfDdiVariable(variable).empty())
        document.Fail(variable, "this variable has neither a name nor an ID; give it the attribute name");
      variables.push_back(variable);
    }
  return variables;
}

/// Reading one document for one of its files.
class DdiReader {
 public:
  DdiReader(const XmlDocument& document, const DdiOptions& options, std::vector<Note>& notes)
      : fDocument(document),
        fOptions(options),
        fNotes(notes),
        fOddities(document),
        fCodeBook(FindCodeBook(document)),
        fElements(VariablesOf(fCodeBook, document)) {}

  TableDescriptor Run() {
    fTable.origin = fDocument.path();
    fTable.missingValues = {LabelledValue{}};
    const DdiFiles files(fCodeBook, fElements);
    std::vector<std::string> headers;
    if (fOptions.headers && (files.size() > 1 || HasGroupsOrWeights())) headers = fOptions.headers();
    for (std::size_t i = 0; i < headers.size(); ++i) fVariables.columns.emplace(headers[i], i);
    const std::optional<std::size_t> file = files.Choose(fDocument, fOptions, headers, fNotes);
    ReadStudy(file ? files.Element(*file) : pugi::xml_node());
    ReadVariables(files, file);
    for (const pugi::xml_node description : ElementsOf(fCodeBook, "dataDscr")) {
      ReadDdiGroups(description, fVariables, fTable, fKept, fOddities);
      for (const pugi::xml_node child : description.children())
        if (child.type() == pugi::node_element && LocalName(child) != "var" && LocalName(child) != "varGrp")
          fKept.KeepElement("dataDscr/" + std::string(LocalName(child)), child);
    }
    FindDdiWeight(fVariables, fDocument, fTable, fNotes);
    Finish();
    return std::move(fTable);
  }

 private:
  bool HasGroupsOrWeights() const {
    const auto descriptions = ElementsOf(fCodeBook, "dataDscr");
    return std::any_of(descriptions.begin(), descriptions.end(),
                       [](pugi::xml_node description) { return !!ElementOf(description, "varGrp"); }) ||
           std::any_of(fElements.begin(), fElements.end(), [](pugi::xml_node variable) {
             return AttributeOf(variable, "wgt") == "wgt" || variable.attribute("wgt-var");
           });
  }

  void ReadStudy(pugi::xml_node file) {
    ReadDdiTexts(fCodeBook, "", {kDdiStudyTexts, kReadElsewhere}, fAttributes, fKept);
    if (file) {
      fKept.KeepAttributes("fileDscr", file);
      ReadDdiTexts(file, "fileDscr", {kDdiStudyTexts, kReadElsewhere}, fAttributes, fKept);
      ReadEncoding(file);
    }
    for (const pugi::xml_node study : ElementsOf(fCodeBook, "stdyDscr")) {
      ReadTitle(study);
      for (const pugi::xml_node info : ElementsOf(study, "stdyInfo"))
        for (const pugi::xml_node abstract : ElementsOf(info, "abstract")) {
          const std::string text = LinesOf(abstract);
          if (text.empty()) continue;
          fTable.documents.push_back(SplitLines(text));
          fKept.KeepAttributes("stdyDscr/stdyInfo/abstract", abstract);
        }
    }
    if (fTable.label) return;
    const pugi::xml_node citation = ElementOf(ElementOf(fCodeBook, "docDscr"), "citation");
    const std::string title = LineOf(ElementOf(ElementOf(citation, "titlStmt"), "titl"));
    if (!title.empty()) fTable.label = title;
  }

  void ReadTitle(pugi::xml_node study) {
    for (const pugi::xml_node citation : ElementsOf(study, "citation"))
      for (const pugi::xml_node statement : ElementsOf(citation, "titlStmt"))
        for (const pugi::xml_node title : ElementsOf(statement, "titl")) {
          if (fTable.label) {
            fKept.KeepElement("stdyDscr/citation/titlStmt/titl", title);
            continue;
          }
          const std::string text = LineOf(title);
          if (text.empty()) continue;
          fTable.label = text;
          fKept.KeepAttributes("stdyDscr/citation/titlStmt/titl", title);
        }
  }

  /// Of the data; UTF-8 is what is supposed anyway.
  void ReadEncoding(pugi::xml_node file) {
    for (const pugi::xml_node text : ElementsOf(file, "fileTxt")) {
      const std::string encoding = AttributeOf(ElementOf(text, "fileType"), "charset");
      if (!encoding.empty() && IsKnownEncoding(encoding) && !IsUtf8Name(encoding)) fTable.dialect.encoding = encoding;
    }
  }

  void ReadVariables(const DdiFiles& files, std::optional<std::size_t> file) {
    for (std::size_t i = 0; i < fElements.size(); ++i) {
      const pugi::xml_node element = fElements[i];
      const std::string id = AttributeOf(element, "ID");
      const std::string name = NameOfDdiVariable(element);
      if (file && !files.Holds(*file, i)) {
        if (!id.empty()) fVariables.elsewhere.emplace(id, i);
        continue;
      }
      if (!fVariables.indexOfName.emplace(name, fVariables.variables.size()).second)
        fOddities.Add(DdiOddity::RepeatedName, element,
                      fmt::format("there is a variable {} before this one; variables of one name meet columns of that "
                                  "name in their order",
                                  QuotedCell(name)));
      if (!id.empty() && !fVariables.indexOfId.emplace(id, fVariables.variables.size()).second)
        fOddities.Add(DdiOddity::RepeatedId, element,
                      fmt::format("the ID {} of variable {} belongs to an earlier variable too, which is meant by what "
                                  "refers to it",
                                  QuotedCell(id), QuotedCell(name)));
      fVariables.variables.push_back(ReadDdiVariable(element, fOddities));
    }
    fTable.hasSchema = !fVariables.variables.empty();
  }

  void Finish() {
    fTable.attributes = fAttributes.Finish();
    fTable.extras = fKept.Finish();
    DdiNotes own;
    for (const pugi::xml_node study : ElementsOf(fCodeBook, "stdyDscr"))
      ReadNotesOfStudy(study, fDocument, own, fOddities);
    own.fields.resize(fVariables.variables.size());
    fTable.fields.reserve(fVariables.variables.size());
    for (std::size_t i = 0; i < fVariables.variables.size(); ++i) {
      ReadNotesOfVariable(fVariables.variables[i].element, fDocument, own.fields[i], fOddities);
      fTable.fields.push_back(FinishDdiVariable(std::move(fVariables.variables[i])));
    }
    ApplyDdiNotes(own, fTable);
    fOddities.Report(fNotes);
  }

  const XmlDocument& fDocument;
  const DdiOptions& fOptions;
  std::vector<Note>& fNotes;
  RepeatedNotes fOddities;
  pugi::xml_node fCodeBook;
  std::vector<pugi::xml_node> fElements;  // all variables of the document
  TableDescriptor fTable;
  DdiVariables fVariables;
  AttributeCollector fAttributes;
  KeptElements fKept;
};

}  // namespace

TableDescriptor ReadDdi(const std::string& path, const DdiOptions& options, std::vector<Note>& notes) {
  const XmlDocument document(path, ReadXmlText(path, notes));
  TableDescriptor table = DdiReader(document, options, notes).Run();
  if (!table.hasSchema)
    throw DataError(path + ": the document describes no variables; a dictionary has them as <var> in <dataDscr>");
  return table;
}

TableDescriptor ReadDdiElements(const std::string& text) {
  CheckXmlText(text, "DDI");
  const XmlDocument document("DDI", text);
  std::vector<Note> unused;
  return DdiReader(document, {}, unused).Run();
}

bool LooksLikeXml(std::string_view text) {
  using namespace std::string_view_literals;
  for (const std::string_view mark : {"\xEF\xBB\xBF"sv, "\xFF\xFE"sv, "\xFE\xFF"sv})
    if (text.substr(0, mark.size()) == mark) text.remove_prefix(mark.size());
  const std::size_t first = text.find_first_not_of(" \t\r\n\0"sv);
  return first != std::string_view::npos && text[first] == '<';
}

}  // namespace runtime::data
