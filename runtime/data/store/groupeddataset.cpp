#include "runtime/data/store/groupeddataset.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/open.h"

namespace runtime::data {

namespace {

// The scaled weights of a chunk stand in memory once a table, and a wide codebook has thousands of tables.
constexpr std::int64_t kRowsOfChunk = 8192;
constexpr std::int64_t kRowsBehindValues = 2;

/// A walk over the blocks of one table of stored cells.
class BlockWalk {
 public:
  explicit BlockWalk(std::shared_ptr<const RowGroups> table) : fTable(std::move(table)) {}

  const RowGroups* table() const { return fTable.get(); }
  /// One past the last row of the block that holds the row. REQUIRES: not before the row moved to last.
  std::int64_t EndOfBlockWith(std::int64_t row) const {
    std::int64_t end = EndOfBlock();
    for (std::size_t block = fBlock; end <= row;) end += static_cast<std::int64_t>(fTable->rowsOf(++block));
    return end;
  }
  /// Makes the block that holds the row readable. REQUIRES: as EndOfBlockWith. Throws SpillError.
  void MoveTo(std::int64_t row) {
    const std::size_t before = fBlock;
    while (EndOfBlock() <= row) {
      fBegin = EndOfBlock();
      ++fBlock;
    }
    if (fBlock != before || fCells == nullptr) fCells = fTable->Load(fBlock, fBuffer);
  }
  ColumnView View(std::size_t column, std::int64_t row) const {
    return fTable->View(fBlock, fCells, column, static_cast<std::size_t>(row - fBegin));
  }

 private:
  std::int64_t EndOfBlock() const { return fBegin + static_cast<std::int64_t>(fTable->rowsOf(fBlock)); }

  std::shared_ptr<const RowGroups> fTable;
  std::size_t fBlock = 0;
  std::int64_t fBegin = 0;  // first row of the block
  const std::byte* fCells = nullptr;
  std::vector<std::byte> fBuffer;
};

template <class Integer>
double NumberAt(const void* cells, std::size_t row) {
  const Integer cell = static_cast<const Integer*>(cells)[row];
  return cell == std::numeric_limits<Integer>::min() ? std::numeric_limits<double>::quiet_NaN() : cell;
}

/// Another number for another cell of the column, whatever the storage of its block.
std::uint64_t KeyOfCell(const ColumnView& view, std::size_t row) {
  switch (view.storage) {
    case ColumnStorage::StringCode:
      return static_cast<const std::uint32_t*>(view.cells)[row];
    case ColumnStorage::Int8:
      return std::bit_cast<std::uint64_t>(NumberAt<std::int8_t>(view.cells, row));
    case ColumnStorage::Int16:
      return std::bit_cast<std::uint64_t>(NumberAt<std::int16_t>(view.cells, row));
    case ColumnStorage::Int32:
      return std::bit_cast<std::uint64_t>(NumberAt<std::int32_t>(view.cells, row));
    case ColumnStorage::Float64:
      break;
  }
  return std::bit_cast<std::uint64_t>(static_cast<const double*>(view.cells)[row]);
}

std::int64_t DistinctCells(const StoredColumn& column) {
  std::unordered_set<std::uint64_t> met;
  std::vector<std::byte> buffer;
  for (std::size_t block = 0; block < column.groups->size(); ++block) {
    const ColumnView view = column.groups->View(block, column.groups->Load(block, buffer), column.column, 0);
    for (std::size_t row = 0; row < column.groups->rowsOf(block); ++row) met.insert(KeyOfCell(view, row));
  }
  return static_cast<std::int64_t>(met.size());
}

/// The groups of one request as the cursor walks over them.
class GroupList : public CaseGroups {
 public:
  /// None of the three is owned.
  GroupList(const CaseCursor& cursor, const Dictionary& dictionary, GroupSource& source, CountingRequest request)
      : fCursor(cursor), fDictionary(dictionary), fSource(source), fRequest(std::move(request)) {}

  std::size_t rows() const override {
    // A request may serve several tables, which count in several threads.
    fIsRead.store(true, std::memory_order_relaxed);
    const std::int64_t end = std::min(fCursor.chunkEnd, fGroups.rows);
    return end > fCursor.chunkBegin ? static_cast<std::size_t>(end - fCursor.chunkBegin) : 0;
  }
  ColumnView Column(int variable) const override {
    const auto found = std::find(fRequest.variables.begin(), fRequest.variables.end(), variable);
    if (found == fRequest.variables.end())
      throw std::logic_error(fmt::format("variable {} is none of those that were asked for", variable));
    const auto at = static_cast<std::size_t>(found - fRequest.variables.begin());
    if (fCursor.chunkBegin >= fGroups.rows) return {};
    const StoredColumn& column = fGroups.columns[at];
    ColumnView view = fWalks[fWalkOfColumn[at]].View(column.column, fCursor.chunkBegin);
    view.strings = column.strings.get();
    return view;
  }
  const double* Weights() const override {
    if (fGroups.weights.empty()) return nullptr;
    return fGroups.weights.data() + std::min(fCursor.chunkBegin, fGroups.rows);
  }
  /// Those of a part of the groups would not hold for the part.
  const MomentParts* moments() const override { return fGroups.hasMoments && fGroups.isComplete ? &fMoments : nullptr; }

  std::vector<double> WeightsBetween(const std::vector<double>& edges) const override {
    return fSource.WeightsBetween(fRequest, edges);
  }

  const CountingRequest& request() const { return fRequest; }
  /// Groups known so far.
  std::int64_t groups() const { return fGroups.rows; }

  void SetGroups(CountedGroups groups) {
    if (groups.rows > kMostCases)
      throw DataError(fmt::format("{} {} groups of cases that differ; more than {} cannot be counted. Leave {} out.",
                                  NamesOfVariables(), groups.rows, kMostCases,
                                  fRequest.variables.size() > 1 ? "the set" : "the variable"));
    const auto rows = static_cast<std::size_t>(std::max<std::int64_t>(0, groups.rows));
    const bool fits = std::all_of(groups.columns.begin(), groups.columns.end(),
                                  [&](const StoredColumn& column) { return column.groups->rows() == groups.rows; });
    if (!fits || groups.columns.size() != fRequest.variables.size() ||
        (!groups.weights.empty() && groups.weights.size() != rows))
      throw std::logic_error("the groups do not answer the request");
    // What was counted of the first groups refers to their texts.
    if (fGroups.rows > 0) fEarlier.push_back(std::move(fGroups));
    fGroups = std::move(groups);
    fMoments = {fGroups.valueSums.data(),  fGroups.valueSums.size(), fGroups.squareSums.data(),
                fGroups.squareSums.size(), fGroups.lowest,           fGroups.highest,
                fGroups.areWhole};
    fWalks.clear();
    fWalkOfColumn.clear();
    for (const StoredColumn& column : fGroups.columns) {
      const auto found = std::find_if(fWalks.begin(), fWalks.end(),
                                      [&](const BlockWalk& walk) { return walk.table() == column.groups.get(); });
      fWalkOfColumn.push_back(static_cast<std::size_t>(found - fWalks.begin()));
      if (found == fWalks.end()) fWalks.emplace_back(column.groups);
    }
  }

  /// The cursor leaves the rows before this one. Where they are all that was given and a table has read the last of
  /// them, the others are asked for.
  void GoOnBehind(std::int64_t row, GroupSource& source) {
    const bool wasRead = fIsRead.exchange(false);
    if (fGroups.isComplete || row != fGroups.rows) return;
    if (row > 0 && !wasRead) return;
    SetGroups(source.CountAll(fRequest));
    if (!fGroups.isComplete) throw std::logic_error("not all groups of a request were given");
  }

  /// Where a chunk that begins at the row must end. REQUIRES: the row has a group.
  std::int64_t EndOfStretch(std::int64_t row) const {
    std::int64_t end = std::numeric_limits<std::int64_t>::max();
    // The last group of a part stands by itself: only the tables that want more still take it.
    if (!fGroups.isComplete) end = row < fGroups.rows - 1 ? fGroups.rows - 1 : fGroups.rows;
    for (const BlockWalk& walk : fWalks) {
      const std::int64_t endOfBlock = walk.EndOfBlockWith(row);
      if (endOfBlock < fGroups.rows) end = std::min(end, endOfBlock);
    }
    return end;
  }

  /// Throws SpillError.
  void MoveTo(std::int64_t row) {
    if (row >= fGroups.rows) return;
    for (BlockWalk& walk : fWalks) walk.MoveTo(row);
  }

  /// A bound of the values that the variables of a set have together; of others, which show one value a row, 0.
  std::int64_t MostValues() const {
    if (fGroups.columns.size() < 2 || !fGroups.isComplete) return 0;
    std::int64_t values = 0;
    for (const StoredColumn& column : fGroups.columns) values += DistinctCells(column);
    return values;
  }

 private:
  /// As the beginning of a sentence, with its verb.
  std::string NamesOfVariables() const {
    std::string names;
    for (const int variable : fRequest.variables)
      names += (names.empty() ? "" : ", ") + fDictionary.variables[static_cast<std::size_t>(variable)]->name;
    if (names.empty()) return "The data has";
    return fRequest.variables.size() > 1 ? "The variables " + names + " together have"
                                         : "The variable " + names + " has";
  }

  const CaseCursor& fCursor;
  const Dictionary& fDictionary;
  GroupSource& fSource;
  const CountingRequest fRequest;
  CountedGroups fGroups;
  std::vector<CountedGroups> fEarlier;
  MomentParts fMoments;
  std::vector<BlockWalk> fWalks;           // one a table that columns stand in
  std::vector<std::size_t> fWalkOfColumn;  // by place in the request
  mutable std::atomic<bool> fIsRead{false};
};

class GroupCursor : public CaseCursor {
 public:
  /// The dictionary is not owned.
  GroupCursor(const Dictionary& dictionary, std::shared_ptr<GroupSource> source, std::int64_t cases,
              std::int64_t chunkRows)
      : fDictionary(dictionary),
        fSource(std::move(source)),
        fCases(cases),
        fChunkRows(chunkRows > 0 ? chunkRows : kRowsOfChunk) {}
  ~GroupCursor() override { Farewell(); }

  ColumnView Column(int) const override { throw std::logic_error("a cursor over groups has no columns of its own"); }
  const double* Weights() const override { throw std::logic_error("a cursor over groups has no weights of its own"); }

  const CaseGroups* GroupsFor(const CountingRequest& request) override {
    for (const std::unique_ptr<GroupList>& list : fLists)
      if (list->request() == request) return list.get();
    if (fIsCounted || exhausted()) throw std::logic_error("groups are asked for behind the first case");
    fLists.push_back(std::make_unique<GroupList>(*this, fDictionary, *fSource, request));
    return fLists.back().get();
  }

 protected:
  bool LoadNextChunk() override {
    if (fCases <= 0) return false;
    Count();
    const std::int64_t begin = chunkEnd;
    std::int64_t longest = 0;
    for (const std::unique_ptr<GroupList>& list : fLists) {
      list->GoOnBehind(begin, *fSource);
      longest = std::max(longest, list->groups());
    }
    std::int64_t end = begin + fChunkRows;
    if (begin < longest) {
      end = std::min(end, longest);
      for (const std::unique_ptr<GroupList>& list : fLists)
        if (begin < list->groups()) end = std::min(end, list->EndOfStretch(begin));
    } else {
      if (fRows < 0) fRows = RowsBehind(longest);
      if (begin >= fRows) return false;
      end = std::min(end, fRows);
    }
    for (const std::unique_ptr<GroupList>& list : fLists) list->MoveTo(begin);
    chunkBegin = begin;
    chunkEnd = end;
    return true;
  }

 private:
  void Count() {
    if (fIsCounted) return;
    std::vector<CountingRequest> requests;
    for (const std::unique_ptr<GroupList>& list : fLists) requests.push_back(list->request());
    std::vector<CountedGroups> counted = requests.empty() ? std::vector<CountedGroups>() : fSource->Count(requests);
    if (counted.size() != requests.size()) throw std::logic_error("not every request was answered");
    for (std::size_t i = 0; i < fLists.size(); ++i) fLists[i]->SetGroups(std::move(counted[i]));
    fIsCounted = true;
  }

  /// The rows of the cursor, given the length of its longest list. Whoever follows the number of values of a table asks
  /// for it before the table takes one more case, and only from as many cases on as there may be values. So that this
  /// comes as it would over all cases, there are as many rows as a set may show values, and one more, in which the last
  /// table with too many of them is noticed, and another one, so that this does not happen in the very last case. But
  /// there are never more rows than cases.
  std::int64_t RowsBehind(std::int64_t longest) const {
    if (fCases <= longest) return longest;
    std::int64_t most = longest;
    for (const std::unique_ptr<GroupList>& list : fLists) most = std::max(most, list->MostValues());
    return std::min({most + kRowsBehindValues, fCases, kMostCases});
  }

  const Dictionary& fDictionary;
  const std::shared_ptr<GroupSource> fSource;
  const std::int64_t fCases;
  const std::int64_t fChunkRows;
  std::vector<std::unique_ptr<GroupList>> fLists;
  bool fIsCounted = false;
  std::int64_t fRows = -1;  // negative: not known yet
};

}  // namespace

GroupSource::~GroupSource() = default;

std::vector<double> GroupSource::WeightsBetween(const CountingRequest&, const std::vector<double>&) {
  throw std::logic_error("a source that forms sums itself tells how its values lie");
}

GroupedDataset::GroupedDataset(Dictionary dictionary, std::shared_ptr<GroupSource> source, std::int64_t cases,
                               std::int64_t chunkRows)
    : Dataset(std::move(dictionary)), fSource(std::move(source)), fCases(cases), fChunkRows(chunkRows) {}

GroupedDataset::~GroupedDataset() = default;

std::unique_ptr<CaseCursor> GroupedDataset::NewCursor() const {
  return std::make_unique<GroupCursor>(dictionary(), fSource, fCases, fChunkRows);
}

}  // namespace runtime::data
