// The host's common blocks. A module fetches the 22 pointers once, when it is told that it was attached to the process.
// A block is opaque to the module; a pointer is never null and stays valid for the life of the process.
#pragma once

#include "host/common/api.h"

extern "C" {
HOST_API void* pvGetCmnBpr();
HOST_API void* pvGetCmaDic();
HOST_API void* pvGetCmaGlb();
HOST_API void* pvGetCmaMch();
HOST_API void* pvGetCmaObv();
HOST_API void* pvGetCmaSym();
HOST_API void* pvGetCmaSys();
HOST_API void* pvGetCmnDic();
HOST_API void* pvGetCmnDmo();
HOST_API void* pvGetCmnGlb();
HOST_API void* pvGetCmnInc();
HOST_API void* pvGetCmnIo();
HOST_API void* pvGetCmnLoc();
HOST_API void* pvGetCmnMch();
HOST_API void* pvGetCmnMcs();
HOST_API void* pvGetCmnObv();
HOST_API void* pvGetCmnStk();
HOST_API void* pvGetCmnSym();
HOST_API void* pvGetCmnSys();
HOST_API void* pvGetCmnWrk();
HOST_API void* pvGetCmnDtm();
HOST_API void* pvGetCmnBox();
}
