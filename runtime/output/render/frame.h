// The lines around and between the cells of a drawn table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "runtime/output/render/texttable.h"

namespace runtime::output {

enum class Edge { Left, Between, Right };

/// Columns of the terminal between two columns of the table.
int ColumnGap(const TextFrame& frame);
/// What all edges and gaps of a table of so many columns take together.
int FrameWidth(const TextFrame& frame, std::size_t columns);

void AppendBar(std::string& page, const TextFrame& frame, Edge edge);

/// A horizontal line. `above` and `below` tell for every edge and gap, from left to right, whether a bar of the rows
/// there meets it.
void AppendRule(std::string& page, const TextFrame& frame, const std::vector<int>& widths,
                const std::vector<bool>& above, const std::vector<bool>& below);

/// One line of a cell, filled up with blanks to the width; `indent` blanks before it, or at the right edge.
void AppendText(std::string& page, const TextFrame& frame, std::string_view text, int width, int indent, bool right,
                bool bold);

}  // namespace runtime::output
