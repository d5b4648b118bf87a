// How far a table has come: what is looked at for every case, side by side in memory.
#pragma once

#include <cstdint>

/// The rows that a table has taken and not yet computed: [begin, end), all of the cursor's present chunk.
struct PendingRows {
  std::int64_t begin = -1;
  std::int64_t end = -1;
};

/// What is known of the number of values of a table's dimension: it is `count` for every end of the pending rows up to
/// `nextNewRow`; beyond that the engine must be asked.
struct ValueWatch {
  std::int64_t nextNewRow = -1;
  int count = 0;
};

struct TableProgress {
  PendingRows pending;
  ValueWatch watch;
};
