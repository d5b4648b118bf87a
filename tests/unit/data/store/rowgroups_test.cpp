#include "runtime/data/store/rowgroups.h"

#include <cstring>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/open.h"
#include "tests/unit/data/support/storedcells.h"

namespace runtime::data {
namespace {

RowGroup GroupOf(const std::vector<double>& first, const std::vector<std::int8_t>& second) {
  RowGroup group(first.size(), 2);
  group.AddColumn(ColumnStorage::Int8);
  group.AddColumn(ColumnStorage::Float64);
  group.Allocate();
  std::memcpy(group.Cells(0), second.data(), second.size());
  std::memcpy(group.Cells(1), first.data(), first.size() * sizeof(double));
  return group;
}

TEST(RowGroups, giveBackWhatIsInMemoryAndWhatIsInTheFile) {
  const auto memory = std::make_shared<ColumnMemory>();
  memory->left = 40;
  const auto groups = std::make_shared<RowGroups>(memory);
  groups->Append(GroupOf({0.5, 1.5, 2.5}, {1, 2, 3}));
  EXPECT_EQ(memory->left, 40 - 32) << "three doubles, and three bytes on a place of eight";
  groups->Append(GroupOf({3.5}, {4}));
  groups->Append(GroupOf({4.5, 5.5}, {5, 6}));
  groups->Append(RowGroup(0, 2));
  EXPECT_EQ(memory->left, 8) << "the others are in the file";
  EXPECT_EQ(groups->size(), 3U);
  EXPECT_EQ(groups->rows(), 6);
  EXPECT_EQ(test::Numbers({groups, 0, nullptr}), (std::vector<double>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(test::Numbers({groups, 1, nullptr}), (std::vector<double>{0.5, 1.5, 2.5, 3.5, 4.5, 5.5}));
}

TEST(ColumnarDataset, refusesMoreCasesThanACountHolds) {
  EXPECT_NO_THROW(ColumnarDataset(Dictionary{}, {}, kMostCases, 0));
  try {
    const ColumnarDataset dataset(Dictionary{}, {}, kMostCases + 1, 0);
    FAIL() << "taken";
  } catch (const DataError& error) {
    EXPECT_STREQ(error.what(),
                 "The data has 2147483648 cases; more than 2147483647 cannot be worked with. Split the file.");
  }
}

}  // namespace
}  // namespace runtime::data
