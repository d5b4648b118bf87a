// The order in which items are reported.
#pragma once

#include <vector>

#include "host/data/datasource.h"

#include "codebook/parser/cbksettings.h"

namespace codebook {

/// Reorders the items in place by VARORDER and SORT of the settings; names compare byte by byte.
void orderItems(const CodebookSettings& settings, const MAVO_DataSource& dataSource, std::vector<ListedItem>& items);

}  // namespace codebook
