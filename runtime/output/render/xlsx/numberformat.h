// Formats of numbers as workbooks write them.
#pragma once

#include <string>

#include "host/output/celltext.h"

namespace runtime::output {

/// The workbook's format that shows a number as this format does, such as `0.0"%"`; empty where there is none, as for
/// dates and hexadecimal numbers, whose text must stand for them.
std::string WorkbookNumberFormat(const BpFormatSpec& format);

}  // namespace runtime::output
