// What stands before a tree is built of an XML file.
#include "runtime/data/dictionary/ddi/xmltext.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/ddi/ddi.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string Refusal(std::string_view text) {
  try {
    CheckXmlText(text, "x");
  } catch (const DataError& error) {
    return error.what();
  }
  return {};
}

/// What a file of such bytes reads as, or the error.
std::string ReadBytes(std::string_view bytes, std::vector<Note>* notes = nullptr) {
  const TemporaryFolder folder;
  std::vector<Note> unused;
  try {
    return ReadXmlText(folder.Write("x.xml", bytes), notes ? *notes : unused);
  } catch (const DataError& error) {
    const std::string message = error.what();
    return message.substr(message.find("x.xml"));
  }
}

TEST(XmlText, wellFormedDocumentsAreTaken) {
  for (const char* text :
       {"<a/>",
        "<?xml version='1.0'?>\n<!-- x --> <a b='1' c=\"&lt;'\">x&amp;y&#228;&#xE4;<![CDATA[<&>]]></a> <!-- -->",
        "<p:a xmlns:p='u'><p:b /></p:a >", "<a><b>]]</b>&gt;&quot;&apos;</a>\n\n"})
    EXPECT_EQ(Refusal(text), "") << text;
}

TEST(XmlText, documentTypeIsRefusedWhereItStands) {
  EXPECT_THAT(Refusal("<?xml version='1.0'?>\n<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>"),
              AllOf(StartsWith("x:2:1: "), HasSubstr("DOCTYPE"), HasSubstr("delete")));
  EXPECT_THAT(Refusal("<!-- --><!doctype a SYSTEM 'file:///etc/passwd'><a/>"), HasSubstr("DOCTYPE"));
  EXPECT_THAT(Refusal("<a><!DOCTYPE b></a>"), HasSubstr("DOCTYPE"));
}

TEST(XmlText, documentTypeWithinTextIsNone) {
  EXPECT_EQ(Refusal("<a><!-- <!DOCTYPE x> --><![CDATA[<!DOCTYPE x>]]></a>"), "");
}

TEST(XmlText, onlyTheFiveEntitiesAreKnown) {
  EXPECT_THAT(Refusal("<a>\n  x&nbsp;y</a>"), AllOf(StartsWith("x:2:4: "), HasSubstr("&nbsp;")));
  EXPECT_THAT(Refusal("<a b='&eacute;'/>"), AllOf(StartsWith("x:1:7: "), HasSubstr("&eacute;")));
  EXPECT_THAT(Refusal("<a>R & D</a>"), AllOf(StartsWith("x:1:6: "), HasSubstr("&amp;")));
}

TEST(XmlText, numbersOfNoCharacterAreRefused) {
  for (const char* text : {"&#0;", "&#x0;", "&#xD800;", "&#x110000;", "&#99999999999999999999;", "&#;", "&#x;", "&#1;",
                           "&#x1G;", "&#12a;"})
    EXPECT_THAT(Refusal("<a>" + std::string(text) + "</a>"), HasSubstr("number of no character")) << text;
}

TEST(XmlText, cutDocumentsTellWhatIsOpen) {
  EXPECT_THAT(Refusal("<a>\n<b>\n"),
              AllOf(StartsWith("x:2:4: "), HasSubstr("\"<b>\""), HasSubstr("line 2"), HasSubstr("cut off")));
  EXPECT_THAT(Refusal("<a>\n<b c='"), AllOf(StartsWith("x:2:6: "), HasSubstr("quote"), HasSubstr("cut off")));
  EXPECT_THAT(Refusal("<a>\n <b c"), AllOf(StartsWith("x:2:2: "), HasSubstr("tag"), HasSubstr("cut off")));
  EXPECT_THAT(Refusal("<a><!-- "), AllOf(StartsWith("x:1:4: "), HasSubstr("comment")));
  EXPECT_THAT(Refusal("<a><![CDATA[ ]]"), HasSubstr("CDATA section"));
  EXPECT_THAT(Refusal("<?xml "), HasSubstr("processing instruction"));
}

TEST(XmlText, tagsThatDoNotMeetAreToldWithBothLines) {
  EXPECT_THAT(Refusal("<a>\n<b>\n</a>"),
              AllOf(StartsWith("x:3:1: "), HasSubstr("\"</a>\""), HasSubstr("\"<b>\""), HasSubstr("line 2")));
  EXPECT_THAT(Refusal("<a/></b>"), HasSubstr("not open"));
}

TEST(XmlText, whatIsNoDocumentIsRefused) {
  EXPECT_THAT(Refusal("name,label"), HasSubstr("text before the first element"));
  EXPECT_THAT(Refusal("<!-- -->"), HasSubstr("no XML element"));
  EXPECT_THAT(Refusal("<a/>x"), HasSubstr("behind the end"));
  EXPECT_THAT(Refusal("<a/><b/>"), HasSubstr("second element"));
  EXPECT_THAT(Refusal("<a><1</a>"), HasSubstr("element's name"));
  EXPECT_THAT(Refusal("<a b='<'/>"), HasSubstr("attribute"));
  EXPECT_THAT(Refusal("<a>< b/></a>"), HasSubstr("element's name"));
}

TEST(XmlText, nestingIsBounded) {
  std::string deep;
  for (std::size_t i = 0; i < kDeepestXml; ++i) deep += "<a>";
  std::string closed = deep;
  for (std::size_t i = 0; i < kDeepestXml; ++i) closed += "</a>";
  EXPECT_EQ(Refusal(closed), "");
  EXPECT_THAT(Refusal(deep + "<a>"), AllOf(StartsWith("x:1:301: "), HasSubstr("100 levels")));
}

TEST(XmlText, encodingIsThatOfTheDeclaration) {
  EXPECT_EQ(ReadBytes("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE4</a>"),
            "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA4</a>");
  EXPECT_EQ(ReadBytes("<?xml version='1.0' encoding=\"windows-1251\"?><a>\xE0</a>"),
            "<?xml version='1.0' encoding=\"windows-1251\"?><a>\xD0\xB0</a>");
}

TEST(XmlText, byteOrderMarkRulesOverTheDeclaration) {
  EXPECT_EQ(ReadBytes("\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA4</a>"),
            "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA4</a>");
}

TEST(XmlText, utf16IsReadWithAndWithoutMark) {
  const std::string text = "<a>\xC3\xA4</a>";
  std::string little;
  std::string big;
  for (const char16_t unit : std::u16string(u"<?xml version='1.0'?><a>\u00E4</a>")) {
    little += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    big += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
  }
  for (const std::string& bytes : {little, big, "\xFF\xFE" + little, "\xFE\xFF" + big})
    EXPECT_EQ(ReadBytes(bytes), "<?xml version='1.0'?>" + text);
}

TEST(XmlText, wideEncodingOfSingleBytesIsPassedOverWithANote) {
  std::vector<Note> notes;
  EXPECT_THAT(ReadBytes("<?xml version='1.0' encoding='utf-16'?><a>\xC3\xA4</a>", &notes),
              HasSubstr("<a>\xC3\xA4</a>"));
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_THAT(notes[0].text, AllOf(HasSubstr("x.xml:1: "), HasSubstr("utf-16")));
}

TEST(XmlText, latin1WithQuotesOfWindowsIsWindows1252) {
  std::vector<Note> notes;
  EXPECT_THAT(ReadBytes("<?xml version='1.0' encoding='ISO-8859-1'?><a>\x93\xE4\x94</a>", &notes),
              HasSubstr("<a>\xE2\x80\x9C\xC3\xA4\xE2\x80\x9D</a>"));
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_THAT(notes[0].text, HasSubstr("windows-1252"));
}

TEST(XmlText, wrongEncodingsAreErrorsWithTheirPlace) {
  EXPECT_THAT(ReadBytes("<a>\n \xE4</a>"),
              AllOf(StartsWith("x.xml:2:2: "), HasSubstr("no UTF-8"), HasSubstr("encoding")));
  EXPECT_THAT(ReadBytes("<?xml version='1.0' encoding='klingon-7'?><a/>"),
              AllOf(StartsWith("x.xml:1: "), HasSubstr("\"klingon-7\""), HasSubstr("UTF-8")));
  EXPECT_THAT(ReadBytes("<?xml version='1.0' encoding='Shift_JIS'?>\n<a>\x81</a>"),
              AllOf(StartsWith("x.xml:2: "), HasSubstr("Shift_JIS")));
}

TEST(XmlText, nulCharactersAreRefused) {
  using namespace std::string_literals;
  EXPECT_THAT(ReadBytes("<a>x\0y</a>"s), AllOf(StartsWith("x.xml:1:5: "), HasSubstr("NUL")));
}

TEST(XmlText, linesEndWithEachOfThree) {
  const TextLines lines("a\nb\r\nc\rd");
  EXPECT_EQ(lines.Of(0).line, 1U);
  EXPECT_EQ(lines.Of(2).line, 2U);
  EXPECT_EQ(lines.Of(5).line, 3U);
  EXPECT_EQ(lines.Of(7).line, 4U);
  EXPECT_EQ(lines.Of(7).column, 1U);
}

}  // namespace
}  // namespace runtime::data
