#include "runtime/output/language/catalog.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <stdexcept>

#include "runtime/output/language/embeddedcatalogs.h"

namespace runtime::output {
namespace {

// The layout of a .mo file: seven numbers, of which the last two are for a table of hashes that is not needed here.
constexpr std::uint32_t kMagic = 0x950412DE;
constexpr std::size_t kRevisionAt = 4;
constexpr std::size_t kCountAt = 8;
constexpr std::size_t kTextsAt = 12;
constexpr std::size_t kTranslationsAt = 16;
constexpr std::size_t kHeaderBytes = 28;
constexpr std::size_t kEntryBytes = 8;  // a length without the NUL behind the text, and a place

std::uint32_t Swapped(std::uint32_t number) {
  return number >> 24 | (number >> 8 & 0xFF00U) | (number << 8 & 0xFF0000U) | number << 24;
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

/// A text with plural forms has them one behind another, each ended by a NUL; the first one counts.
std::string_view FirstForm(std::string_view text) { return text.substr(0, text.find('\0')); }

}  // namespace

const std::vector<std::string>& Catalog::Languages() {
  static const std::vector<std::string> languages = [] {
    std::vector<std::string> codes;
    for (const EmbeddedCatalog& embedded : EmbeddedCatalogs()) codes.emplace_back(embedded.language);
    return codes;
  }();
  return languages;
}

std::shared_ptr<const Catalog> Catalog::Of(std::string_view language) {
  for (const EmbeddedCatalog& embedded : EmbeddedCatalogs())
    if (embedded.language == language)
      return std::make_shared<const Catalog>(std::string(language), embedded.compiled());
  return nullptr;
}

Catalog::Catalog(std::string language, std::string_view compiled)
    : fLanguage(std::move(language)), fCompiled(compiled) {
  CheckHeader();
  CheckTexts();
}

std::uint32_t Catalog::NumberAt(std::size_t place) const {
  std::uint32_t number = 0;
  std::memcpy(&number, fCompiled.data() + place, sizeof number);
  return fSwapped ? Swapped(number) : number;
}

std::string_view Catalog::TextOf(List list, std::size_t index) const {
  const std::size_t entry = (list == List::Texts ? fTexts : fTranslations) + index * kEntryBytes;
  return fCompiled.substr(NumberAt(entry + 4), NumberAt(entry));
}

void Catalog::CheckHeader() {
  if (fCompiled.size() < kHeaderBytes) Refuse("it is too short for one");
  if (NumberAt(0) != kMagic) {
    fSwapped = true;
    if (NumberAt(0) != kMagic) Refuse("it does not begin as one");
  }
  if (const std::uint32_t major = NumberAt(kRevisionAt) >> 16; major > 1)
    Refuse("its format is of revision " + std::to_string(major) + "; 0 and 1 are known");
  fCount = NumberAt(kCountAt);
  fTexts = NumberAt(kTextsAt);
  fTranslations = NumberAt(kTranslationsAt);
  for (const std::uint32_t list : {fTexts, fTranslations})
    if (list > fCompiled.size() || fCount > (fCompiled.size() - list) / kEntryBytes)
      Refuse("its lists of texts reach beyond its end");
}

void Catalog::CheckTexts() const {
  for (const std::uint32_t list : {fTexts, fTranslations}) {
    for (std::size_t i = 0; i < fCount; ++i) {
      const std::size_t length = NumberAt(list + i * kEntryBytes);
      const std::size_t place = NumberAt(list + i * kEntryBytes + 4);
      if (place >= fCompiled.size() || length >= fCompiled.size() - place)
        Refuse("text " + std::to_string(i + 1) + " reaches beyond its end");
      if (fCompiled[place + length] != '\0') Refuse("text " + std::to_string(i + 1) + " has no end");
    }
  }
  for (std::size_t i = 1; i < fCount; ++i)
    if (FirstForm(TextOf(List::Texts, i - 1)) >= FirstForm(TextOf(List::Texts, i)))
      Refuse("its texts are out of order");
  // The first text is empty; its "translation" says what the file is.
  if (fCount == 0 || !TextOf(List::Texts, 0).empty() ||
      LowerCase(TextOf(List::Translations, 0)).find("charset=utf-8\n") == std::string::npos)
    Refuse("it does not say that it is in UTF-8");
}

void Catalog::Refuse(const std::string& reason) const {
  throw std::runtime_error("The catalog of the language \"" + fLanguage + "\" is no compiled catalog: " + reason + ".");
}

std::string_view Catalog::Translate(std::string_view text) const {
  if (text.empty()) return text;
  std::size_t begin = 0;
  std::size_t end = fCount;
  while (begin < end) {
    const std::size_t middle = begin + (end - begin) / 2;
    const int order = text.compare(FirstForm(TextOf(List::Texts, middle)));
    if (order == 0) {
      const std::string_view translation = FirstForm(TextOf(List::Translations, middle));
      return translation.empty() ? text : translation;
    }
    if (order < 0)
      end = middle;
    else
      begin = middle + 1;
  }
  return text;
}

}  // namespace runtime::output
