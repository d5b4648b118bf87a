#include "runtime/parser/commandreader.h"

#include <utility>

#include <fmt/format.h>

#include "runtime/parser/characters.h"
#include "runtime/parser/suggestion.h"
#include "runtime/parser/visibletext.h"

using runtime::parser::ListAlternatives;
using runtime::parser::NearestKeyword;
using runtime::parser::ShowFound;
using runtime::parser::ShowText;
using runtime::parser::TextPlace;
using runtime::parser::UpperCase;

namespace {

using Kind = TokenInfoObj::Kind;

constexpr std::size_t kMostErrors = 10;

bool IsSlash(const TokenInfoObj& token) { return token.kind() == Kind::Special && token.getString() == "/"; }

/// Keywords stand without quotes. A number is none, but the unknown one is told like any other word.
bool IsKeywordToken(const TokenInfoObj& token) { return token.kind() == Kind::Word || token.kind() == Kind::Number; }

TextPlace PlaceOf(const TokenInfoObj& token) { return {token.line(), token.column()}; }

bool TakesValue(const ParamDescriptor& param) {
  switch (param.spec()) {
    case kParamString:
    case kParamInteger:
    case kParamQualified:
      return true;
    case kParamKeyword:
    case kParamExport:
      return false;
  }
  return false;
}

const ParamDescriptor* FindParam(const std::vector<ParamDescriptor>& params, const std::string& upperName) {
  for (const ParamDescriptor& param : params) {
    if (UpperCase(param.name()) == upperName) return &param;
  }
  return nullptr;
}

std::vector<std::string> NamesOf(const std::vector<ParamDescriptor>& params) {
  std::vector<std::string> names;
  names.reserve(params.size());
  for (const ParamDescriptor& param : params) names.push_back(param.name());
  return names;
}

/// What may be the parameter's value; empty when any text may.
std::vector<std::string> AllowedValues(const ParamDescriptor& param) {
  return param.spec() == kParamQualified ? NamesOf(param.qualifiers()) : param.stringValues();
}

std::string DescribeValue(const ParamDescriptor& param) {
  const std::vector<std::string> allowed = AllowedValues(param);
  if (!allowed.empty()) return ListAlternatives(allowed);
  return param.spec() == kParamInteger ? "an integer" : "a name";
}

/// "Write MAXCATS=n or MAXCATS(n)"
std::string HowToWrite(const ParamDescriptor& param) {
  std::string value = param.spec() == kParamInteger ? "n" : "name";
  if (const std::vector<std::string> allowed = AllowedValues(param); !allowed.empty()) value = allowed.front();
  return fmt::format("Write {0}={1} or {0}({1})", param.name(), value);
}

std::string NameOf(const SubComDescriptor& grammar) {
  return grammar.name().empty() ? "the list" : "subcommand " + grammar.name();
}

/// Says where a word that is no keyword of this subcommand does belong; empty when it belongs nowhere.
std::string WhereItBelongs(const std::string& upperWord, const SubComDescriptor& here,
                           const std::vector<SubComDescriptor>& subcommands) {
  for (const ParamDescriptor& param : here.params()) {
    for (const std::string& value : AllowedValues(param)) {
      if (UpperCase(value) == upperWord) {
        return fmt::format("{0} is a value of keyword {1}: write {1}={0}", value, param.name());
      }
    }
  }
  for (const SubComDescriptor& other : subcommands) {
    if (!other.name().empty() && UpperCase(other.name()) == upperWord) {
      return fmt::format("{0} is a subcommand: write /{0}", other.name());
    }
  }
  for (const SubComDescriptor& other : subcommands) {
    const ParamDescriptor* param = FindParam(other.params(), upperWord);
    if (param != nullptr) return fmt::format("{} is a keyword of {}", param->name(), NameOf(other));
  }
  return {};
}

}  // namespace

CommandReader::CommandReader(const std::vector<TokenInfoObj>& tokens, const CommandDescriptor& grammar, TextPlace end)
    : fTokens(tokens), fGrammar(grammar), fEnd(end), fFirstNames(grammar.subcommands().size(), nullptr) {}

bool CommandReader::Read(CommandSpec& spec) {
  if (!ReadCommandName()) return false;
  if (!ReadList()) SkipToSubcommand();
  while (Peek() != nullptr && fErrors.size() < kMostErrors) {
    if (!ReadSubcommand()) SkipToSubcommand();
  }
  if (!fErrors.empty()) {
    if (Peek() != nullptr) fErrors.back().advice = "The rest of the command was not read, for its many errors";
    return false;
  }
  spec.fSubcommands = std::move(fSubcommands);
  return true;
}

bool CommandReader::AtSpecial(const char* special) const {
  const TokenInfoObj* token = Peek();
  return token != nullptr && token->kind() == Kind::Special && token->getString() == special;
}

TextPlace CommandReader::Place() const { return Peek() != nullptr ? PlaceOf(*Peek()) : fEnd; }

void CommandReader::SkipToSubcommand() {
  while (Peek() != nullptr && !IsSlash(*Peek())) ++fNext;
}

bool CommandReader::ReadCommandName() {
  const TokenInfoObj* name = Peek();
  if (name == nullptr || !IsKeywordToken(*name)) {
    return Fail(fmt::format("A command begins with its name, found {}", ShowFound(name)), fGrammar.name());
  }
  if (name->getUpperString() != UpperCase(fGrammar.name())) {
    return Fail(fmt::format("Unknown command {}", ShowFound(name)), fGrammar.name(),
                NearestKeyword(name->getString(), {fGrammar.name()}));
  }
  ++fNext;
  return true;
}

bool CommandReader::ReadList() {
  if (Peek() == nullptr || IsSlash(*Peek())) return true;
  for (const SubComDescriptor& grammar : fGrammar.subcommands()) {
    if (grammar.name().empty()) return ReadBody(grammar);
  }
  return Fail(fmt::format("Command {} takes no list, found {}", fGrammar.name(), ShowFound(Peek())),
              "a subcommand or the end of the command");
}

bool CommandReader::ReadSubcommand() {
  ++fNext;  // the slash
  const TokenInfoObj* name = Peek();
  if (name == nullptr || !IsKeywordToken(*name)) return FailNoSubcommand();
  for (std::size_t i = 0; i < fGrammar.subcommands().size(); ++i) {
    const SubComDescriptor& grammar = fGrammar.subcommands()[i];
    if (grammar.name().empty() || UpperCase(grammar.name()) != name->getUpperString()) continue;
    if (fFirstNames[i] != nullptr) return FailSubcommandTwice(grammar, *fFirstNames[i]);
    fFirstNames[i] = name;
    ++fNext;
    if (AtSpecial("=")) ++fNext;
    return ReadBody(grammar);
  }
  return FailNoSubcommand();
}

bool CommandReader::ReadBody(const SubComDescriptor& grammar) {
  auto subcommand = std::make_unique<SubComObj>();
  subcommand->fName = grammar.name();
  const std::size_t first = fNext;
  if (grammar.exportsTokens() && grammar.params().empty()) SkipToSubcommand();
  while (Peek() != nullptr && !IsSlash(*Peek())) {
    if (!ReadParam(grammar, *subcommand)) return false;
  }
  if (fNext == first && !grammar.emptyAllowed()) {
    return Fail(fmt::format("Subcommand {} stands empty, found {}", grammar.name(), ShowFound(Peek())),
                ListAlternatives(NamesOf(grammar.params())));
  }

  const auto begin = fTokens.begin() + static_cast<std::ptrdiff_t>(first);
  subcommand->fTokens.assign(begin, fTokens.begin() + static_cast<std::ptrdiff_t>(fNext));
  if (grammar.exportsTokens()) {
    subcommand->fExported = std::make_unique<ParamObj>();
    subcommand->fExported->fWritten = true;
    subcommand->fExported->fTokens = subcommand->fTokens;
  }
  fSubcommands.push_back(std::move(subcommand));
  return true;
}

bool CommandReader::ReadParam(const SubComDescriptor& grammar, SubComObj& subcommand) {
  const TokenInfoObj& keyword = *Peek();
  if (!IsKeywordToken(keyword)) return FailNoKeyword(grammar);
  const ParamDescriptor* param = FindParam(grammar.params(), keyword.getUpperString());
  if (param == nullptr) return FailNoKeyword(grammar);

  if (const TokenInfoObj* first = FirstWithValue(*param)) return FailKeywordTwice(grammar, *param, *first);
  const std::size_t first = fNext;
  ++fNext;

  auto read = std::make_unique<ParamObj>();
  if (TakesValue(*param)) {
    fWrittenWithValue.emplace_back(param, &keyword);
    if (!ReadCarriedValue(grammar, *param, *read)) return false;
  } else if (AtValueSign()) {
    return Fail(
        fmt::format("Keyword {} of {} takes no value, found {}", param->name(), NameOf(grammar), ShowFound(Peek())),
        ExpectedInside(grammar));
  }
  // A bare keyword says no more the second time.
  if (subcommand.getParamObj(param->name()) != nullptr) return true;

  read->fName = param->name();
  read->fWritten = true;
  read->fTokens.assign(fTokens.begin() + static_cast<std::ptrdiff_t>(first),
                       fTokens.begin() + static_cast<std::ptrdiff_t>(fNext));
  subcommand.fParams.push_back(std::move(read));
  return true;
}

bool CommandReader::ReadCarriedValue(const SubComDescriptor& grammar, const ParamDescriptor& param, ParamObj& read) {
  if (!AtValueSign()) {
    return Fail(fmt::format("Keyword {} needs a value, found {}", param.name(), ShowFound(Peek())), "\"=\" or \"(\"",
                {}, HowToWrite(param));
  }
  const bool inParentheses = AtSpecial("(");
  ++fNext;
  if (!inParentheses && AtSpecial("(")) {
    return Fail(fmt::format("Both \"=\" and \"(\" behind keyword {}", param.name()), DescribeValue(param), {},
                HowToWrite(param));
  }
  if (!ReadValue(grammar, param, read)) return false;
  if (!inParentheses) return true;
  if (!AtSpecial(")")) {
    const bool severalWords = Peek() != nullptr && Peek()->kind() != Kind::Special;
    return Fail(fmt::format("The value of keyword {} is not closed, found {}", param.name(), ShowFound(Peek())),
                "\")\"", {}, severalWords ? "A value of several words is put in quotes" : "");
  }
  ++fNext;
  return true;
}

bool CommandReader::ReadValue(const SubComDescriptor& grammar, const ParamDescriptor& param, ParamObj& read) {
  const TokenInfoObj* value = Peek();
  if (value == nullptr || value->kind() == Kind::Special) return FailNoValue(param);

  const bool isAllowed =
      param.spec() == kParamQualified && FindParam(param.qualifiers(), value->getUpperString()) != nullptr;
  if (!isAllowed && value->kind() == Kind::Word && fNext + 1 < fTokens.size()) {
    // In "MAXCATS= SORT=ASCENDING" the value is left out, and SORT is no value of it.
    const TokenInfoObj& behind = fTokens[fNext + 1];
    const bool valueSign = behind.kind() == Kind::Special && (behind.getString() == "=" || behind.getString() == "(");
    const ParamDescriptor* other = FindParam(grammar.params(), value->getUpperString());
    if (valueSign && other != nullptr && TakesValue(*other)) return FailNoValue(param);
  }

  switch (param.spec()) {
    case kParamQualified:
      return ReadQualifier(grammar, param, read);
    case kParamString:
      return ReadStringValue(param, read);
    case kParamInteger:
    case kParamKeyword:
    case kParamExport:
      break;
  }
  read.fHasValue = true;
  read.fValue = value->getString();
  ++fNext;
  return true;
}

bool CommandReader::ReadStringValue(const ParamDescriptor& param, ParamObj& read) {
  const TokenInfoObj& value = *Peek();
  std::string text = value.getString();
  if (!param.stringValues().empty()) {
    bool isAllowed = false;
    for (const std::string& allowed : param.stringValues()) {
      if (UpperCase(allowed) != value.getUpperString()) continue;
      text = allowed;
      isAllowed = true;
      break;
    }
    if (!isAllowed) return FailUnknownValue(param, param.stringValues());
  }
  auto chosen = std::make_shared<ParamObj>();
  chosen->fName = text;
  chosen->fWritten = true;
  chosen->fTokens = {value};
  read.fChosen = std::move(chosen);
  read.fHasValue = true;
  read.fValue = std::move(text);
  ++fNext;
  return true;
}

bool CommandReader::ReadQualifier(const SubComDescriptor& grammar, const ParamDescriptor& param, ParamObj& read) {
  const std::size_t first = fNext;
  const ParamDescriptor* qualifier = FindParam(param.qualifiers(), Peek()->getUpperString());
  if (qualifier == nullptr) return FailUnknownValue(param, NamesOf(param.qualifiers()));
  ++fNext;

  auto chosen = std::make_shared<ParamObj>();
  if (TakesValue(*qualifier)) {
    if (!ReadCarriedValue(grammar, *qualifier, *chosen)) return false;
  } else if (AtValueSign()) {
    return Fail(fmt::format("{} as value of keyword {} takes no value of its own, found {}", qualifier->name(),
                            param.name(), ShowFound(Peek())),
                ExpectedInside(grammar));
  }
  chosen->fName = qualifier->name();
  chosen->fWritten = true;
  chosen->fTokens.assign(fTokens.begin() + static_cast<std::ptrdiff_t>(first),
                         fTokens.begin() + static_cast<std::ptrdiff_t>(fNext));
  read.fChosen = std::move(chosen);
  return true;
}

std::string CommandReader::ExpectedInside(const SubComDescriptor& grammar) const {
  std::vector<std::string> expected;
  for (const ParamDescriptor& param : grammar.params()) {
    if (FirstWithValue(param) == nullptr) expected.push_back(param.name());
  }
  expected.emplace_back("the next subcommand");
  return ListAlternatives(expected);
}

const TokenInfoObj* CommandReader::FirstWithValue(const ParamDescriptor& param) const {
  for (const auto& [written, keyword] : fWrittenWithValue) {
    if (written == &param) return keyword;
  }
  return nullptr;
}

bool CommandReader::Fail(std::string problem, std::string expected, std::string suggestion, std::string advice) {
  fErrors.push_back({Place(), std::move(problem), std::move(suggestion), std::move(expected), std::move(advice)});
  return false;
}

bool CommandReader::FailNoKeyword(const SubComDescriptor& grammar) {
  const TokenInfoObj& found = *Peek();
  const std::vector<std::string> keywords = NamesOf(grammar.params());
  if (found.kind() == Kind::Quoted) {
    return Fail(fmt::format("Unexpected quoted text \"{}\" in {}", ShowText(found.getString()), NameOf(grammar)),
                ExpectedInside(grammar), NearestKeyword(found.getString(), keywords),
                "Keywords are written without quotes");
  }
  if (!IsKeywordToken(found)) {
    return Fail(fmt::format("Unexpected {} in {}", ShowFound(&found), NameOf(grammar)), ExpectedInside(grammar));
  }

  const std::string problem = fmt::format("Unknown keyword {} in {}", ShowFound(&found), NameOf(grammar));
  std::string withoutPeriod = found.getUpperString();
  if (withoutPeriod.ends_with('.')) {
    withoutPeriod.pop_back();
    if (const ParamDescriptor* param = FindParam(grammar.params(), withoutPeriod)) {
      return Fail(problem, ExpectedInside(grammar), param->name(),
                  "A period ends the command only at the end of a line");
    }
  }
  const std::string advice = WhereItBelongs(found.getUpperString(), grammar, fGrammar.subcommands());
  return Fail(problem, ExpectedInside(grammar), advice.empty() ? NearestKeyword(found.getString(), keywords) : "",
              advice);
}

bool CommandReader::FailNoSubcommand() {
  std::vector<std::string> names;
  for (const SubComDescriptor& subcommand : fGrammar.subcommands()) {
    if (!subcommand.name().empty()) names.push_back(subcommand.name());
  }
  const std::string expected = names.empty() ? "the end of the command" : ListAlternatives(names);
  const TokenInfoObj* found = Peek();
  if (found == nullptr || found->kind() == Kind::Special) {
    return Fail(fmt::format("No subcommand behind \"/\", found {}", ShowFound(found)), expected);
  }
  if (found->kind() == Kind::Quoted) {
    return Fail(fmt::format("No subcommand behind \"/\", found {}", ShowFound(found)), expected,
                NearestKeyword(found->getString(), names), "Subcommands are written without quotes");
  }
  std::string advice;
  for (const SubComDescriptor& subcommand : fGrammar.subcommands()) {
    const ParamDescriptor* param = FindParam(subcommand.params(), found->getUpperString());
    if (param == nullptr || subcommand.name().empty()) continue;
    advice = fmt::format("{0} is a keyword of subcommand {1}: write /{1} {0}", param->name(), subcommand.name());
    break;
  }
  return Fail(fmt::format("Unknown subcommand {}", ShowFound(found)), expected,
              advice.empty() ? NearestKeyword(found->getString(), names) : "", advice);
}

bool CommandReader::FailSubcommandTwice(const SubComDescriptor& grammar, const TokenInfoObj& first) {
  std::vector<std::string> expected;
  for (std::size_t i = 0; i < fFirstNames.size(); ++i) {
    const std::string& name = fGrammar.subcommands()[i].name();
    if (!name.empty() && fFirstNames[i] == nullptr) expected.push_back(name);
  }
  expected.emplace_back("the end of the command");
  return Fail(fmt::format("Subcommand {} is given twice, found again", grammar.name()), ListAlternatives(expected), {},
              fmt::format("It stands first at line {}, column {}", first.line(), first.column()));
}

bool CommandReader::FailKeywordTwice(const SubComDescriptor& grammar, const ParamDescriptor& param,
                                     const TokenInfoObj& first) {
  return Fail(fmt::format("Keyword {} is given twice in {}, found again", param.name(), NameOf(grammar)),
              ExpectedInside(grammar), {},
              fmt::format("It stands first at line {}, column {}", first.line(), first.column()));
}

bool CommandReader::FailNoValue(const ParamDescriptor& param) {
  return Fail(fmt::format("The value of keyword {} is left out, found {}", param.name(), ShowFound(Peek())),
              DescribeValue(param), {}, HowToWrite(param));
}

bool CommandReader::FailUnknownValue(const ParamDescriptor& param, const std::vector<std::string>& allowed) {
  return Fail(fmt::format("Unknown value {} of keyword {}", ShowFound(Peek()), param.name()), ListAlternatives(allowed),
              NearestKeyword(Peek()->getString(), allowed));
}
