// What the module exports: the procedure and the load notification handler.
#include <array>

#include "host/common/api.h"
#include "host/common/commonblocks.h"
#include "host/common/notification.h"

#include "codebook/cbkoutput.h"
#include "codebook/cbkreport.h"
#include "codebook/parser/cbkparser.h"

namespace {

void* moduleHandle = nullptr;
std::array<void*, 22> commonBlocks{};

}  // namespace

extern "C" HOST_API int LoadNotification(void* module, unsigned int notification, void* /*reserved*/) {
  if (notification == kProcessAttach) {
    moduleHandle = module;
    commonBlocks = {pvGetCmnBpr(), pvGetCmaDic(), pvGetCmaGlb(), pvGetCmaMch(), pvGetCmaObv(), pvGetCmaSym(),
                    pvGetCmaSys(), pvGetCmnDic(), pvGetCmnDmo(), pvGetCmnGlb(), pvGetCmnInc(), pvGetCmnIo(),
                    pvGetCmnLoc(), pvGetCmnMch(), pvGetCmnMcs(), pvGetCmnObv(), pvGetCmnStk(), pvGetCmnSym(),
                    pvGetCmnSys(), pvGetCmnWrk(), pvGetCmnDtm(), pvGetCmnBox()};
  }
  return 1;
}

/// Describes the active dataset as the current command asks. Reports through the message channel and the output only;
/// an exception of the host passes on, after everything made here was destroyed in reverse order.
extern "C" HOST_API void CODEBOOK() {
  BpProcedure procedure(codebook::N_("Codebook"), 1);
  ProcedureDataSource dataSource;
  ParserMessage parserMessage;
  codebook::CodebookRequest request(&dataSource, &parserMessage);
  if (!request.parse()) return;
  if (dataSource.FatalError() || dataSource.ColumnCount() == 0) return;
  codebook::CodebookReport report(request.settings(), &dataSource, &procedure, &parserMessage);
  report.run();
}
