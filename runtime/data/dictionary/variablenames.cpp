#include "runtime/data/dictionary/variablenames.h"

#include <algorithm>
#include <cstddef>

#include "host/data/names.h"

#include "runtime/data/foldedname.h"
#include "runtime/data/utf8walk.h"

namespace runtime::data {
namespace {

/// Shortens a text to at most `bytes` bytes, at a character's end, and never to one that ends with a period.
void CutToBytes(std::string& text, std::size_t bytes) {
  if (text.size() > bytes) {
    std::size_t end = bytes;
    while (end > 0 && IsUtf8Continuation(text[end])) --end;
    text.resize(end);
  }
  if (!text.empty() && text.back() == '.') text.back() = '_';
}

/// A C string would hide what stands behind a NUL.
bool IsWellFormed(const std::string& name) {
  return name.find('\0') == std::string::npos && ValidateMAVOName(name.c_str()) == 0;
}

}  // namespace

std::string MakeWellFormed(std::string_view text) {
  std::string name;
  bool inRun = false;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Step step = StepUtf8(text, at);
    const bool keeps = step.valid && MayContinueName(step.character);
    if (name.empty() && !(keeps && MayBeginName(step.character))) name = "@";
    if (keeps)
      name.append(text.substr(at, step.length));
    else if (!inRun)
      name.push_back('_');
    inRun = !keeps;
    at += step.length;
  }
  CutToBytes(name, kMostNameBytes);
  if (IsReservedWord(name)) name.push_back('_');
  return name;
}

bool NamesInUse::TryClaim(const std::string& name) { return fFolded.insert(FoldName(name)).second; }

std::string NamesInUse::Claim(const std::string& name, std::size_t prefix) {
  if (TryClaim(name)) return name;
  std::size_t& number = fLastNumber[FoldName(name)];
  if (number == 0) number = 1;
  for (;;) {
    const std::string suffix = "_" + std::to_string(++number);
    std::string numbered = name;
    CutToBytes(numbered, kMostNameBytes + prefix - suffix.size());
    numbered += suffix;
    if (TryClaim(numbered)) return numbered;
  }
}

std::vector<std::string> MakeVariableNames(const std::vector<std::string>& headers) {
  std::vector<std::string> names(headers.size());
  NamesInUse used;
  for (std::size_t column = 0; column < headers.size(); ++column)
    if (IsWellFormed(headers[column]) && used.TryClaim(headers[column])) names[column] = headers[column];
  for (std::size_t column = 0; column < headers.size(); ++column) {
    if (!names[column].empty()) continue;
    const std::string& header = headers[column];
    names[column] = used.Claim(header.empty() ? "V" + std::to_string(column + 1) : MakeWellFormed(header));
  }
  return names;
}

}  // namespace runtime::data
