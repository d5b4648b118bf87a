// A query that a user gives, checked before it becomes a part of ours.
#pragma once

#include <string>
#include <string_view>

namespace runtime::data {

/// The query without a semicolon at its end, fit to stand in parentheses on lines of its own. Throws DataError, which
/// names `source`, unless it is one statement that reads (SELECT, WITH, VALUES or TABLE) with its quotes and comments
/// ended and its parentheses in pairs. Engines differ in what quotes and comments are: what would be several statements
/// to any of them is refused.
std::string CheckQuery(std::string_view text, const std::string& source);

}  // namespace runtime::data
