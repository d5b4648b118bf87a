#include "runtime/data/dataset.h"

namespace runtime::data {

Dataset::~Dataset() = default;

}  // namespace runtime::data
