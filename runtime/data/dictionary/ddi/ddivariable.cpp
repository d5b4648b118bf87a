#include "runtime/data/dictionary/ddi/ddivariable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/ddi/ddiformat.h"
#include "runtime/data/typing/numbertext.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

constexpr std::array<std::string_view, 5> kReadHere = {"location", "labl", "catgry", "invalrng", "varFormat"};

std::optional<double> NumberIn(const std::string& text) {
  NumberReading reading;
  if (!ReadNumberText(text, reading) || !std::isfinite(reading.value)) return std::nullopt;
  return reading.value;
}

/// Fills one DdiVariable.
class VariableReader {
 public:
  VariableReader(DdiVariable& variable, RepeatedNotes& notes)
      : fVariable(variable), fElement(variable.element), fField(variable.field), fNotes(notes) {}

  void Run() {
    fField.name = NameOfDdiVariable(fElement);
    if (AttributeOf(fElement, "name").empty())
      Tell(DdiOddity::NoName, fElement, "has no name, and is called by its ID");
    fField.missingValues = {LabelledValue{}};
    ReadCategories();
    ReadTypeAndFormat();
    ReadLevel();
    ReadInvalidRanges();
    ReadDdiTexts(fElement, "", {kDdiVariableTexts, kReadHere}, fVariable.attributes, fVariable.kept);
    TakeBareQuestion();
    ReadLabel();
    fVariable.kept.KeepAttributes("", fElement, {"name", "files", "wgt", "wgt-var", "dcml", "nature", "intrvl"});
    KeepAttributesThatSayMore();
    if (const std::vector<std::string>* texts = fVariable.attributes.Find("Description"))
      fField.description = fmt::format("{}", fmt::join(*texts, "\n"));
  }

 private:
  void Tell(DdiOddity kind, pugi::xml_node element, const std::string& problem) {
    fNotes.Add(kind, element, fmt::format("variable {} {}", QuotedCell(fField.name), problem));
  }

  /// The first label of the variable itself; the others, of other languages and levels, are kept.
  void ReadLabel() {
    const std::vector<pugi::xml_node> labels = ElementsOf(fElement, "labl");
    const auto isOwn = [](pugi::xml_node label) {
      const std::string level = AttributeOf(label, "level");
      return (level.empty() || level == "variable") && !LineOf(label).empty();
    };
    auto chosen = std::find_if(labels.begin(), labels.end(), isOwn);
    if (chosen == labels.end())
      chosen = std::find_if(labels.begin(), labels.end(), [](pugi::xml_node label) { return !LineOf(label).empty(); });
    for (auto label = labels.begin(); label != labels.end(); ++label)
      if (label != chosen) fVariable.kept.KeepElement("labl", *label);
    if (chosen != labels.end()) {
      fField.title = LineOf(*chosen);
      fVariable.kept.KeepAttributes("labl", *chosen);
      return;
    }
    for (const char* attribute : {"Question", "Concept"}) {
      const std::vector<std::string>* texts = fVariable.attributes.Find(attribute);
      if (texts == nullptr) continue;
      std::string title = texts->front();
      std::replace(title.begin(), title.end(), '\n', ' ');
      fField.title = std::move(title);
      return;
    }
  }

  /// Until version 2.0 the question may stand in `qstn` itself.
  void TakeBareQuestion() {
    for (const pugi::xml_node question : ElementsOf(fElement, "qstn"))
      if (IsText(question) && !LinesOf(question).empty()) fVariable.attributes.Add("Question", LinesOf(question));
  }

  void ReadCategories() {
    std::unordered_map<std::string, std::optional<std::string>> labelOfCode;
    for (const pugi::xml_node category : ElementsOf(fElement, "catgry")) {
      const std::string code = LineOf(ElementOf(category, "catValu"));
      const pugi::xml_node label = LabelOf(category);
      fVariable.kept.KeepRestOf("catgry", code, category, {"missing"}, {ElementOf(category, "catValu"), label});
      std::string text = LineOf(label);
      if (code.empty()) {
        if (!text.empty())
          Tell(DdiOddity::CategoryWithoutCode, category,
               fmt::format("has a category without a value; its label {} is not used", QuotedCell(text)));
        continue;
      }
      const bool isMissing = IsMissing(category);
      if (text.empty() && isMissing) text = AttributeOf(category, "missType");
      LabelledValue entry{code, false, std::nullopt};
      if (!text.empty()) entry.label = std::move(text);
      const auto [first, isNew] = labelOfCode.emplace(code, entry.label);
      if (!isNew) {
        if (first->second != entry.label)
          Tell(DdiOddity::RepeatedCode, category,
               fmt::format("has the category {} twice; the first one holds", QuotedCell(code)));
        continue;
      }
      Take(std::move(entry), isMissing);
    }
    NoteMissingCategories();
  }

  static pugi::xml_node LabelOf(pugi::xml_node category) {
    for (const pugi::xml_node label : ElementsOf(category, "labl"))
      if (!LineOf(label).empty()) return label;
    return {};
  }

  static bool IsMissing(pugi::xml_node category) {
    const std::string missing = AttributeOf(category, "missing");
    return missing == "Y" || missing == "y" || missing == "yes" || missing == "true";
  }

  void Take(LabelledValue entry, bool isMissing) {
    // What statistical programs print for a cell without a value.
    const bool isAbsent = entry.value == "." || entry.value == "Sysmiss";
    if (isMissing || isAbsent) {
      fMissing.insert(entry.value);
      fField.missingValues.push_back(std::move(entry));
      return;
    }
    ++fCodes;
    if (NumberIn(entry.value)) ++fNumericCodes;
    // Without labels the categories are a list of the values that were met, and say nothing about the level.
    fField.hasCategories = fField.hasCategories || entry.label;
    fField.categories.push_back(std::move(entry));
  }

  void NoteMissingCategories() {
    const pugi::xml_node question = ElementOf(fElement, "qstn");
    if (fCodes > 0 || AttributeOf(question, "responseDomainType") != "category") return;
    Tell(DdiOddity::NoCategories, fElement, "is answered by categories, and none is described");
  }

  void ReadTypeAndFormat() {
    const pugi::xml_node format = ElementOf(fElement, "varFormat");
    const DdiFormat read = ReadDdiFormat(fElement, format);
    fField.dialect.type = read.type;
    if (!read.datePattern.empty()) fField.dialect.format = read.datePattern;
    const bool hasTextCodes = fCodes > 0 && fNumericCodes == 0;
    if (hasTextCodes && fField.dialect.type == FieldType::Number) {
      Tell(DdiOddity::TextCodes, fElement,
           fmt::format("is said to be numeric, but its categories are texts such as {}; it is read as text",
                       QuotedCell(fField.categories.front().value)));
      fField.dialect.type = FieldType::String;
    } else if (fField.dialect.type == FieldType::Number) {
      fField.format = read.format;
    }
    fVariable.kept.KeepText("varFormat", LinesOf(format));
    if (format) fVariable.kept.KeepAttributes("varFormat", format, {"type"});
    ReadWidth();
  }

  void ReadWidth() {
    const bool isText = fField.dialect.type == FieldType::String;
    for (const pugi::xml_node location : ElementsOf(fElement, "location")) {
      const std::optional<double> width = NumberIn(AttributeOf(location, "width"));
      constexpr double kWidest = 32767;  // bytes; labels of such a variable are as wide
      const bool fits = width && *width >= 1 && *width <= kWidest && *width == std::floor(*width);
      if (isText && fits && !fField.maxLength) {
        fField.maxLength = static_cast<int>(*width);
        fVariable.kept.KeepAttributes("location", location, {"fileid", "width"});
        continue;
      }
      if (isText && !fits && !AttributeOf(location, "width").empty())
        Tell(DdiOddity::UnusableWidth, location,
             fmt::format("has the width {}, which is not used: it must be a whole number from 1 to 32767",
                         QuotedCell(AttributeOf(location, "width"))));
      fVariable.kept.KeepAttributes("location", location, {"fileid"});
    }
  }

  /// `nature` says more than `intrvl`, of which "discrete" alone says little.
  void ReadLevel() {
    const std::string nature = AttributeOf(fElement, "nature");
    const std::string interval = AttributeOf(fElement, "intrvl");
    if (nature == "nominal" || nature == "ordinal")
      fField.measure = nature;
    else if (nature == "interval" || nature == "ratio" || nature == "percent")
      fField.measure = "scale";
    else if (!nature.empty() && nature != "other")
      Tell(DdiOddity::UnknownWord, fElement,
           fmt::format("has the nature {}, which is not known: nominal, ordinal, interval, ratio, percent, other",
                       QuotedCell(nature)));
    if (fField.measure) return;
    if (interval == "contin" && fField.dialect.type != FieldType::String)
      fField.measure = "scale";
    else if (interval == "discrete" && fField.hasCategories)
      fField.measure = "nominal";
    else if (!interval.empty() && interval != "contin" && interval != "discrete")
      Tell(DdiOddity::UnknownWord, fElement,
           fmt::format("has the intrvl {}, which is not known: contin, discrete", QuotedCell(interval)));
  }

  /// Words that the level, the format and the file do not say again.
  void KeepAttributesThatSayMore() {
    const std::string nature = AttributeOf(fElement, "nature");
    const std::string interval = AttributeOf(fElement, "intrvl");
    if (nature != fField.measure.value_or("") && !nature.empty()) fVariable.kept.KeepProperty("ddi:@nature", nature);
    const char* implied = !fField.measure ? "" : fField.measure == "scale" ? "contin" : "discrete";
    if (interval != implied && !interval.empty()) fVariable.kept.KeepProperty("ddi:@intrvl", interval);
    const std::string decimals = AttributeOf(fElement, "dcml");
    if (!fField.format && !decimals.empty()) fVariable.kept.KeepProperty("ddi:@dcml", decimals);
  }

  void ReadInvalidRanges() {
    for (const pugi::xml_node invalid : ElementsOf(fElement, "invalrng"))
      for (const pugi::xml_node entry : invalid.children()) {
        if (IsElement(entry, "item"))
          ReadInvalidValue(entry);
        else if (IsElement(entry, "range"))
          ReadInvalidRange(entry);
        else if (entry.type() == pugi::node_element)
          fVariable.kept.KeepElement("invalrng/" + std::string(LocalName(entry)), entry);
      }
  }

  void AddInvalidValue(const std::string& value) {
    if (fMissing.insert(value).second) fField.missingValues.push_back({value, false, std::nullopt});
  }

  void ReadInvalidValue(pugi::xml_node item) {
    const std::string value = AttributeOf(item, "VALUE");
    if (!value.empty()) AddInvalidValue(value);
  }

  void ReadInvalidRange(pugi::xml_node range) {
    const bool isReal = AttributeOf(range, "UNITS") == "REAL";
    bool isBad = false;
    const std::optional<double> least = Bound(range, "min", "minExclusive", isReal, true, isBad);
    const std::optional<double> most = Bound(range, "max", "maxExclusive", isReal, false, isBad);
    if (!least && !most && !isBad) return;
    const bool isText = fField.dialect.type == FieldType::String;
    if (isBad || isText || (least && most && *least > *most)) {
      Tell(DdiOddity::UnusableRange, range,
           isText ? "is text, and its range of invalid values is not used; list the values"
                  : "has a range of invalid values that is not used: its bounds must be numbers, the lower one first");
      fVariable.kept.KeepElement("invalrng/range", range);
      return;
    }
    // Ranges are of numbers, and nobody says that of this one.
    if (fField.dialect.type == FieldType::Inferred) fField.dialect.type = FieldType::Number;
    if (least && most && *least == *most)
      AddInvalidValue(fmt::format("{}", *least));
    else
      fField.missingRanges.push_back({least, most});
  }

  /// An exclusive bound is the next number: of whole numbers the next of those.
  static std::optional<double> Bound(pugi::xml_node range, const char* name, const char* exclusive, bool isReal,
                                     bool isLower, bool& isBad) {
    const bool isExclusive = AttributeOf(range, name).empty();
    const std::string text = AttributeOf(range, isExclusive ? exclusive : name);
    if (text.empty()) return std::nullopt;
    const std::optional<double> bound = NumberIn(text);
    if (!bound) {
      isBad = true;
      return std::nullopt;
    }
    if (!isExclusive) return bound;
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    if (isReal || *bound != std::floor(*bound)) return std::nextafter(*bound, isLower ? kInfinity : -kInfinity);
    return *bound + (isLower ? 1 : -1);
  }

  DdiVariable& fVariable;
  pugi::xml_node fElement;
  FieldDescriptor& fField;
  RepeatedNotes& fNotes;
  std::unordered_set<std::string> fMissing;
  std::size_t fCodes = 0;  // of categories that are not missing
  std::size_t fNumericCodes = 0;
};

}  // namespace

std::string NameOfDdiVariable(pugi::xml_node variable) {
  std::string name = AttributeOf(variable, "name");
  return name.empty() ? AttributeOf(variable, "ID") : name;
}

DdiVariable ReadDdiVariable(pugi::xml_node element, RepeatedNotes& notes) {
  DdiVariable variable;
  variable.element = element;
  VariableReader(variable, notes).Run();
  return variable;
}

FieldDescriptor FinishDdiVariable(DdiVariable variable) {
  variable.field.attributes = variable.attributes.Finish();
  variable.field.extras = variable.kept.Finish();
  return std::move(variable.field);
}

}  // namespace runtime::data
