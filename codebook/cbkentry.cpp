#include "host/common/api.h"

extern "C" HOST_API void CODEBOOK() {}
