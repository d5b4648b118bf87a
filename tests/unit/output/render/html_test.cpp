#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/output/render/html/pagewords.h"
#include "runtime/output/render/html/sha256.h"
#include "runtime/output/render/renderer.h"
#include "tests/unit/output/randomreport.h"

using nlohmann::json;
using runtime::output::Base64;
using runtime::output::Report;
using runtime::output::Sha256;
using testing::HasSubstr;
using testing::Not;

namespace {

std::string Rendered(const Report& report, const std::string& format = "html") {
  std::ostringstream out;
  runtime::output::FindReportFormat(format)->newRenderer({})->Render(report, out);
  return out.str();
}

/// What stands between two texts of the page, from the first of them on.
std::string Between(const std::string& page, const std::string& begin, const std::string& end) {
  const std::size_t from = page.find(begin);
  if (from == std::string::npos) return "nothing begins with " + begin;
  const std::size_t to = page.find(end, from + begin.size());
  if (to == std::string::npos) return "nothing ends with " + end;
  return page.substr(from + begin.size(), to - from - begin.size());
}

json ReportBlock(const std::string& page) {
  return json::parse(Between(page, "<script type=\"application/json\" id=\"report\">", "</script>"));
}

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

std::string HashSource(const std::string& text) {
  const auto digest = Sha256(text);
  return "'sha256-" + Base64(digest.data(), digest.size()) + "'";
}

std::string Hex(const std::string& text) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const std::uint8_t byte : Sha256(text)) {
    hex += kDigits[byte >> 4U];
    hex += kDigits[byte & 15U];
  }
  return hex;
}

std::string Encoded(const std::string& text) {
  return Base64(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

Report ReportTitled(const std::string& label) {
  Report report;
  report.facts.emplace();
  report.facts->file = "data.csv";
  report.facts->label = label;
  return report;
}

}  // namespace

// The examples of FIPS 180-4 and of RFC 4648, and lengths around the ends of blocks.
TEST(PagePolicy, hashesAreSha256InBase64) {
  EXPECT_EQ(Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(Hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(Hex(std::string(1'000'000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  std::set<std::string> different;
  for (std::size_t length = 0; length < 200; ++length) different.insert(Hex(std::string(length, '\0')));
  EXPECT_EQ(different.size(), 200U);
  EXPECT_EQ(Encoded(""), "");
  EXPECT_EQ(Encoded("f"), "Zg==");
  EXPECT_EQ(Encoded("fo"), "Zm8=");
  EXPECT_EQ(Encoded("foo"), "Zm9v");
  EXPECT_EQ(Encoded("foobar"), "Zm9vYmFy");
}

TEST(PagePolicy, allowsThePagesOwnScriptAndStyleAndNothingElse) {
  const std::string page = Rendered({});
  const std::string policy = Between(page, "Content-Security-Policy\" content=\"", "\"");
  EXPECT_EQ(policy, "default-src 'none'; script-src " + HashSource(Between(page, "<script>", "</script>")) +
                        "; style-src " + HashSource(Between(page, "<style>", "</style>")) +
                        "; img-src data:; base-uri 'none'; form-action 'none'");
  EXPECT_THAT(page, Not(HasSubstr(" style=")));
  EXPECT_THAT(page, Not(HasSubstr("src=")));
}

TEST(HtmlReport, isTheSameBytesForTheSameReport) {
  for (std::uint64_t seed = 0; seed < 20; ++seed)
    EXPECT_EQ(Rendered(RandomReport(seed).Report()), Rendered(RandomReport(seed).Report()));
}

TEST(HtmlReport, holdsTheReportOnceAsTheJsonReportHasIt) {
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    const Report report = RandomReport(seed).Report();
    json held = ReportBlock(Rendered(report));
    for (json& procedure : held["procedures"]) ASSERT_EQ(procedure.erase("sketches"), 1U);
    ASSERT_EQ(held, json::parse(Rendered(report, "json"))) << "seed " << seed;
  }
}

TEST(HtmlReport, textsNeverEndTheirPlaceInThePage) {
  const std::size_t ends = Count(Rendered({}), "</script");
  const std::size_t begins = Count(Rendered({}), "<script");
  for (std::uint64_t seed = 0; seed < 300; ++seed) {
    const std::string page = Rendered(RandomReport(seed).Report());
    ASSERT_EQ(Count(page, "</script"), ends) << "seed " << seed;
    ASSERT_EQ(Count(page, "<script"), begins) << "seed " << seed;
  }
  Report report = ReportTitled("</script><!--<script></title>\xe2\x80\xa8");
  report.messages.push_back({runtime::output::Severity::Error, runtime::output::Source::Data, "</SCRIPT ><!-- ]]>"});
  const std::string page = Rendered(report);
  EXPECT_EQ(Count(page, "</script"), ends);
  EXPECT_EQ(Count(page, "<!--"), 0U);
  EXPECT_EQ(Count(page, "</SCRIPT"), 0U);
  EXPECT_EQ(Count(page, "</title"), 1U);
  EXPECT_EQ(Count(page, "\xe2\x80\xa8"), 0U);
  EXPECT_EQ(ReportBlock(page)["messages"][0]["text"], "</SCRIPT ><!-- ]]>");
}

TEST(HtmlReport, isHeadedByTheLabelElseByTheFile) {
  const auto title = [](const Report& report) { return Between(Rendered(report), "<title>", "</title>"); };
  EXPECT_EQ(title({}), "Codebook");
  EXPECT_EQ(title(ReportTitled("Votes & \"voters\" <1>")), "Votes &amp; &quot;voters&quot; &lt;1&gt; – Codebook");
  EXPECT_EQ(title(ReportTitled("")), "data.csv – Codebook");
  EXPECT_EQ(title(ReportTitled("two\nlines\x1b")), "two\\x0alines\\x1b – Codebook");
  std::string cyrillic;
  for (int i = 0; i < 200; ++i) cyrillic += "я";
  std::string shown = title(ReportTitled(cyrillic));
  EXPECT_EQ(shown.substr(0, 4), "яя");
  EXPECT_LT(shown.size(), 230U);
  EXPECT_EQ(nlohmann::json(shown).dump().find("\xEF\xBF\xBD"), std::string::npos);
}

TEST(HtmlReport, ofNothingIsWhole) {
  const std::string page = Rendered({});
  EXPECT_EQ(ReportBlock(page)["procedures"], json::array());
  EXPECT_EQ(ReportBlock(page).count("facts"), 0U);
  EXPECT_EQ(Between(page, "id=\"words\">", "</script>"), "{}");
  EXPECT_EQ(Between(page, "<html lang=\"", "\""), "en");
  EXPECT_EQ(page.substr(page.size() - 8), "</html>\n");
  EXPECT_LT(page.size(), 100'000U);
}

TEST(PageWords, areEachOnceInTheList) {
  std::set<std::string> words;
  for (const char* word : runtime::output::PageWords()) EXPECT_TRUE(words.insert(word).second) << word;
  EXPECT_FALSE(words.empty());
}
