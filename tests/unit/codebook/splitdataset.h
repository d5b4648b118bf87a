// A dataset some of whose records are the ends of split groups.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "runtime/data/dataset.h"
#include "runtime/data/store/numericpart.h"

namespace codebook::test {

/// Hands out another dataset's rows one at a time.
class SplitCursor : public CaseCursor {
 public:
  SplitCursor(std::unique_ptr<CaseCursor> rows, const std::vector<bool>& ends) : fRows(std::move(rows)), fEnds(ends) {}
  ~SplitCursor() override { Farewell(); }

  ColumnView Column(int variable) const override {
    ColumnView view = fRows->Column(variable);
    const auto offset = static_cast<std::size_t>(fRows->row - fRows->chunkBegin);
    view.cells = static_cast<const char*>(view.cells) + offset * runtime::data::BytesPerCell(view.storage);
    return view;
  }
  const double* Weights() const override {
    const double* weights = fRows->Weights();
    return weights == nullptr ? nullptr : weights + (fRows->row - fRows->chunkBegin);
  }

 protected:
  bool LoadNextChunk() override {
    if (!fRows->Next()) return false;
    chunkBegin = fRows->row;
    chunkEnd = chunkBegin + 1;
    atSplitGroupEnd = fEnds[static_cast<std::size_t>(chunkBegin)];
    return true;
  }

 private:
  std::unique_ptr<CaseCursor> fRows;
  const std::vector<bool>& fEnds;
};

class SplitDataset : public runtime::data::Dataset {
 public:
  /// `ends`: one flag a row, true where the record is the end of a group.
  SplitDataset(std::shared_ptr<const runtime::data::Dataset> rows, std::vector<bool> ends)
      : Dataset(rows->dictionary()), fRows(std::move(rows)), fEnds(std::move(ends)) {}

  std::unique_ptr<CaseCursor> NewCursor() const override {
    return std::make_unique<SplitCursor>(fRows->NewCursor(), fEnds);
  }
  std::int64_t caseCount() const override { return fRows->caseCount(); }

 private:
  std::shared_ptr<const runtime::data::Dataset> fRows;
  std::vector<bool> fEnds;
};

}  // namespace codebook::test
