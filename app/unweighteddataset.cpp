#include "app/unweighteddataset.h"

#include <utility>

namespace app {
namespace {

using runtime::data::Dataset;
using runtime::data::Dictionary;

Dictionary WithoutWeight(Dictionary dictionary) {
  dictionary.weight = -1;
  return dictionary;
}

/// Goes through the chunks of another cursor, which nobody else listens to.
class UnweightedCursor : public CaseCursor {
 public:
  explicit UnweightedCursor(std::unique_ptr<CaseCursor> cursor) : fCursor(std::move(cursor)) {}
  ~UnweightedCursor() override { Farewell(); }

  ColumnView Column(int variable) const override { return fCursor->Column(variable); }
  const double* Weights() const override { return nullptr; }

 protected:
  bool LoadNextChunk() override {
    fCursor->row = fCursor->chunkEnd - 1;  // the next step is to the next chunk
    if (!fCursor->Next()) return false;
    chunkBegin = fCursor->chunkBegin;
    chunkEnd = fCursor->chunkEnd;
    return true;
  }

 private:
  std::unique_ptr<CaseCursor> fCursor;
};

}  // namespace

UnweightedDataset::UnweightedDataset(std::shared_ptr<const Dataset> dataset)
    : Dataset(WithoutWeight(dataset->dictionary())), fDataset(std::move(dataset)) {}

std::unique_ptr<CaseCursor> UnweightedDataset::NewCursor() const {
  return std::make_unique<UnweightedCursor>(fDataset->NewCursor());
}

}  // namespace app
