// A file through our CSV reader.
#pragma once

#include <cstddef>
#include <string>

#include "runtime/data/csv/csvdialect.h"
#include "tests/cells/table.h"

namespace cells {

struct OurReading {
  Table table;
  runtime::data::CsvDialect dialect;  // as it was found; of no meaning when nothing was read
};

/// All cells of the file, exactly as they go to typing.
OurReading ReadOurs(const std::string& path);

}  // namespace cells
