// What a descriptor says beyond what is understood.
#pragma once

#include <initializer_list>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// Adds the members of an object that are none of `understood`.
void KeepExtras(const JsonPlace& object, std::initializer_list<std::string_view> understood,
                std::vector<ExtraProperty>& extras);

/// Adds what a `codebook` property keeps of a DDI-Codebook: the members of its `ddi`, by the names that they have
/// there.
void KeepDdiExtras(const JsonPlace& codebook, std::vector<ExtraProperty>& extras);

}  // namespace runtime::data
