#include "runtime/data/csv/vectortargets.h"

#include <cstdint>

#include <hwy/highway.h>

namespace runtime::data {

void WithEachVectorTarget(const std::function<void(const char*)>& work) {
  const auto choose = [](std::int64_t targets) {
    hwy::SetSupportedTargetsForTest(targets);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  };
  for (std::int64_t left = hwy::SupportedTargets() & HWY_TARGETS; left != 0; left &= left - 1) {
    const std::int64_t target = left & -left;
    choose(target);
    work(hwy::TargetName(target));
  }
  choose(0);
}

}  // namespace runtime::data
