// The walk over the cases, a chunk of columns at a time. The module sees only the iterator (caseiterator.h); the
// aggregation library reads the columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "host/common/api.h"

/// How the cells of a column chunk are stored. Whole numbers of small range stand in the smallest type that holds them,
/// the type's lowest value being system-missing; doubles have NaN for it. Strings are codes into a StringTable and know
/// no system-missing.
enum class ColumnStorage : std::uint8_t { Float64, Int8, Int16, Int32, StringCode };

inline constexpr std::int8_t kInt8SystemMissing = INT8_MIN;
inline constexpr std::int16_t kInt16SystemMissing = INT16_MIN;
inline constexpr std::int32_t kInt32SystemMissing = INT32_MIN;

/// The distinct texts of a string column. Codes count from 0 in order of first appearance; a code never changes its
/// text.
class HOST_API StringTable {
 public:
  virtual ~StringTable();
  /// The text without trailing blanks, UTF-8. The view stays valid while the table lives.
  virtual std::string_view Text(std::uint32_t code) const = 0;
  virtual std::uint32_t Size() const = 0;
};

/// The cells of one column over the cursor's chunk: cells[0] belongs to row chunkBegin. Not owned; valid until the
/// cursor leaves the chunk. The element type follows from `storage` (StringCode: std::uint32_t).
struct ColumnView {
  ColumnStorage storage = ColumnStorage::Float64;
  const void* cells = nullptr;
  const StringTable* strings = nullptr;  // only with StringCode
};

/// Told before the cursor leaves a chunk, while its columns can still be read, and when the cursor dies. A cursor that
/// dies in the middle of a chunk leaves the chunk first. A listener may remove itself or others while it is told. What
/// LeaveChunk throws passes through Next; a listener told by a cursor that dies (`leaving`) must not throw.
class HOST_API ChunkListener {
 public:
  virtual ~ChunkListener();
  virtual void LeaveChunk() = 0;
  virtual void CursorGone() = 0;
};

/// What a table counts: the values of one variable, or the responses of a set's members; no variable at all asks for
/// the cases themselves.
struct CountingRequest {
  enum class Kind {
    Categories,  // each value, or each member's response, of the variables together
    Scale        // moments and percentiles of the one variable
  };

  Kind kind = Kind::Categories;
  std::vector<int> variables;  // dictionary indices; of a set in set order

  /// Of one numeric variable's categories: only these values must be told apart; of the others it matters whether they
  /// are missing, no more. Absent: all values.
  std::optional<std::vector<double>> listed = std::nullopt;

  bool operator==(const CountingRequest&) const = default;
};

/// Sums over the valid cases of a scale variable that were formed where the cases are. Each list's exact sum is meant,
/// not its rounded one. Not owned. With them comes the range of the values.
struct MomentParts {
  const double* values = nullptr;  // of w x
  std::size_t valueCount = 0;
  const double* squares = nullptr;  // of w x^2
  std::size_t squareCount = 0;
  double lowest = 0.0;
  double highest = 0.0;
  bool areWhole = false;  // all of them
};

/// The groups that a source counted for one request. Over them a table counts what it would count over the cases: each
/// row stands for as many cases as its weight says. A group cursor has at least as many rows as its longest list of
/// groups; a shorter list has none for the last of them. What is said here may be asked by several threads at once.
class HOST_API CaseGroups {
 public:
  virtual ~CaseGroups();
  /// Rows of the cursor's present chunk that have a group; they are the chunk's first ones. To be asked only for a
  /// table that has taken rows of the chunk: a list of which nobody has read the last groups may be cut off there.
  virtual std::size_t rows() const = 0;
  /// One of the request's variables over these rows.
  virtual ColumnView Column(int variable) const = 0;
  /// Their weights, null when each is 1. Never negative, never NaN; the weight of a group may be spread over several
  /// rows with the same values, where one double does not hold it exactly.
  virtual const double* Weights() const = 0;
  /// Of a scale request: the sums that hold instead of those over the rows, whose values then are right only for
  /// percentiles. Null: the rows' own.
  virtual const MomentParts* moments() const { return nullptr; }
  /// Where moments() are given: the weight of the valid values between each two neighbouring edges, the lower one
  /// included and, of the last two, both; exact and rounded once. The edges rise and enclose all values. May be called
  /// by several threads, also when the cursor is exhausted.
  virtual std::vector<double> WeightsBetween(const std::vector<double>& edges) const;
};

/// One walk over the cases. Rows count from 0 over the whole dataset; -1 before the first case.
class HOST_API CaseCursor {
 public:
  CaseCursor();
  virtual ~CaseCursor();
  CaseCursor(const CaseCursor&) = delete;
  CaseCursor& operator=(const CaseCursor&) = delete;

  /// Steps to the next case; false when the cases are exhausted (then `row` stands at the number of cases, and further
  /// calls give false again).
  bool Next() {
    if (row + 1 < chunkEnd) {
      ++row;
      return true;
    }
    return StepToNextChunk();
  }

  /// The column of a variable (dictionary index) over the present chunk.
  virtual ColumnView Column(int variable) const = 0;
  /// The weights of the chunk's rows, null when every weight is 1. Never negative, never NaN: a missing, negative,
  /// zero or infinite weight is 0 here.
  virtual const double* Weights() const = 0;

  /// Of a cursor whose cases are groups: those that answer a request, owned by the cursor; may be asked for before the
  /// first case only, and read from then on as Column and Weights are. Null for a cursor over cases, where Column and
  /// Weights serve every table; a group cursor has neither.
  virtual const CaseGroups* GroupsFor(const CountingRequest& request);

  /// True from the call of Next on that found no further case.
  bool exhausted() const { return fExhausted; }
  /// True while the last farewell is said: whoever is told must not throw then.
  bool leaving() const { return fLeaving; }

  void AddListener(ChunkListener* listener);
  void RemoveListener(ChunkListener* listener);

  // Read by the tables for every case, hence plain members.
  std::int64_t row = -1;
  std::int64_t chunkBegin = 0;  // first row of the chunk
  std::int64_t chunkEnd = 0;    // one past its last row
  bool atSplitGroupEnd = false;

 protected:
  /// Sets chunkBegin and chunkEnd to the next chunk and returns true, or false at the end, leaving both alone.
  virtual bool LoadNextChunk() = 0;
  /// Tells the listeners that the cursor dies. To be called first in a derived class's destructor, while its columns
  /// can still be read.
  void Farewell();

 private:
  bool StepToNextChunk();
  void TellListeners();

  std::vector<ChunkListener*> fListeners;  // null: removed while the listeners were told
  bool fTelling = false;
  bool fExhausted = false;
  bool fLeaving = false;
};
