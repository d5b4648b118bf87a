// The common blocks of the stand-in: they note who was asked for.
#include "host/common/commonblocks.h"

#include "tests/unit/codebook_standin/standin.h"

namespace {

char block;

void* fetched(const char* name) {
  codebook::standin::host().blocksFetched.emplace_back(name);
  return &block;
}

}  // namespace

void* pvGetCmnBpr() { return fetched("CmnBpr"); }
void* pvGetCmaDic() { return fetched("CmaDic"); }
void* pvGetCmaGlb() { return fetched("CmaGlb"); }
void* pvGetCmaMch() { return fetched("CmaMch"); }
void* pvGetCmaObv() { return fetched("CmaObv"); }
void* pvGetCmaSym() { return fetched("CmaSym"); }
void* pvGetCmaSys() { return fetched("CmaSys"); }
void* pvGetCmnDic() { return fetched("CmnDic"); }
void* pvGetCmnDmo() { return fetched("CmnDmo"); }
void* pvGetCmnGlb() { return fetched("CmnGlb"); }
void* pvGetCmnInc() { return fetched("CmnInc"); }
void* pvGetCmnIo() { return fetched("CmnIo"); }
void* pvGetCmnLoc() { return fetched("CmnLoc"); }
void* pvGetCmnMch() { return fetched("CmnMch"); }
void* pvGetCmnMcs() { return fetched("CmnMcs"); }
void* pvGetCmnObv() { return fetched("CmnObv"); }
void* pvGetCmnStk() { return fetched("CmnStk"); }
void* pvGetCmnSym() { return fetched("CmnSym"); }
void* pvGetCmnSys() { return fetched("CmnSys"); }
void* pvGetCmnWrk() { return fetched("CmnWrk"); }
void* pvGetCmnDtm() { return fetched("CmnDtm"); }
void* pvGetCmnBox() { return fetched("CmnBox"); }
