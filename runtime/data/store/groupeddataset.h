// A dataset whose cases are counted elsewhere: its cursor walks over groups.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/data/casecursor.h"

#include "runtime/data/dataset.h"
#include "runtime/data/store/columnardataset.h"

namespace runtime::data {

/// The groups that answer one request. A group whose weight no double holds takes several rows; the second and further
/// rows of all groups stand behind the first rows of all. There are no more rows than cases: where a weight takes more
/// of them than its group has cases, the weights of these cases are the rows.
struct CountedGroups {
  std::vector<StoredColumn> columns;  // one a variable of the request, each with `rows` cells
  std::int64_t rows = 0;
  std::vector<double> weights;  // one a row, none negative or NaN; empty: 1 each
  bool isComplete = true;       // else there are more rows than were given: at least one
  // Of a scale request where the source formed the sums itself, see MomentParts. Of a complete answer only.
  bool hasMoments = false;
  std::vector<double> valueSums;
  std::vector<double> squareSums;
  double lowest = 0.0;  // valid value
  double highest = 0.0;
  bool areWhole = false;
};

/// Whoever counts. Errors throw DataError.
class GroupSource {
 public:
  virtual ~GroupSource();
  /// Answers all requests of a cursor at once, before its first case. Parallel to the requests.
  virtual std::vector<CountedGroups> Count(const std::vector<CountingRequest>& requests) = 0;
  /// All groups of a request that was not answered completely; the rows given before come first. Asked only when a
  /// table has counted all that was given.
  virtual CountedGroups CountAll(const CountingRequest& request) = 0;
  /// Of a request that was answered with sums: see CaseGroups::WeightsBetween. May be called by several threads.
  virtual std::vector<double> WeightsBetween(const CountingRequest& request, const std::vector<double>& edges);
};

/// One cursor at a time.
class GroupedDataset : public Dataset {
 public:
  /// `cases`: unweighted, may be more than kMostCases. `chunkRows`: most groups that a cursor hands out at once, 0: as
  /// many as are good.
  GroupedDataset(Dictionary dictionary, std::shared_ptr<GroupSource> source, std::int64_t cases,
                 std::int64_t chunkRows = 0);
  ~GroupedDataset() override;

  std::unique_ptr<CaseCursor> NewCursor() const override;
  std::int64_t caseCount() const override { return fCases; }
  std::int64_t rowCount() const override { return -1; }  // of groups not counted yet

 private:
  std::shared_ptr<GroupSource> fSource;
  std::int64_t fCases;
  std::int64_t fChunkRows;
};

}  // namespace runtime::data
