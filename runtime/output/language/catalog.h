// The program's fixed texts in other languages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/output/language/marking.h"

namespace runtime::output {

/// The fixed texts of one language, from a compiled gettext catalog that is part of the program. Texts from the data
/// are never looked up. May be used by several threads.
class Catalog {
 public:
  /// The languages that there are beside English, by their codes ("de"), ascending.
  static const std::vector<std::string>& Languages();
  /// The catalog of a language; null for English and for what is not there.
  static std::shared_ptr<const Catalog> Of(std::string_view language);

  /// `compiled` is the content of a .mo file of either byte order; it must outlive the catalog. Throws
  /// std::runtime_error, which says what is wrong, when it is none, or holds texts that are not in UTF-8.
  Catalog(std::string language, std::string_view compiled);

  const std::string& language() const { return fLanguage; }
  /// The translation of an English text; the text itself where there is none.
  std::string_view Translate(std::string_view text) const;

 private:
  /// Where the lengths and places of the English texts and of the translations stand.
  enum class List { Texts, Translations };

  std::uint32_t NumberAt(std::size_t place) const;
  std::string_view TextOf(List list, std::size_t index) const;
  void CheckHeader();
  void CheckTexts() const;
  [[noreturn]] void Refuse(const std::string& reason) const;

  std::string fLanguage;
  std::string_view fCompiled;
  bool fSwapped = false;  // written in the other byte order
  std::uint32_t fCount = 0;
  std::uint32_t fTexts = 0;  // places of the two lists
  std::uint32_t fTranslations = 0;
};

/// The text in the catalog's language; the text itself where the catalog is null.
inline std::string_view Translate(const Catalog* catalog, std::string_view text) {
  return catalog == nullptr ? text : catalog->Translate(text);
}

}  // namespace runtime::output
