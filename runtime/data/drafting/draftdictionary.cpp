#include "runtime/data/drafting/draftdictionary.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/checking/distinctvalues.h"
#include "runtime/data/checking/readingfacts.h"
#include "runtime/data/dictionary/numberwords.h"
#include "runtime/data/dictionary/variablenames.h"
#include "runtime/data/dictionary/writing/guessesjson.h"
#include "runtime/data/drafting/columnevidence.h"
#include "runtime/data/drafting/setguess.h"
#include "runtime/data/foldedname.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

constexpr std::size_t kMostCategories = ValueFacts::kMostDistinct;
constexpr std::size_t kLongestCategory = 80;  // bytes; longer texts are answers in own words
constexpr std::size_t kLongestCode = 3;       // bytes of a text that needs a label to be understood

std::string ToDo(const std::string& what) { return kToDo + what; }

bool IsGuessedMissing(const ColumnEvidence& evidence, double number) {
  return std::any_of(evidence.missingNumbers.begin(), evidence.missingNumbers.end(),
                     [number](const auto& guess) { return guess.first == number; });
}

bool IsGuessedMissing(const ColumnEvidence& evidence, std::string_view text) {
  return std::find(evidence.missingTexts.begin(), evidence.missingTexts.end(), text) != evidence.missingTexts.end();
}

class Drafting {
 public:
  Drafting(const OpenedDataset& opened, machine::ThreadPool* pool);
  Draft Finish() &&;

 private:
  void ReadColumns(const OpenedDataset& opened, machine::ThreadPool* pool);
  void DraftSets();
  void DraftSet(const SetGuess& guess);
  void DraftField(std::size_t column);
  void DraftType(std::size_t column);
  void DraftTitle(std::size_t column);
  void DraftMissing(std::size_t column);
  void DraftCategories(std::size_t column);
  void AddMissing(std::size_t column, LabelledValue value, const std::string& why);
  std::string LabelToDo(const std::string& value);
  void GuessWeight();

  Draft fDraft;
  std::vector<std::string> fHeaders;
  std::vector<std::string> fVariables;  // names
  std::vector<ColumnEvidence> fEvidence;
  std::vector<std::vector<Guess>> fGuesses;  // of each field
  std::vector<Guess> fGuessesOfTable;
  std::vector<std::string> fOptions;    // of set members: what is known of their option
  std::vector<const SetGuess*> fSetOf;  // null: in none
  std::vector<SetGuess> fSets;
  std::set<std::string> fCodesSeen;
  NamesInUse fSetNames;
};

Drafting::Drafting(const OpenedDataset& opened, machine::ThreadPool* pool) {
  fDraft.table = *opened.description;
  for (const ColumnFacts& facts : opened.reading->columns) fHeaders.push_back(facts.header);
  for (const auto& variable : opened.dataset->dictionary().variables) fVariables.push_back(variable->name);
  fEvidence.resize(fHeaders.size());
  fGuesses.resize(fHeaders.size());
  fOptions.resize(fHeaders.size());
  fSetOf.resize(fHeaders.size(), nullptr);
  ReadColumns(opened, pool);
}

void Drafting::ReadColumns(const OpenedDataset& opened, machine::ThreadPool* pool) {
  const auto work = [&](std::size_t column) {
    fEvidence[column] = EvidenceOf(CollectDistinctValues(*opened.dataset, static_cast<int>(column)),
                                   fDraft.table.fields[column].dialect.type);
  };
  if (pool != nullptr)
    pool->ForEach(fHeaders.size(), work);
  else
    for (std::size_t column = 0; column < fHeaders.size(); ++column) work(column);
}

std::string Drafting::LabelToDo(const std::string& value) {
  ++fDraft.toDos;
  return ToDo("label of " + value);
}

void Drafting::DraftSets() {
  fSets = GuessSets(fHeaders, fEvidence);
  for (const SetGuess& guess : fSets) DraftSet(guess);
}

const char* CellWords(const SetGuess& guess) {
  switch (guess.cells) {
    case SetCells::OptionOrBlank:
      return "one text or nothing";
    case SetCells::OptionOrNot:
      return "one text or words for not selected";
    case SetCells::OneOrBlank:
      return "1 or nothing";
    case SetCells::ZeroOne:
      return "0 and 1";
    case SetCells::OneMinusOne:
      return "1 and -1";
    case SetCells::None:
      break;
  }
  return "";
}

void Drafting::DraftSet(const SetGuess& guess) {
  constexpr std::size_t kLongestName = 32;
  const bool isName = guess.stem.find(' ') == std::string::npos && guess.stem.size() <= kLongestName;
  SetDescriptor set;
  set.name = "$" + (isName ? MakeWellFormed(guess.stem) : fmt::format("set{}", fDraft.table.sets.size() + 1));
  set.name = fSetNames.Claim(set.name, 1);
  if (isName)
    set.label = LabelToDo("the set " + set.name);
  else
    set.label = guess.question;
  const bool isText = guess.cells == SetCells::OptionOrBlank || guess.cells == SetCells::OptionOrNot;
  set.isDichotomy = !isText || guess.sameOption;
  if (set.isDichotomy) set.countedValue = isText ? guess.option : "1";
  for (std::size_t i = 0; i < guess.columns.size(); ++i) {
    const std::size_t column = guess.columns[i];
    set.variables.push_back(fDraft.table.fields[column].name);
    fSetOf[column] = &guess;
    fOptions[column] = guess.options[i];
  }
  fGuessesOfTable.push_back(
      {fmt::format("{} is a multiple response set of {} variables, {} to {}", set.name, set.variables.size(),
                   set.variables.front(), set.variables.back()),
       fmt::format("neighbours with headers that begin alike, whose cells hold {}", CellWords(guess))});
  fDraft.sets.push_back(set.name);
  fDraft.table.sets.push_back(std::move(set));
}

void Drafting::DraftType(std::size_t column) {
  const ColumnEvidence& evidence = fEvidence[column];
  if (!evidence.wasText) return;
  FieldDescriptor& field = fDraft.table.fields[column];
  field.dialect.type = evidence.type;
  field.format.reset();
  const bool few = evidence.isWhole() && evidence.numbers.size() <= kMostCategories;
  field.measure = few || evidence.type == FieldType::Boolean ? "nominal" : "scale";
  ++fDraft.typedColumns;
  fGuesses[column].push_back({"the type, as if the texts among the values were codes for missing answers",
                              "all other values read as this type"});
}

void Drafting::DraftTitle(std::size_t column) {
  FieldDescriptor& field = fDraft.table.fields[column];
  const std::string& header = fHeaders[column];
  if (field.title && !field.title->empty() && *field.title != header) {
    fGuesses[column].push_back({"the title is what the data call the column", "the column has a comment"});
  } else if (!fOptions[column].empty()) {
    field.title = fOptions[column];
    fGuesses[column].push_back({"the title is the option", "the header or the cells name it"});
  } else if (header.find(' ') != std::string::npos) {
    field.title = header;
    fGuesses[column].push_back({"the title is the header", "the header reads as a text"});
  } else {
    field.title = LabelToDo(field.name);
  }
}

void Drafting::AddMissing(std::size_t column, LabelledValue value, const std::string& why) {
  fGuesses[column].push_back({fmt::format("{} is a code for a missing answer", value.value), why});
  if (fCodesSeen.insert(value.value).second) fDraft.missingCodes.push_back(value.value);
  value.label = LabelToDo(value.value);
  fDraft.table.fields[column].missingValues.push_back(std::move(value));
}

void Drafting::DraftMissing(std::size_t column) {
  const ColumnEvidence& evidence = fEvidence[column];
  std::vector<LabelledValue>& missing = fDraft.table.fields[column].missingValues;
  const std::size_t before = missing.size();
  const SetGuess* set = fSetOf[column];
  if (set != nullptr && set->cells == SetCells::OptionOrNot && !set->sameOption)
    AddMissing(column, {evidence.notOption, false, std::nullopt}, "the option was not selected");
  for (const std::string_view text : evidence.missingTexts)
    AddMissing(
        column, {std::string(text), false, std::nullopt},
        evidence.wasText ? "it is known as such, and all other values are of another type" : "it is known as such");
  if (set == nullptr)
    for (const auto& [number, why] : evidence.missingNumbers)
      AddMissing(column, {NumberWords(number), true, std::nullopt}, why);
  if (missing.size() > before) ++fDraft.missingFields;
}

void Drafting::DraftCategories(std::size_t column) {
  const ColumnEvidence& evidence = fEvidence[column];
  FieldDescriptor& field = fDraft.table.fields[column];
  const SetGuess* set = fSetOf[column];
  if (set != nullptr && set->cells == SetCells::OptionOrBlank) return;
  std::vector<LabelledValue> categories;
  if (evidence.type == FieldType::Integer) {
    if (field.measure != "nominal") return;
    for (const double number : evidence.numbers) {
      if (set == nullptr && IsGuessedMissing(evidence, number)) continue;
      const std::string words = NumberWords(number);
      if (set == nullptr) {
        categories.push_back({words, true, LabelToDo(words)});
        continue;
      }
      categories.push_back({words, true, number == 1 ? "selected" : "not selected"});
    }
    if (set != nullptr) fGuesses[column].push_back({"1 is selected", "the variable is a member of a set"});
  } else if (evidence.type == FieldType::String) {
    std::size_t longest = 0;
    for (const std::string_view text : evidence.texts) {
      if (IsGuessedMissing(evidence, text)) continue;
      longest = std::max(longest, text.size());
      categories.push_back({std::string(text), false, std::nullopt});
    }
    const auto cells = static_cast<std::size_t>(evidence.rows - evidence.blanks);
    if (longest > kLongestCategory || cells < 2 * categories.size() || categories.size() > kMostCategories) return;
    if (longest <= kLongestCode)
      for (LabelledValue& category : categories) category.label = LabelToDo(category.value);
  }
  if (categories.empty() || categories.size() > kMostCategories) return;
  field.categories = std::move(categories);
  field.hasCategories = true;
}

void Drafting::DraftField(std::size_t column) {
  FieldDescriptor& field = fDraft.table.fields[column];
  DraftType(column);
  DraftTitle(column);
  DraftMissing(column);
  DraftCategories(column);
  if (!fGuesses[column].empty()) field.extras.push_back({"codebook.draft", GuessesJson(fGuesses[column])});
}

/// A column of positive numbers around 1 that is called a weight.
void Drafting::GuessWeight() {
  static const std::set<std::string, std::less<>> kNames = {
      "weight", "weights", "wgt",        "wt",           "wght",          "pweight",      "gewicht",
      "poids",  "peso",    "weight_var", "final_weight", "sample_weight", "survey_weight"};
  for (std::size_t column = 0; column < fHeaders.size(); ++column) {
    const ColumnEvidence& evidence = fEvidence[column];
    if (evidence.type != FieldType::Number || evidence.numbers.empty() || evidence.numbers.front() < 0 ||
        kNames.count(FoldName(fHeaders[column])) == 0)
      continue;
    double sum = 0;
    double cases = 0;
    for (std::size_t i = 0; i < evidence.numbers.size(); ++i) {
      sum += evidence.numbers[i] * static_cast<double>(evidence.counts[i]);
      cases += static_cast<double>(evidence.counts[i]);
    }
    const double mean = sum / cases;
    if (mean < 0.5 || mean > 2) continue;
    fDraft.weight = fDraft.table.fields[column].name;
    fDraft.table.weight = fDraft.weight;
    fGuessesOfTable.push_back({fmt::format("{} is the weight", fDraft.weight),
                               fmt::format("its name, and positive numbers with a mean of {:.3g}", mean)});
    return;
  }
}

Draft Drafting::Finish() && {
  TableDescriptor& table = fDraft.table;
  std::unordered_set<std::string> names;
  // A name that stands twice, or none, would not be found again: the variable's name is, see MatchFields.
  for (std::size_t column = 0; column < fHeaders.size(); ++column)
    if (fHeaders[column].empty() || !names.insert(fHeaders[column]).second)
      table.fields[column].name = fVariables[column];
  ++fDraft.toDos;
  table.label = ToDo("title of the data");
  DraftSets();
  for (std::size_t column = 0; column < fHeaders.size(); ++column) DraftField(column);
  GuessWeight();
  if (!fGuessesOfTable.empty()) table.extras.push_back({"codebook.draft", GuessesJson(fGuessesOfTable)});
  return std::move(fDraft);
}

}  // namespace

Draft DraftDictionary(const OpenedDataset& opened, machine::ThreadPool* pool) {
  return Drafting(opened, pool).Finish();
}

}  // namespace runtime::data
