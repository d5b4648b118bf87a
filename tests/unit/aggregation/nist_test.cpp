// Mean and standard deviation of the univariate reference data, to the last bit.
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/aggregation/table.h"
#include "host/data/datasource.h"

#include "runtime/data/builder.h"

namespace {

using namespace TableEncryptionCodes;

const std::string kFolder = std::string(CODEBOOK_SOURCE_DIR) + "/tests/data/nist/";

/// The columns of a file of numbers with one line of headers.
std::vector<std::vector<double>> ReadNumbers(const std::string& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file.good()) << path;
  std::vector<std::vector<double>> columns;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    const char* at = line.data();
    const char* const end = at + line.size();
    for (std::size_t column = 0; at < end; ++column, ++at) {
      double number = 0.0;
      const auto [next, error] = std::from_chars(at, end, number);
      EXPECT_EQ(error, std::errc()) << path << ": " << line;
      if (error != std::errc()) return columns;
      if (columns.size() <= column) columns.emplace_back();
      columns[column].push_back(number);
      at = next;
    }
  }
  return columns;
}

struct Moments {
  double mean;
  double deviation;
};

Moments MomentsOf(std::vector<double> values, std::vector<double> weights, std::int64_t chunkRows) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("y", std::move(values));
  if (!weights.empty()) {
    builder.AddNumeric("w", std::move(weights));
    builder.Weight("w");
  }
  MAVO_DataSource source(builder.Build(chunkRows));
  const std::unique_ptr<MAVO_InputCaseIterator> iterator(source.NewCaseIterator(0));
  AggregationTable table(*iterator, false, true, -1);
  AggregationCube* cube = table.CreateCube();
  cube->CreateCubeAggregator();
  cube->AddScaleStatistics({AggregationStatistic(0, kMean), AggregationStatistic(0, kStdDev)});
  while (iterator->NextCase() != 0) table.AddNewCase();
  const std::unique_ptr<CubeAggregator> aggregator(table.GetCubeAggregators().front());
  const StatValues* cell = aggregator->GetStatValues({}, -1);
  return {cell->GetStatValue(0).GetValue1(), cell->GetStatValue(1).GetValue1()};
}

class ReferenceData : public testing::TestWithParam<const char*> {
 protected:
  Moments Certified() const {
    std::ifstream file(kFolder + "certified.json");
    const auto exact = nlohmann::json::parse(file)["datasets"][GetParam()]["binary64"];
    const auto read = [&](const char* key) { return std::strtod(exact[key].get<std::string>().c_str(), nullptr); };
    return {read("mean_hex"), read("sd_hex")};
  }
};

TEST_P(ReferenceData, momentsAreTheCorrectlyRoundedOnes) {
  const std::vector<double> values = ReadNumbers(kFolder + GetParam() + ".csv").at(0);
  const Moments certified = Certified();
  for (const std::int64_t chunkRows : {0, 1, 7}) {
    const Moments moments = MomentsOf(values, {}, chunkRows);
    EXPECT_EQ(moments.mean, certified.mean);
    EXPECT_EQ(moments.deviation, certified.deviation);
  }
}

TEST_P(ReferenceData, momentsOfTheWeightedFormAreTheSame) {
  const auto columns = ReadNumbers(kFolder + "weighted/" + GetParam() + "_w.csv");
  const Moments certified = Certified();
  const Moments moments = MomentsOf(columns.at(0), columns.at(1), 3);
  EXPECT_EQ(moments.mean, certified.mean);
  EXPECT_EQ(moments.deviation, certified.deviation);
}

INSTANTIATE_TEST_SUITE_P(AllSets, ReferenceData,
                         testing::Values("PiDigits", "Lottery", "Lew", "Mavro", "Michelso", "NumAcc1", "NumAcc2",
                                         "NumAcc3", "NumAcc4"),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
