#include "runtime/data/dictionary/ddi/ddigroups.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <unordered_set>

#include <fmt/format.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/typing/numbertext.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

/// Labels of the category that counts, in the languages of the archives that we know.
bool MeansYes(const std::string& label) {
  static const std::set<std::string> kWords = {"yes",     "y",       "ja",         "oui",  "si",       "sí",
                                               "sim",     "да",      "是",         "true", "selected", "mentioned",
                                               "checked", "genannt", "ausgewählt", "cité", "tak",      "ano"};
  return kWords.count(LowerAscii(label)) > 0;
}

/// The code of a category as numbers are compared, texts as they are.
std::string CodeKey(const LabelledValue& category) {
  NumberReading reading;
  if (!ReadNumberText(category.value, reading)) return category.value;
  return fmt::format("{}", reading.value == 0 ? 0.0 : reading.value);
}

/// The counted value of variables that each say yes or no: 1 of 0 and 1; the only category, when it is the same of all;
/// of two the one that is labelled yes. Nothing when the members share a list of categories.
std::optional<std::string> CountedValueOf(const DdiVariables& variables, const std::vector<std::size_t>& members) {
  std::map<std::string, std::string> labelOfCode;
  for (const std::size_t member : members) {
    const std::vector<LabelledValue>& categories = variables.variables[member].field.categories;
    if (categories.empty()) return std::nullopt;
    for (const LabelledValue& category : categories) {
      std::string& label = labelOfCode[CodeKey(category)];
      if (category.label && (label.empty() || MeansYes(*category.label))) label = *category.label;
    }
  }
  if (labelOfCode.size() == 1) return labelOfCode.begin()->first;
  if (labelOfCode.size() != 2) return std::nullopt;
  if (labelOfCode.count("0") > 0 && labelOfCode.count("1") > 0) return "1";
  std::optional<std::string> counted;
  for (const auto& [code, label] : labelOfCode) {
    if (!MeansYes(label)) continue;
    if (counted) return std::nullopt;
    counted = code;
  }
  return counted;
}

/// Reads the groups of one description.
class GroupReader {
 public:
  GroupReader(DdiVariables& variables, TableDescriptor& table, KeptElements& kept, RepeatedNotes& notes)
      : fVariables(variables), fTable(table), fKept(kept), fNotes(notes) {}

  void Read(pugi::xml_node group) {
    const std::vector<std::size_t> members = MembersOf(group);
    const bool isOfOtherFile = members.empty() && fHasMembersElsewhere;
    if (isOfOtherFile) return;
    if (AttributeOf(group, "type") == "multipleResp" && ReadSet(group, members)) return;
    fKept.KeepElement("dataDscr/varGrp", group);
    const std::string title = LineOf(TitleOf(group, {"labl", "txt", "concept"}));
    const std::string text = title.empty() ? NameOf(group) : title;
    if (text.empty()) return;
    for (const std::size_t member : members) fVariables.variables[member].attributes.AddOnce("Group", text);
  }

 private:
  static std::string NameOf(pugi::xml_node group) {
    std::string name = AttributeOf(group, "name");
    return name.empty() ? AttributeOf(group, "ID") : name;
  }

  static pugi::xml_node TitleOf(pugi::xml_node group, std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names)
      for (const pugi::xml_node element : ElementsOf(group, name))
        if (!LineOf(element).empty()) return element;
    return {};
  }

  /// By ID; some documents write names.
  std::vector<std::size_t> MembersOf(pugi::xml_node group) {
    std::vector<std::size_t> members;
    std::unordered_set<std::size_t> known;
    fHasMembersElsewhere = false;
    for (const std::string& reference : ReferencesOf(group, "var")) {
      auto found = fVariables.indexOfId.find(reference);
      if (found == fVariables.indexOfId.end()) {
        if (fVariables.elsewhere.count(reference) > 0) {
          fHasMembersElsewhere = true;
          continue;
        }
        found = fVariables.indexOfName.find(reference);
        if (found == fVariables.indexOfName.end()) {
          Tell(DdiOddity::UnknownReference, group,
               fmt::format("refers to {}, and no variable has that ID", QuotedCell(reference)));
          continue;
        }
      }
      if (known.insert(found->second).second) members.push_back(found->second);
    }
    return members;
  }

  void Tell(DdiOddity kind, pugi::xml_node group, const std::string& problem) {
    fNotes.Add(kind, group, fmt::format("the group of variables {} {}", QuotedCell(NameOf(group)), problem));
  }

  /// Members that have no column cannot be counted; the others can.
  std::vector<std::size_t> PresentMembers(pugi::xml_node group, const std::vector<std::size_t>& members) {
    std::vector<std::size_t> present;
    for (const std::size_t member : members) {
      if (fVariables.IsInData(member))
        present.push_back(member);
      else
        Tell(DdiOddity::AbsentMember, group,
             fmt::format("has the member {}, which is no column of the data; the set is made without it",
                         QuotedCell(fVariables.variables[member].field.name)));
    }
    return present;
  }

  bool ReadSet(pugi::xml_node group, const std::vector<std::size_t>& all) {
    const std::string name = "$" + NameOf(group);
    if (fSets.count(name) > 0) {
      Tell(DdiOddity::UnusableSet, group, "has the name of another one; the first one becomes a set");
      return false;
    }
    const std::vector<std::size_t> members = PresentMembers(group, all);
    if (members.empty() || name.size() == 1) {
      Tell(DdiOddity::UnusableSet, group, "becomes no set, for it has no name or no members");
      return false;
    }
    const std::optional<std::string> counted = CountedValueOf(fVariables, members);
    if (!MakeOfOneKind(group, members)) return false;
    const pugi::xml_node title = TitleOf(group, {"labl", "txt", "concept"});
    SetDescriptor set;
    set.name = name;
    set.label = LineOf(title);
    set.isDichotomy = counted.has_value();
    set.countedValue = counted.value_or("");
    for (const std::size_t member : members) set.variables.push_back(fVariables.variables[member].field.name);
    fTable.sets.push_back(std::move(set));
    fSets.insert(name);
    fKept.KeepRestOf("varGrp", name, group, {"type", "var", "name"}, {title});
    return true;
  }

  /// All numbers or all texts. A column without any value would be inferred to be text, so members that nobody gives a
  /// type take that of their codes.
  bool MakeOfOneKind(pugi::xml_node group, const std::vector<std::size_t>& members) {
    bool hasTexts = false;
    bool hasNumbers = false;
    for (const std::size_t member : members) {
      FieldDescriptor& field = fVariables.variables[member].field;
      NumberReading reading;
      const bool hasNumericCodes =
          !field.categories.empty() &&
          std::all_of(field.categories.begin(), field.categories.end(),
                      [&](const LabelledValue& category) { return ReadNumberText(category.value, reading); });
      if (field.dialect.type == FieldType::Inferred && hasNumericCodes) field.dialect.type = FieldType::Number;
      hasTexts = hasTexts || field.dialect.type == FieldType::String;
      hasNumbers = hasNumbers || (field.dialect.type != FieldType::String && field.dialect.type != FieldType::Inferred);
    }
    if (hasTexts && hasNumbers)
      Tell(DdiOddity::UnusableSet, group, "becomes no set, for some of its members are numbers and some are texts");
    return !(hasTexts && hasNumbers);
  }

  DdiVariables& fVariables;
  TableDescriptor& fTable;
  KeptElements& fKept;
  RepeatedNotes& fNotes;
  std::unordered_set<std::string> fSets;
  bool fHasMembersElsewhere = false;  // of the group read last
};

}  // namespace

void ReadDdiGroups(pugi::xml_node dataDscr, DdiVariables& variables, TableDescriptor& table, KeptElements& kept,
                   RepeatedNotes& notes) {
  GroupReader reader(variables, table, kept, notes);
  for (const pugi::xml_node group : ElementsOf(dataDscr, "varGrp")) reader.Read(group);
}

void FindDdiWeight(const DdiVariables& variables, const XmlDocument& document, TableDescriptor& table,
                   std::vector<Note>& notes) {
  std::vector<std::size_t> candidates;
  std::map<std::size_t, std::size_t> references;
  for (std::size_t i = 0; i < variables.variables.size(); ++i) {
    for (const std::string& id : ReferencesOf(variables.variables[i].element, "wgt-var")) {
      const auto found = variables.indexOfId.find(id);
      if (found == variables.indexOfId.end()) continue;
      if (references[found->second]++ == 0) candidates.push_back(found->second);
    }
  }
  const bool isReferred = !candidates.empty();
  if (!isReferred)
    for (std::size_t i = 0; i < variables.variables.size(); ++i)
      if (AttributeOf(variables.variables[i].element, "wgt") == "wgt") candidates.push_back(i);
  if (candidates.empty()) return;
  const std::size_t weight = *std::max_element(candidates.begin(), candidates.end(), [&](std::size_t a, std::size_t b) {
    return isReferred && references[a] < references[b];
  });
  const DdiVariable& chosen = variables.variables[weight];
  if (candidates.size() > 1) {
    std::vector<std::string> names;
    for (const std::size_t candidate : candidates)
      names.push_back(QuotedCell(variables.variables[candidate].field.name));
    notes.push_back(
        {false, fmt::format("{}: the document has several weights ({}); {} is used, --weight NAME takes "
                            "another one",
                            document.Where(chosen.element), fmt::join(names, ", "), QuotedCell(chosen.field.name))});
  }
  if (!variables.IsInData(weight)) {
    notes.push_back({false, fmt::format("{}: the weight {} is no column of the data, so nothing is weighted; --weight "
                                        "NAME takes another one",
                                        document.Where(chosen.element), QuotedCell(chosen.field.name))});
    return;
  }
  if (chosen.field.dialect.type == FieldType::String) {
    notes.push_back({false, fmt::format("{}: the weight {} is text, so nothing is weighted",
                                        document.Where(chosen.element), QuotedCell(chosen.field.name))});
    return;
  }
  table.weight = chosen.field.name;
}

}  // namespace runtime::data
