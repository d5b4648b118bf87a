// Where the parts of a distributed table are kept.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// The relations that together hold the rows of a PostgreSQL table whose partitions, or descendants, lie on other
/// servers: the planner does not take a grouping of the parent to them, but takes one of each leaf to the leaf's
/// server. Empty when all rows are on this server, and where the leaves may not be read one by one: without the
/// privilege, or because policies on rows guard the parent.
std::vector<std::string> FindLeaves(SqlConnection& connection, const std::string& relation);

}  // namespace runtime::data
