// The report as Markdown with GitHub's tables.
#pragma once

#include <memory>

#include "runtime/output/render/renderer.h"

namespace runtime::output {

/// A heading a procedure and a table, each table one of GitHub's; behind them what there is of method notes and
/// messages, as lists. Groups stand in bold in columns before their rows, in the first row of each. Left out are groups
/// without rows and columns without cells. Texts from data come out of a reader of Markdown as they are; what a
/// terminal would obey or not show stands there as an escape.
std::unique_ptr<Renderer> NewMarkdownRenderer(const RenderOptions& options);

}  // namespace runtime::output
