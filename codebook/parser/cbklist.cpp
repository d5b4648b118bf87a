// The variable and set list behind the command name.
#include <string>
#include <utility>

#include "host/common/check.h"

#include "codebook/parser/cbkkeywords.h"
#include "codebook/parser/cbkparser.h"

namespace codebook {

namespace {

constexpr const char* kSource = "backend/codebook/parser/cbkparser";
constexpr const char* kInvalidName = "^1 Invalid or non-existent variable name.";
constexpr const char* kDuplicate = "Duplicate variable or MRset name.";
constexpr const char* kMalformed = "Error in < ^1 > command.";
constexpr const char* kInvalidLevel = "Invalid measurement level.";

const TokenInfoObj* tokenAt(const std::vector<TokenInfoObj>& tokens, int position) {
  return position >= 0 && static_cast<std::size_t>(position) < tokens.size()
             ? &tokens[static_cast<std::size_t>(position)]
             : nullptr;
}

bool isToken(const TokenInfoObj* token, const std::string& keyword) {
  return token != nullptr && token->getUpperString() == keyword;
}

}  // namespace

std::int32_t kindFromDictionary(const MAVO_Variable& variable) {
  const auto level = variable.GetMeasurementLevel();
  return level == MAVO_Variable_Enumerations::kLevelNominal || level == MAVO_Variable_Enumerations::kLevelOrdinal
             ? kNominalItem
             : kScaleItem;
}

ListResolution::ListResolution(CodebookRequest& request)
    : fRequest(request), fVariableIsListed(request.fDataSource->ColumnCount(), false) {}

bool ListResolution::resolveList(const SubComObj& list) {
  fList = &list;
  const int count = static_cast<int>(list.getTokenListSize());
  const auto upperAt = [&list, count](int i) -> const std::string* {
    return i < count ? &list.getTokenObj(static_cast<std::size_t>(i))->getUpperString() : nullptr;
  };
  const auto isAt = [&upperAt](int i, const std::string& keyword) {
    const std::string* token = upperAt(i);
    return token != nullptr && *token == keyword;
  };

  for (int i = 0; i < count; ++i) {
    const std::string& typed = list.getTokenObj(static_cast<std::size_t>(i))->getString();
    bool goOn = true;
    if (isAt(i, keyword::kAll)) {
      goOn = addAllVariables(i);
    } else if (isAt(i, keyword::kAllSets)) {
      if (fRequest.fDataSource->GetMRSets().empty()) {
        error("No MRSet.");
        goOn = false;
      } else {
        fRequest.fSettings->setAllSetsListed(true);
        addWholeDictionary(false, true);
      }
    } else if (isAt(i + 1, keyword::kTo)) {
      goOn = addRange(i, false);
    } else if (isAt(i + 1, keyword::kOpenBracket) && isAt(i + 3, keyword::kCloseBracket) && isAt(i + 4, keyword::kTo)) {
      goOn = addRange(i, true);
    } else if (typed.starts_with("$")) {
      if (fRequest.fSettings->allSetsListed()) {
        error(kDuplicate);
        goOn = false;
      } else if (!addSet(typed)) {
        // A set named twice thus gets both messages, the duplicate first. Meant so.
        error(kInvalidName, typed.c_str());
        goOn = false;
      } else {
        fRequest.fListedNames.emplace_back(typed);
        append(typed, fRequest.fSetCounter++);
        goOn = readSetKeyword(i);
      }
    } else {
      goOn = addVariable(i);
    }
    if (!goOn) return false;
  }
  fRequest.fSettings->setItems(fItems);
  return true;
}

void ListResolution::addWholeDictionary(bool withVariables, bool withSets) {
  const MAVO_DataSource& source = *fRequest.fDataSource;
  if (withVariables) {
    std::vector<std::int32_t> kinds = fRequest.fSettings->itemKinds();
    for (int index = 0; index < static_cast<int>(source.ColumnCount()); ++index) {
      const MAVO_Variable& variable = source.GetVariable(index);
      kinds[static_cast<std::size_t>(index)] = kindFromDictionary(variable);
      append(variable.GetName(), index);
    }
    fRequest.fSettings->setItemKinds(kinds);
  }
  // No duplicate check: a set that was named before $ALL is listed twice, one named after it is refused by the walk.
  if (withSets) {
    for (const VariableSetImpl& set : source.GetMRSets()) append(set.Name(), fRequest.fSetCounter++);
  }
  fRequest.fSettings->setItems(fItems);
}

bool ListResolution::addAllVariables(int& position) {
  const MAVO_DataSource& source = *fRequest.fDataSource;
  int behindBracket = position;
  for (int index = 0; index < static_cast<int>(source.ColumnCount()); ++index) {
    if (isListed(index)) {
      error(kDuplicate, fList->getTokenObj(static_cast<std::size_t>(position))->getString().c_str());
      return false;
    }
    append(source.GetVariable(index).GetName(), index);
    // Each variable reads the same bracket anew; the position moves past it only once.
    behindBracket = position;
    if (!readMeasureKeyword(true, behindBracket, index)) return false;
  }
  position = behindBracket;
  return true;
}

bool ListResolution::addVariable(int& position) {
  if (!readTokens()) return failMalformed();
  const std::string& typed = fTokens[static_cast<std::size_t>(position)].getString();
  const int index = findVariable(typed);
  if (index < 0) return false;
  if (isListed(index)) {
    error(kDuplicate);
    return false;
  }
  append(typed, index);
  return readMeasureKeyword(true, position, index);
}

bool ListResolution::addRange(int& position, bool bracketAfterFirst) {
  if (!readTokens()) return failMalformed();

  const int behindFirst = bracketAfterFirst ? 3 : 0;
  const TokenInfoObj* second = tokenAt(fTokens, position + 2 + behindFirst);
  if (second == nullptr) {
    fRequest.fParserMessage->KeywordImproperVarList(keyword::kTo.c_str(), nullptr, nullptr);
    return false;
  }
  const std::string firstName = fTokens[static_cast<std::size_t>(position)].getString();
  const std::string secondName = second->getString();
  if (firstName.starts_with("$") || secondName.starts_with("$")) {
    error("^1 TO ^2 keyword used for multiple response sets.", firstName.c_str(), secondName.c_str());
    return false;
  }
  int lower = findVariable(firstName);
  if (lower < 0) return false;
  int upper = findVariable(secondName);
  if (upper < 0) return false;
  if (lower == upper) {
    fRequest.fParserMessage->KeywordImproperVarList(keyword::kTo.c_str(), nullptr, nullptr);
    return false;
  }
  if (lower > upper) std::swap(lower, upper);  // a backward range is walked forwards

  bool result = true;
  for (int index = lower; index <= upper; ++index) {
    const bool isNew = !isListed(index);
    const bool isEnd = index == lower || index == upper;
    if (isNew)
      append(fRequest.fDataSource->GetVariable(index).GetName(), index);
    else if (isEnd)
      error(kDuplicate);  // told, and yet the range goes on: the result is that of the keyword call below
    if (!isEnd) {
      if (isNew) setKind(index, kindFromDictionary(fRequest.fDataSource->GetVariable(index)));
      continue;
    }
    if (index == upper) position += 2;  // past TO and the second name
    result = readMeasureKeyword(isNew, position, index);
    if (!result) break;
  }
  return result;
}

bool ListResolution::addSet(const std::string& name) {
  bool added = false;
  for (const VariableSetImpl& set : fRequest.fDataSource->GetMRSets()) {
    if (!sameName(name, set.Name())) continue;
    bool listedBefore = false;
    for (const MavoVarName& listed : fRequest.fListedNames) listedBefore |= sameName(name, listed.text());
    if (listedBefore) {
      error(kDuplicate);
    } else {
      fRequest.fSettings->addListedSetName(name);
      added = true;
      break;
    }
  }
  return added;
}

bool ListResolution::readSetKeyword(int& position) {
  if (!readTokens()) return failMalformed();
  std::vector<TokenInfoObj> inside;
  if (bracketed(fTokens, position + 2, 1, keyword::kOpenBracket, keyword::kCloseBracket, inside)) {
    if (inside.front().getUpperString() != keyword::kNominal) warning(kInvalidLevel);
    position += 3;
    return true;
  }
  if (isToken(tokenAt(fTokens, position + 1), keyword::kOpenBracket)) return failMalformed();
  return true;
}

bool ListResolution::readMeasureKeyword(bool isNew, int& position, int variableIndex) {
  const MAVO_Variable& variable = fRequest.fDataSource->GetVariable(variableIndex);
  const std::int32_t dictionaryKind = kindFromDictionary(variable);
  const bool isString = variable.GetType() != 0;
  std::int32_t kind = dictionaryKind;  // undoes any earlier keyword

  if (!readTokens()) return failMalformed();
  std::vector<TokenInfoObj> inside;
  if (bracketed(fTokens, position + 2, 1, keyword::kOpenBracket, keyword::kCloseBracket, inside)) {
    position += 3;
    HostCheck(!fItems.empty(), "varIndxList.size() > 0", kSource);
    if (isNew && isListed(variableIndex)) {
      const std::string& level = inside.front().getUpperString();
      if (level == keyword::kNominal) {
        kind = kNominalItem;
      } else if (level == keyword::kOrdinal) {
        kind = kOrdinalItem;
      } else if (isString) {
        kind = kNominalItem;
        warning("Scale (continuous) measurement.");
      } else if (level == keyword::kScale) {
        kind = kScaleItem;
      } else {
        warning(kInvalidLevel);
      }
    }
  } else if (isToken(tokenAt(fTokens, position + 1), keyword::kOpenBracket)) {
    return failMalformed();
  }

  // A string variable without a categorical level ends as nominal whatever its keyword said, ordinal included.
  if (isString && dictionaryKind == kScaleItem) kind = kNominalItem;
  setKind(variableIndex, kind);
  return true;
}

int ListResolution::findVariable(const std::string& name) {
  const MavoVarName variableName(name);
  const int index =
      ValidateMAVOName(variableName.c_str()) == 0 ? fRequest.fDataSource->FindVarIndex(variableName.c_str(), 0) : -1;
  if (index < 0) error(kInvalidName, variableName.c_str());
  return index;
}

bool ListResolution::bracketed(const std::vector<TokenInfoObj>& tokens, int start, int count, const std::string& open,
                               const std::string& close, std::vector<TokenInfoObj>& inside) {
  if (start < 1 || tokens.size() < static_cast<std::size_t>(start + count + 1)) return false;
  if (!isToken(tokenAt(tokens, start - 1), open) || !isToken(tokenAt(tokens, start + count), close)) return false;
  inside.assign(tokens.begin() + start, tokens.begin() + start + count);
  return true;
}

bool ListResolution::readTokens() {
  const ParamObj* exported = fList->exportParamObj();
  HostCheck(exported != nullptr, "paramObjPtr", kSource);
  // Read once a list, not once a name: a list of thousands of names stays linear.
  if (!fTokensRead) fTokensRead = exported->getTokenList(fTokens);
  return fTokensRead;
}

bool ListResolution::isListed(int variableIndex) const {
  return fVariableIsListed[static_cast<std::size_t>(variableIndex)];
}

/// In place: a copy of the whole list a variable would make a long list quadratic.
void ListResolution::setKind(int variableIndex, std::int32_t kind) {
  fRequest.fSettings->itemKinds()[static_cast<std::size_t>(variableIndex)] = kind;
}

void ListResolution::append(const std::string& name, int index) {
  fItems.push_back({name, index});
  if (static_cast<std::size_t>(index) < fVariableIsListed.size())
    fVariableIsListed[static_cast<std::size_t>(index)] = true;
}

void ListResolution::error(const char* text, const char* argument1, const char* argument2) {
  fRequest.fParserMessage->GenericError(text, argument1, argument2, nullptr, nullptr, nullptr);
}

void ListResolution::warning(const char* text) {
  fRequest.fParserMessage->GenericWarning(text, nullptr, nullptr, nullptr, nullptr, nullptr);
}

bool ListResolution::failMalformed() {
  error(kMalformed, keyword::kCodebook.c_str());
  return false;
}

}  // namespace codebook
