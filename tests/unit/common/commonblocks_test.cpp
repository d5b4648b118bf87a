#include "host/common/commonblocks.h"

#include <set>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::vector<void*> allBlocks() {
  return {pvGetCmnBpr(), pvGetCmaDic(), pvGetCmaGlb(), pvGetCmaMch(), pvGetCmaObv(), pvGetCmaSym(),
          pvGetCmaSys(), pvGetCmnDic(), pvGetCmnDmo(), pvGetCmnGlb(), pvGetCmnInc(), pvGetCmnIo(),
          pvGetCmnLoc(), pvGetCmnMch(), pvGetCmnMcs(), pvGetCmnObv(), pvGetCmnStk(), pvGetCmnSym(),
          pvGetCmnSys(), pvGetCmnWrk(), pvGetCmnDtm(), pvGetCmnBox()};
}

TEST(CommonBlocks, areTwentyTwoDifferentOnes) {
  const std::vector<void*> blocks = allBlocks();
  const std::set<void*> different(blocks.begin(), blocks.end());
  EXPECT_EQ(different.size(), 22U);
  EXPECT_EQ(different.count(nullptr), 0U);
}

TEST(CommonBlocks, stayWhereTheyAre) { EXPECT_EQ(allBlocks(), allBlocks()); }

}  // namespace
