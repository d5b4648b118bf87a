// From the texts of groups to stored cells.
#pragma once

#include <cstdint>
#include <vector>

#include "runtime/data/source/sql/rawgroups.h"
#include "runtime/data/source/sql/sqlconnection.h"
#include "runtime/data/store/columnardataset.h"
#include "runtime/data/typing/columntyper.h"

namespace runtime::data {

/// Whether the groups of whole or decimal numbers hold a whole number beyond 2^53, which doubles do not tell apart:
/// such a column is read as texts.
bool HasWholesBeyondDoubles(SqlType type, const RawGroups& groups);

/// Reads each group's text as the plan has a cell read: cell i of the column belongs to group i. The facts count cases,
/// not groups; cells that do not read have no row. `type` String: as texts, whatever the database holds.
TypedColumn TypeGroups(const SqlColumn& column, FieldType type, const ColumnPlan& plan, const RawGroups& groups);

/// The cells of some groups, in that order, which may name a group several times. REQUIRES: the cells of `column` are
/// one piece, as those of TypeGroups are.
StoredColumn Gather(const StoredColumn& column, const std::vector<std::uint32_t>& groups);

/// The numbers of such a column. REQUIRES: numeric.
std::vector<double> NumbersOf(const StoredColumn& column);

/// A column of numbers; NaN is system-missing.
StoredColumn NumbersColumn(const std::vector<double>& numbers);

}  // namespace runtime::data
