// Files of many kinds with their expected cells; spectrum/SOURCE.md says where they are from.
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/recordscanner.h"

namespace runtime::data {
namespace {

using Json = nlohmann::ordered_json;

std::string ReadFile(const std::string& name) {
  std::ifstream file(std::string(CODEBOOK_SOURCE_DIR) + "/tests/unit/data/csv/spectrum/" + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string WithCrLf(const std::string& text) {
  std::string crlf;
  for (const char c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return crlf;
}

/// A list of objects, as the expectations are written.
Json ReadAsObjects(const std::string& text) {
  RecordScanner scanner(text, FindDialect(text, {}, "x.csv"));
  std::vector<std::string_view> header;
  EXPECT_TRUE(scanner.Next(header));
  Json list = Json::array();
  std::vector<std::string_view> cells;
  for (; scanner.Next(cells); cells.clear()) {
    EXPECT_EQ(cells.size(), header.size());
    Json object = Json::object();
    for (std::size_t i = 0; i < cells.size(); ++i) object[std::string(header[i])] = std::string(cells[i]);
    list.push_back(std::move(object));
  }
  return list;
}

class CsvSpectrum : public testing::TestWithParam<const char*> {};

TEST_P(CsvSpectrum, hasTheExpectedCells) {
  const std::string name = GetParam();
  std::string text = ReadFile("csvs/" + name + ".csv");
  if (name.find("crlf") != std::string::npos) text = WithCrLf(text);
  EXPECT_EQ(ReadAsObjects(text), Json::parse(ReadFile("json/" + name + ".json")));
}

INSTANTIATE_TEST_SUITE_P(All, CsvSpectrum,
                         testing::Values("comma_in_quotes", "empty", "empty_crlf", "escaped_quotes", "json", "newlines",
                                         "newlines_crlf", "quotes_and_newlines", "simple", "simple_crlf", "utf8"),
                         [](const auto& file) { return std::string(file.param); });

TEST(CsvSpectrumCoordinates, haveTheExpectedCells) {
  const Json cells = ReadAsObjects(ReadFile("csvs/location_coordinates.csv"));
  Json expected = Json::parse(ReadFile("json/location_coordinates.json"));
  expected["Contact Phone Number"] = "2095257564";
  EXPECT_EQ(cells, Json::array({expected}));
}

}  // namespace
}  // namespace runtime::data
