#include "runtime/output/language/catalog.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using runtime::output::Catalog;
using runtime::output::Translate;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

enum class ByteOrder { Little, Big };

using Pairs = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kUtf8 = "Content-Type: text/plain; charset=UTF-8\n";

/// A .mo file: seven numbers, the lists of texts and of translations, then both, each with a NUL behind it.
class CatalogFile {
 public:
  explicit CatalogFile(const Pairs& pairs, ByteOrder order = ByteOrder::Little) : fOrder(order) {
    const auto count = static_cast<std::uint32_t>(pairs.size());
    for (const std::uint32_t number : {0x950412DEU, 0U, count, 28U, 28U + 8U * count, 0U, 28U + 16U * count})
      Append(number);
    std::uint32_t place = 28 + 16 * count;
    std::string texts;
    const auto add = [&](const std::string& text) {
      Append(static_cast<std::uint32_t>(text.size()));
      Append(place);
      texts += text + '\0';
      place += static_cast<std::uint32_t>(text.size()) + 1;
    };
    for (const auto& [text, translation] : pairs) add(text);
    for (const auto& [text, translation] : pairs) add(translation);
    fBytes += texts;
  }

  CatalogFile& Put(std::size_t place, std::uint32_t number) {
    fBytes.replace(place, 4, BytesOf(number));
    return *this;
  }

  std::string bytes() const { return fBytes; }

 private:
  std::string BytesOf(std::uint32_t number) const {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
      const int shift = fOrder == ByteOrder::Little ? 8 * i : 8 * (3 - i);
      bytes += static_cast<char>(number >> shift & 0xFFU);
    }
    return bytes;
  }
  void Append(std::uint32_t number) { fBytes += BytesOf(number); }

  ByteOrder fOrder;
  std::string fBytes;
};

Pairs FewTexts() {
  return {{"", kUtf8}, {"Count", "Anzahl"}, {"Mean", "Mittelwert"}, {"Valid Values", "Gültige Werte"}};
}

/// What the catalog refuses such a file with; empty: it takes it.
std::string Refusal(const std::string& bytes) {
  try {
    const Catalog catalog("de", bytes);
    return "";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

}  // namespace

TEST(Catalog, translatesInBothByteOrders) {
  for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
    const std::string bytes = CatalogFile(FewTexts(), order).bytes();
    const Catalog catalog("de", bytes);
    EXPECT_EQ(catalog.language(), "de");
    EXPECT_EQ(catalog.Translate("Count"), "Anzahl");
    EXPECT_EQ(catalog.Translate("Mean"), "Mittelwert");
    EXPECT_EQ(catalog.Translate("Valid Values"), "Gültige Werte");
  }
}

TEST(Catalog, leavesATextAsItIsThatItDoesNotHold) {
  const std::string bytes = CatalogFile(FewTexts()).bytes();
  const Catalog catalog("de", bytes);
  for (const char* text : {"count", "Counts", "Coun", "A", "Z", "Mittelwert", "Gültige Werte"})
    EXPECT_EQ(catalog.Translate(text), text);
}

TEST(Catalog, emptyTextIsNotTheHeader) {
  const std::string bytes = CatalogFile(FewTexts()).bytes();
  EXPECT_EQ(Catalog("de", bytes).Translate(""), "");
}

TEST(Catalog, emptyTranslationLeavesTheText) {
  const std::string bytes = CatalogFile(Pairs{{"", kUtf8}, {"Count", ""}}).bytes();
  EXPECT_EQ(Catalog("de", bytes).Translate("Count"), "Count");
}

TEST(Catalog, findsEveryTextOfMany) {
  for (int count = 0; count < 40; ++count) {
    Pairs pairs = {{"", kUtf8}};
    for (int i = 0; i < count; ++i) pairs.emplace_back("text " + std::to_string(100 + i), "Text " + std::to_string(i));
    const std::string bytes = CatalogFile(pairs).bytes();
    const Catalog catalog("de", bytes);
    for (int i = 0; i < count; ++i)
      EXPECT_EQ(catalog.Translate("text " + std::to_string(100 + i)), "Text " + std::to_string(i));
    EXPECT_EQ(catalog.Translate("text 099"), "text 099");
    EXPECT_EQ(catalog.Translate("text 999"), "text 999");
  }
}

TEST(Catalog, ordersTextsByTheirBytes) {
  const std::string bytes = CatalogFile(Pairs{{"", kUtf8}, {"Z", "z"}, {"z", "Z"}, {"é", "É"}}).bytes();
  const Catalog catalog("de", bytes);
  EXPECT_EQ(catalog.Translate("é"), "É");
  EXPECT_EQ(catalog.Translate("z"), "Z");
}

TEST(Catalog, takesTheFirstOfSeveralForms) {
  using namespace std::string_literals;
  const std::string bytes = CatalogFile(Pairs{{"", kUtf8}, {"case\0cases"s, "Fall\0Fälle"s}}).bytes();
  EXPECT_EQ(Catalog("de", bytes).Translate("case"), "Fall");
}

TEST(Catalog, nothingTranslatesIntoEnglish) { EXPECT_EQ(Translate(nullptr, "Count"), "Count"); }

TEST(Catalog, refusesAFileThatIsCutAnywhere) {
  const std::string whole = CatalogFile(FewTexts()).bytes();
  ASSERT_EQ(Refusal(whole), "");
  for (std::size_t length = 0; length < whole.size(); ++length)
    EXPECT_THAT(Refusal(whole.substr(0, length)), HasSubstr("\"de\" is no compiled catalog")) << length;
}

TEST(Catalog, refusesWhatBeginsOtherwise) {
  EXPECT_THAT(Refusal(CatalogFile(FewTexts()).Put(0, 0x950412DF).bytes()), HasSubstr("does not begin as one"));
  EXPECT_THAT(Refusal(std::string(100, 'x')), HasSubstr("does not begin as one"));
}

TEST(Catalog, refusesALaterRevision) {
  EXPECT_EQ(Refusal(CatalogFile(FewTexts()).Put(4, 0x00010001).bytes()), "");
  EXPECT_THAT(Refusal(CatalogFile(FewTexts()).Put(4, 0x00020000).bytes()), HasSubstr("revision 2"));
}

TEST(Catalog, refusesListsBeyondItsEnd) {
  for (const std::size_t place : {8U, 12U, 16U})
    for (const std::uint32_t number : {1000U, 0x7FFFFFFFU, 0xFFFFFFFFU})
      EXPECT_THAT(Refusal(CatalogFile(FewTexts()).Put(place, number).bytes()), HasSubstr("reach beyond its end"));
}

TEST(Catalog, refusesTextsBeyondItsEnd) {
  for (const std::size_t place :
       {28U + 8U, 28U + 12U, 60U + 8U, 60U + 12U})  // length and place of the second of both lists
    for (const std::uint32_t number : {1000U, 0x7FFFFFFFU, 0xFFFFFFFFU})
      EXPECT_THAT(Refusal(CatalogFile(FewTexts()).Put(place, number).bytes()), HasSubstr("text 2 reaches beyond"));
}

TEST(Catalog, refusesATextWithoutEnd) {
  EXPECT_THAT(Refusal(CatalogFile(FewTexts()).Put(28 + 8, 3).bytes()), HasSubstr("text 2 has no end"));
}

TEST(Catalog, refusesTextsOutOfOrder) {
  EXPECT_THAT(Refusal(CatalogFile(Pairs{{"", kUtf8}, {"b", "B"}, {"a", "A"}}).bytes()), HasSubstr("out of order"));
  EXPECT_THAT(Refusal(CatalogFile(Pairs{{"", kUtf8}, {"a", "B"}, {"a", "A"}}).bytes()), HasSubstr("out of order"));
}

TEST(Catalog, refusesWhatIsNotInUtf8) {
  EXPECT_THAT(Refusal(CatalogFile(Pairs{{"", "Content-Type: text/plain; charset=ISO-8859-1\n"}}).bytes()),
              HasSubstr("UTF-8"));
  EXPECT_THAT(Refusal(CatalogFile(Pairs{{"a", kUtf8}}).bytes()), HasSubstr("UTF-8"));
  EXPECT_THAT(Refusal(CatalogFile(Pairs{}).bytes()), HasSubstr("UTF-8"));
  EXPECT_EQ(Refusal(CatalogFile(Pairs{{"", "Content-Type: text/plain; charset=utf-8\n"}}).bytes()), "");
}

TEST(Catalog, theProgramSpeaksFiveLanguagesBesideEnglish) {
  EXPECT_THAT(Catalog::Languages(), ElementsAre("de", "es", "fr", "ru", "zh"));
  for (const std::string& language : Catalog::Languages()) {
    const auto catalog = Catalog::Of(language);
    ASSERT_NE(catalog, nullptr) << language;
    EXPECT_EQ(catalog->language(), language);
    EXPECT_NE(catalog->Translate("Missing Values"), "Missing Values") << language;
  }
  EXPECT_EQ(Catalog::Of("de")->Translate("Standard Deviation"), "Standardabweichung");
}

TEST(Catalog, thereIsNoneOfEnglishNorOfAnUnknownLanguage) {
  for (const char* language : {"en", "", "xx", "DE", "de_DE"}) EXPECT_EQ(Catalog::Of(language), nullptr) << language;
}
