// The report as one tidy CSV table.
#pragma once

#include <memory>

#include "runtime/output/render/renderer.h"

namespace runtime::output {

/// One header for all procedures and tables, a line a row of a table, in the order of the report, then method notes and
/// messages. Lines end with LF, fields are quoted where RFC 4180 asks for it, numbers have full precision. The header,
/// `kind` and what is said of messages are English in every language, for programs.
///
///   kind          value (the row's label is a data value), member (a variable), row (anything else), table (it has no
///                 rows), note (of method) or message
///   procedure     its title
///   table_number  from 1, through all procedures
///   table         the table's kind, the same in every language
///   title         the table's title
///   variable      the title where it is from the data: the variable or set that the table is of
///   row_number    from 1 in each table
///   section       groups that the row stands in, joined by " > "; of a message: warning, error
///   row           the row's label as shown; of a note its name; of a message where it comes from: command, data, host
///   value         the data value itself: a number in full, a string
///   label         of a value or member its "Value" cell
///   count         "Count" cell
///   percent       "Percent" cell
///   text          of any other row the "Value" cell or the row's own, as shown; of notes and messages their text
///   number        the number of this cell, in full
///   column        of a cell that has no place above: its column. Such a cell, and a second one at the same place, has
///                 a line of its own
///
/// A field without a content is empty, an empty text is "". System-missing and infinite numbers are empty.
std::unique_ptr<Renderer> NewCsvRenderer(const RenderOptions& options);

}  // namespace runtime::output
