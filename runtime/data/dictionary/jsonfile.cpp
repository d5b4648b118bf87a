#include "runtime/data/dictionary/jsonfile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include <fmt/format.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/dictionary/jsontree.h"
#include "runtime/data/dictionary/numberwords.h"
#include "runtime/data/open.h"

namespace runtime::data {
namespace {

struct TextPlace {
  std::size_t line = 1;
  std::size_t column = 1;  // in bytes
};

TextPlace PlaceOf(std::string_view text, std::size_t offset) {
  TextPlace place;
  for (const char byte : text.substr(0, offset)) {
    if (byte == '\n') {
      ++place.line;
      place.column = 1;
    } else {
      ++place.column;
    }
  }
  return place;
}

[[noreturn]] void FailAt(const std::string& origin, std::string_view text, std::size_t offset,
                         const std::string& problem) {
  const TextPlace place = PlaceOf(text, offset);
  throw DataError(fmt::format("{}:{}:{}: {}", origin, place.line, place.column, problem));
}

/// The tree is built and taken down by recursion, so its depth is bounded before anything is built.
void CheckDepth(std::string_view text, const std::string& origin) {
  int depth = 0;
  bool inString = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char byte = text[at];
    if (inString) {
      if (byte == '\\')
        ++at;
      else if (byte == '"')
        inString = false;
      continue;
    }
    if (byte == '"') inString = true;
    if (byte == ']' || byte == '}') --depth;
    if (byte != '[' && byte != '{') continue;
    if (++depth > kDeepestJson)
      FailAt(origin, text, at,
             fmt::format("lists and objects are nested more than {} deep; no dictionary is", kDeepestJson));
  }
}

std::string ReadWhole(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored))
    throw DataError(fmt::format("{}: this is a directory, not a dictionary file", path));
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) throw DataError(fmt::format("{}: cannot open the dictionary: {}", path, std::strerror(errno)));
  std::string text;
  char buffer[65536];
  while (const std::size_t read = std::fread(buffer, 1, sizeof buffer, file.get())) {
    text.append(buffer, read);
    if (text.size() > kMostJsonBytes)
      throw DataError(
          fmt::format("{}: this file is larger than {} MiB, which no dictionary is; keep data in a file of "
                      "their own (CSV, JSON lines, Parquet)",
                      path, kMostJsonBytes >> 20));
  }
  if (std::ferror(file.get()) != 0)
    throw DataError(fmt::format("{}: cannot read the dictionary: {}", path, std::strerror(errno)));
  return text;
}

}  // namespace

Json ReadJsonFile(const std::string& path, std::vector<Note>* notes) { return ParseJson(ReadWhole(path), path, notes); }

Json ParseJson(const std::string& text, const std::string& origin, std::vector<Note>* notes) {
  std::string_view json = text;
  const std::optional<ByteOrderMark> mark = FindByteOrderMark(json);
  if (mark && !IsUtf8Name(mark->encoding))
    throw DataError(fmt::format("{}: this is JSON in {}; save it in UTF-8", origin, mark->encoding));
  if (mark) json.remove_prefix(mark->length);
  if (json.find_first_not_of(" \t\r\n") == std::string_view::npos)
    throw DataError(fmt::format("{}: the dictionary is empty", origin));
  // The parser takes a NUL for the end of the text.
  const std::size_t nul = json.find('\0');
  if (nul != std::string_view::npos) FailAt(origin, json, nul, "a NUL character; JSON has none");
  CheckDepth(json, origin);
  JsonTree tree = BuildJsonTree(json);
  if (!tree.problem.empty()) FailAt(origin, json, tree.problemAt, "this is no JSON: " + tree.problem);
  if (tree.repeatedKeys > 0 && notes != nullptr)
    notes->push_back(
        {false, fmt::format("{}: {}: this property stands twice in its object, and the last one holds{}", origin,
                            tree.firstRepeatedKey,
                            tree.repeatedKeys == 1 ? "" : fmt::format(" (one of {} such)", tree.repeatedKeys))});
  return std::move(tree.root);
}

std::optional<JsonPlace> JsonPlace::Find(std::string_view key) const {
  if (!isObject()) FailType("an object");
  const auto found = fValue->find(key);
  if (found == fValue->end() || found->is_null()) return std::nullopt;
  return JsonPlace(*found, fFile, fPointer + PointerStep(key));
}

JsonPlace JsonPlace::Need(std::string_view key) const {
  std::optional<JsonPlace> member = Find(key);
  if (!member) Fail(fmt::format("the property \"{}\" is missing", key));
  return *member;
}

std::vector<std::pair<std::string, JsonPlace>> JsonPlace::Members() const {
  if (!isObject()) FailType("an object");
  std::vector<std::pair<std::string, JsonPlace>> members;
  members.reserve(fValue->size());
  for (auto member = fValue->begin(); member != fValue->end(); ++member)
    members.emplace_back(member.key(), JsonPlace(member.value(), fFile, fPointer + PointerStep(member.key())));
  return members;
}

std::vector<JsonPlace> JsonPlace::Entries() const {
  if (!isList()) FailType("a list");
  std::vector<JsonPlace> entries;
  entries.reserve(fValue->size());
  std::size_t index = 0;
  for (const Json& entry : *fValue) entries.push_back(JsonPlace(entry, fFile, fmt::format("{}/{}", fPointer, index++)));
  return entries;
}

const std::string& JsonPlace::Text() const {
  if (!isText()) FailType("a text");
  return fValue->get_ref<const std::string&>();
}

double JsonPlace::Number() const {
  if (!isNumber()) FailType("a number");
  return fValue->get<double>();
}

bool JsonPlace::Flag() const {
  if (!isFlag()) FailType("true or false");
  return fValue->get<bool>();
}

std::string JsonPlace::Scalar() const {
  if (isText()) return Text();
  if (isFlag()) return Flag() ? "true" : "false";
  if (!isNumber()) FailType("a text or a number");
  if (fValue->is_number_unsigned()) return std::to_string(fValue->get<std::uint64_t>());
  if (fValue->is_number_integer()) return std::to_string(fValue->get<std::int64_t>());
  return NumberWords(fValue->get<double>());
}

std::vector<std::string> JsonPlace::Texts() const {
  std::vector<std::string> texts;
  for (const JsonPlace& entry : Entries()) texts.push_back(entry.Text());
  return texts;
}

std::string JsonPlace::Written() const { return fValue->dump(); }

std::optional<std::string> JsonPlace::FindText(std::string_view key) const {
  const std::optional<JsonPlace> member = Find(key);
  if (!member) return std::nullopt;
  return member->Text();
}

std::optional<bool> JsonPlace::FindFlag(std::string_view key) const {
  const std::optional<JsonPlace> member = Find(key);
  if (!member) return std::nullopt;
  return member->Flag();
}

std::string JsonPlace::Where() const { return fPointer.empty() ? fFile : fFile + ": " + fPointer; }

void JsonPlace::Fail(const std::string& problem) const { throw DataError(Where() + ": " + problem); }

void JsonPlace::FailType(const char* wanted) const {
  Fail(fmt::format("this must be {}, and is {}", wanted,
                   isObject()   ? "an object"
                   : isList()   ? "a list"
                   : isText()   ? "a text"
                   : isNumber() ? "a number"
                   : isFlag()   ? "a truth value"
                                : "null"));
}

}  // namespace runtime::data
