// The report as a workbook of spreadsheets: an index, one sheet of variables, one of values, and every table as it is.
#pragma once

#include <memory>

#include "runtime/output/render/renderer.h"

namespace runtime::output {

/// Texts are never formulas nor links; numbers keep 16 significant digits. Throws RenderError when the workbook cannot
/// be made, and what its temporary files throw (runtime/machine/spillfile.h).
std::unique_ptr<Renderer> NewXlsxRenderer(const RenderOptions& options);

}  // namespace runtime::output
