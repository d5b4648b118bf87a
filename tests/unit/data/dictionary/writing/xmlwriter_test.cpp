#include "runtime/data/dictionary/writing/xmlwriter.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "runtime/data/dictionary/writing/ddigrammar.h"

namespace runtime::data {
namespace {

std::string Written(const XmlElement& element) {
  std::ostringstream out;
  XmlWriter writer(out);
  WriteXml(element, writer);
  return out.str().substr(out.str().find('\n') + 1);
}

TEST(XmlWriter, replacesWhatXmlCannotHoldVisibly) {
  EXPECT_EQ(XmlCharacters(std::string("a\0b\x1b[31m\n\t\r", 11)), "a␀b␛[31m\n\t\r");
  EXPECT_EQ(XmlCharacters("\xEF\xBF\xBE|\xFF|\xED\xA0\x80|é"), "�|�|���|é");
}

TEST(XmlWriter, escapesSoThatTextsAreReadBackAsTheyWere) {
  XmlElement element("a");
  element.SetAttribute("b", "\"<&>'\n\t\r");
  element.text = "]]> & <c>\r\n";
  EXPECT_EQ(Written(element), "<a b=\"&quot;&lt;&amp;&gt;'&#10;&#9;&#13;\">]]&gt; &amp; &lt;c&gt;&#13;\n</a>\n");
}

TEST(XmlWriter, indentsElementsAndNotTexts) {
  XmlElement element("a");
  element.Add("b").AddText("c", "text");
  element.Add("d");
  EXPECT_EQ(Written(element), "<a>\n  <b>\n    <c>text</c>\n  </b>\n  <d/>\n</a>\n");
}

/// A document around one variable.
XmlElement Book() {
  XmlElement book("codeBook");
  book.Add("stdyDscr").Add("citation").Add("titlStmt").Add("titl");
  book.Add("dataDscr").Add("var").SetAttribute("name", "v");
  return book;
}

TEST(DdiGrammar, putsElementsInTheSchemasOrder) {
  XmlElement book = Book();
  XmlElement& variable = *book.At("dataDscr/var").front();
  for (const char* name : {"varFormat", "notes", "catgry", "labl"}) variable.Add(name);
  MakeValidDdi(book);
  std::string order;
  for (const auto& child : variable.children) order += child->name + " ";
  EXPECT_EQ(order, "labl catgry varFormat notes ");
}

TEST(DdiGrammar, takesOutWhatTheSchemaDoesNotAllow) {
  XmlElement book = Book();
  XmlElement& variable = *book.At("dataDscr/var").front();
  variable.SetAttribute("nature", "sensitive");
  variable.SetAttribute("colour", "red");
  variable.SetAttribute("qstn", "Q1");  // nothing has this ID
  variable.Add("colour");
  variable.AddText("TotlResp", "1");
  variable.AddText("TotlResp", "2");      // at most one
  variable.Add("valrng").Add("key");      // no value and no range
  variable.AddText("sumStat", "5");       // without its type
  variable.Add("derivation").text = "x";  // elements only
  MakeValidDdi(book);
  EXPECT_EQ(Written(variable), "<var name=\"v\">\n  <TotlResp>1</TotlResp>\n  <derivation/>\n</var>\n");
}

TEST(DdiGrammar, anIdBelongsToTheVariableBeforeAnythingElse) {
  XmlElement book = Book();
  book.At("stdyDscr").front()->SetAttribute("ID", "V1");
  book.At("dataDscr/var").front()->SetAttribute("ID", "V1");
  MakeValidDdi(book);
  EXPECT_EQ(book.At("stdyDscr").front()->Attribute("ID"), nullptr);
  EXPECT_EQ(*book.At("dataDscr/var").front()->Attribute("ID"), "V1");
}

}  // namespace
}  // namespace runtime::data
