#include "runtime/data/typing/columntyper.h"

#include <utility>

#include "runtime/data/typing/inferredcolumn.h"
#include "runtime/data/typing/textcolumn.h"
#include "runtime/data/typing/valuecolumn.h"

namespace runtime::data {

ColumnPiece::~ColumnPiece() = default;
ColumnTyper::~ColumnTyper() = default;

void ColumnTyper::LookAt(const CellBlock&, std::size_t) {}

std::unique_ptr<ColumnTyper> MakeColumnTyper(const ColumnPlan& plan, std::string header) {
  switch (plan.dialect.type) {
    case FieldType::String:
      return std::make_unique<TextColumn>(std::move(header), false);
    case FieldType::Inferred:
      return std::make_unique<InferredColumn>(plan, std::move(header));
    default:
      return std::make_unique<ValueColumn>(plan, std::move(header));
  }
}

std::unique_ptr<ColumnTyper> MakeTextTyper(std::string header) {
  return std::make_unique<TextColumn>(std::move(header), true);
}

}  // namespace runtime::data
