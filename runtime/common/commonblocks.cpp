#include "host/common/commonblocks.h"

#include <array>
#include <cstddef>

namespace {

// No procedure that we carry reads a block; a module may only rely on getting 22 distinct, lasting addresses.
struct CommonBlock {
  alignas(16) std::array<std::byte, 64> bytes{};
};

CommonBlock blocks[22];

}  // namespace

void* pvGetCmnBpr() { return &blocks[0]; }
void* pvGetCmaDic() { return &blocks[1]; }
void* pvGetCmaGlb() { return &blocks[2]; }
void* pvGetCmaMch() { return &blocks[3]; }
void* pvGetCmaObv() { return &blocks[4]; }
void* pvGetCmaSym() { return &blocks[5]; }
void* pvGetCmaSys() { return &blocks[6]; }
void* pvGetCmnDic() { return &blocks[7]; }
void* pvGetCmnDmo() { return &blocks[8]; }
void* pvGetCmnGlb() { return &blocks[9]; }
void* pvGetCmnInc() { return &blocks[10]; }
void* pvGetCmnIo() { return &blocks[11]; }
void* pvGetCmnLoc() { return &blocks[12]; }
void* pvGetCmnMch() { return &blocks[13]; }
void* pvGetCmnMcs() { return &blocks[14]; }
void* pvGetCmnObv() { return &blocks[15]; }
void* pvGetCmnStk() { return &blocks[16]; }
void* pvGetCmnSym() { return &blocks[17]; }
void* pvGetCmnSys() { return &blocks[18]; }
void* pvGetCmnWrk() { return &blocks[19]; }
void* pvGetCmnDtm() { return &blocks[20]; }
void* pvGetCmnBox() { return &blocks[21]; }
