#include "runtime/data/source/odbc/widetext.h"

#include <string>

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

std::string Narrow(const std::u16string& wide) {
  std::string text;
  AppendUtf8(wide.data(), wide.size(), text);
  return text;
}

TEST(WideTexts, goThereAndBack) {
  std::string text;
  for (const std::string letter : {"a", "\xc3\xa4", "\xe2\x82\xac", "\xf0\x9d\x84\x9e", "z"}) {
    text += letter;
    EXPECT_EQ(Narrow(WideText(text)), text);
  }
  EXPECT_EQ(WideText("\xc3\xa4\xe2\x82\xac\xf0\x9d\x84\x9e"), u"\u00e4\u20ac\U0001d11e");
}

TEST(WideTexts, whatIsNoTextIsReplaced) {
  EXPECT_EQ(Narrow(std::u16string{u'a', 0xD834, u'b', 0xDD1E, 0xD834}),
            "a\xef\xbf\xbd"
            "b\xef\xbf\xbd\xef\xbf\xbd");
  EXPECT_EQ(WideText("a\xff"), u"a\ufffd");
}

}  // namespace
}  // namespace runtime::data
