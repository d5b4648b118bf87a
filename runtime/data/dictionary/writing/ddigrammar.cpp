#include "runtime/data/dictionary/writing/ddigrammar.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <unordered_map>
#include <vector>

#include "runtime/data/dictionary/writing/ddigrammarwords.h"

namespace runtime::data {
namespace {

struct ChildRule {
  std::string_view name;
  bool isNeeded = false;
  bool mayRepeat = false;
};

struct AttributeRule {
  std::string_view name;
  std::string_view kind;  // without the mark of one that must be there
  bool isNeeded = false;
};

struct ElementRule {
  bool hasText = false;
  bool inAnyOrder = false;
  bool needsChild = false;
  std::vector<ChildRule> children;
  std::vector<AttributeRule> attributes;
};

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(separator, at), text.size());
    if (end > at || separator != ' ') parts.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

ChildRule ReadChildRule(std::string_view word) {
  const char mark = word.back();
  const bool hasMark = mark == '?' || mark == '*' || mark == '+';
  if (hasMark) word.remove_suffix(1);
  return {word, mark != '?' && mark != '*', mark == '*' || mark == '+'};
}

AttributeRule ReadAttributeRule(std::string_view word) {
  AttributeRule rule;
  rule.isNeeded = word.back() == '!';
  if (rule.isNeeded) word.remove_suffix(1);
  // The name of xml:lang has the mark of a kind in it.
  const std::size_t kind = word.find_first_of("=:", word.substr(0, 4) == "xml:" ? 4 : 0);
  rule.name = word.substr(0, kind);
  rule.kind = kind == std::string_view::npos ? std::string_view() : word.substr(kind);
  return rule;
}

ElementRule ReadElementRule(const std::vector<std::string_view>& parts) {
  static constexpr std::string_view kOfEveryElement =
      "ID:id xml-lang:token xml:lang:token elementVersion elementVersionDate:date ddiLifecycleUrn:uri "
      "ddiCodebookUrn:uri";
  ElementRule rule;
  rule.hasText = parts[1].find('t') != std::string_view::npos;
  rule.inAnyOrder = parts[1].find('c') != std::string_view::npos;
  rule.needsChild = parts[1].find('m') != std::string_view::npos;
  for (const std::string_view word : Split(parts[2], ' ')) rule.children.push_back(ReadChildRule(word));
  for (const std::string_view words : {kOfEveryElement, parts[3]})
    for (const std::string_view word : Split(words, ' ')) rule.attributes.push_back(ReadAttributeRule(word));
  return rule;
}

const ElementRule* FindRule(std::string_view element) {
  static const std::unordered_map<std::string_view, ElementRule> rules = [] {
    std::unordered_map<std::string_view, ElementRule> read;
    for (const std::string_view line : kDdiElements) {
      const std::vector<std::string_view> parts = Split(line, '|');
      read.emplace(parts[0], ReadElementRule(parts));
    }
    return read;
  }();
  const auto found = rules.find(element);
  return found == rules.end() ? nullptr : &found->second;
}

/// Of ASCII; other letters would do, but not everything beyond ASCII is one.
bool MayBeginXmlName(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

bool MayContinueXmlName(char c) { return MayBeginXmlName(c) || (c >= '0' && c <= '9') || c == '.' || c == '-'; }

bool IsToken(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c == ':' || MayContinueXmlName(c); });
}

/// YYYY, YYYY-MM or YYYY-MM-DD.
bool IsDate(std::string_view text) {
  static constexpr std::string_view kPattern = "0000-00-00";
  if (text.size() != 4 && text.size() != 7 && text.size() != 10) return false;
  for (std::size_t at = 0; at < text.size(); ++at)
    if (kPattern[at] == '-' ? text[at] != '-' : text[at] < '0' || text[at] > '9') return false;
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const auto number = [text](std::size_t at) { return (text[at] - '0') * 10 + (text[at + 1] - '0'); };
  if (text == "0000" || text.substr(0, 4) == "0000") return false;
  if (text.size() >= 7 && (number(5) < 1 || number(5) > 12)) return false;
  return text.size() < 10 || (number(8) >= 1 && number(8) <= kDays[number(5) - 1]);
}

/// Plain enough for every reader; others are kept elsewhere.
bool IsAddress(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) {
                       return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                              std::string_view("-._~/?#@!$&'()*+,;=:").find(c) != std::string_view::npos;
                     }) &&
         std::count(text.begin(), text.end(), '#') <= 1 && text.substr(0, 1) != ":" &&
         text.find("//:") == std::string_view::npos;
}

bool IsWhole(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// IDs and references by their form alone.
bool IsOfKind(std::string_view value, std::string_view kind) {
  if (kind.empty()) return true;
  if (kind.front() == '=') {
    const std::vector<std::string_view> words = Split(kind.substr(1), ',');
    return std::find(words.begin(), words.end(), value) != words.end();
  }
  if (kind == ":token") return IsToken(value);
  if (kind == ":date") return IsDate(value);
  if (kind == ":uri") return IsAddress(value);
  if (kind == ":whole") return IsWhole(value);
  if (kind == ":id" || kind == ":name" || kind == ":ref") return IsXmlName(value);
  const std::vector<std::string_view> names = Split(value, ' ');
  if (kind == ":tokens") return !names.empty() && std::all_of(names.begin(), names.end(), IsToken);
  return !names.empty() && std::all_of(names.begin(), names.end(), IsXmlName);
}

const AttributeRule* FindAttribute(const ElementRule& rule, std::string_view name) {
  for (const AttributeRule& attribute : rule.attributes)
    if (attribute.name == name) return &attribute;
  return nullptr;
}

/// Takes out what is not allowed below the element and says whether the element can stay.
bool Prune(XmlElement& element) {
  const ElementRule* rule = FindRule(element.name);
  if (!rule) return false;
  auto& attributes = element.attributes;
  attributes.erase(std::remove_if(attributes.begin(), attributes.end(),
                                  [rule](const auto& attribute) {
                                    if (attribute.first.rfind("xmlns", 0) == 0 || attribute.first.rfind("xsi:", 0) == 0)
                                      return false;
                                    const AttributeRule* allowed = FindAttribute(*rule, attribute.first);
                                    return !allowed || !IsOfKind(attribute.second, allowed->kind);
                                  }),
                   attributes.end());
  if (!rule->hasText) element.text.clear();

  std::map<std::string_view, std::size_t> placeOf;
  for (std::size_t i = 0; i < rule->children.size(); ++i) placeOf.emplace(rule->children[i].name, i);
  std::vector<std::size_t> counts(rule->children.size(), 0);
  auto& children = element.children;
  children.erase(std::remove_if(children.begin(), children.end(),
                                [&](const std::unique_ptr<XmlElement>& child) {
                                  const auto place = placeOf.find(child->name);
                                  if (place == placeOf.end() || !Prune(*child)) return true;
                                  const bool isOneTooMany =
                                      counts[place->second] > 0 && !rule->children[place->second].mayRepeat;
                                  counts[place->second] += isOneTooMany ? 0 : 1;
                                  return isOneTooMany;
                                }),
                 children.end());
  if (!rule->inAnyOrder)
    std::stable_sort(children.begin(), children.end(),
                     [&](const auto& a, const auto& b) { return placeOf[a->name] < placeOf[b->name]; });
  for (std::size_t i = 0; i < rule->children.size(); ++i)
    if (rule->children[i].isNeeded && counts[i] == 0 && !rule->inAnyOrder) return false;
  // One of the first two kinds: the values of a range, not its key alone.
  if (rule->needsChild && counts[0] + counts[1] == 0) return false;
  return std::all_of(rule->attributes.begin(), rule->attributes.end(), [&](const AttributeRule& attribute) {
    return !attribute.isNeeded || element.Attribute(attribute.name);
  });
}

/// What refers to an ID means the variable of that ID rather than anything else.
void TakeVariableIds(const XmlElement& element, std::set<std::string>& ids) {
  const std::string* id = element.name == "var" ? element.Attribute("ID") : nullptr;
  if (id) ids.insert(*id);
  for (const auto& child : element.children) TakeVariableIds(*child, ids);
}

/// REQUIRES: no two variables have the same.
void DropRepeatedIds(XmlElement& element, std::set<std::string>& ids) {
  const std::string* id = element.name == "var" ? nullptr : element.Attribute("ID");
  if (id && !ids.insert(*id).second) element.RemoveAttribute("ID");
  for (const auto& child : element.children) DropRepeatedIds(*child, ids);
}

void DropBrokenReferences(XmlElement& element, const std::set<std::string>& ids) {
  const ElementRule& rule = *FindRule(element.name);
  const auto isBroken = [&](const auto& attribute) {
    const AttributeRule* allowed = FindAttribute(rule, attribute.first);
    if (!allowed || (allowed->kind != ":ref" && allowed->kind != ":refs")) return false;
    const std::vector<std::string_view> names = Split(attribute.second, ' ');
    return !std::all_of(names.begin(), names.end(),
                        [&ids](std::string_view name) { return ids.count(std::string(name)) > 0; });
  };
  auto& attributes = element.attributes;
  attributes.erase(std::remove_if(attributes.begin(), attributes.end(), isBroken), attributes.end());
  for (const auto& child : element.children) DropBrokenReferences(*child, ids);
}

}  // namespace

bool IsXmlName(std::string_view text) {
  return !text.empty() && MayBeginXmlName(text.front()) && std::all_of(text.begin(), text.end(), MayContinueXmlName);
}

bool DdiAllowsChild(std::string_view parent, std::string_view child) {
  const ElementRule* rule = FindRule(parent);
  return rule && std::any_of(rule->children.begin(), rule->children.end(),
                             [child](const ChildRule& allowed) { return allowed.name == child; });
}

void MakeValidDdi(XmlElement& codeBook) {
  Prune(codeBook);
  std::set<std::string> ids;
  TakeVariableIds(codeBook, ids);
  DropRepeatedIds(codeBook, ids);
  DropBrokenReferences(codeBook, ids);
}

}  // namespace runtime::data
