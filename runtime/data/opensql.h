// Opening a dataset that a database counts.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "runtime/data/open.h"
#include "runtime/data/source/sql/sqltable.h"

namespace runtime::data {

/// Connects to the databases that the options name. Throws DataError.
std::shared_ptr<SqlTable> OpenSqlTable(const OpenOptions& options);

/// Whether its engine groups it. Asks it.
bool CanCount(SqlTable& table);

/// The table as a dataset whose cursor's cases are groups: the database groups each column. Throws DataError.
OpenedDataset OpenInDatabase(const OpenOptions& options, std::shared_ptr<SqlTable> table);

/// The dictionary that the options name, for the columns of the table. Throws DataError. REQUIRES: options.dictionary.
TableDescriptor ReadDictionaryOfTable(const SqlTable& table, const OpenOptions& options, std::vector<Note>& notes);

/// What stands for path and file name of a table: its database and its name.
std::string FileSpecOfTable(const SqlTable& table);

}  // namespace runtime::data
