// A dataset as if it had no weight.
#pragma once

#include <cstdint>
#include <memory>

#include "runtime/data/dataset.h"

namespace app {

/// The same cases of another dataset, each counting once.
class UnweightedDataset : public runtime::data::Dataset {
 public:
  explicit UnweightedDataset(std::shared_ptr<const runtime::data::Dataset> dataset);

  std::unique_ptr<CaseCursor> NewCursor() const override;
  std::int64_t caseCount() const override { return fDataset->caseCount(); }

 private:
  std::shared_ptr<const runtime::data::Dataset> fDataset;
};

}  // namespace app
