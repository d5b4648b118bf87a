// Members of multiple response sets that the data do not have.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/checking/readingfacts.h"

namespace runtime::data {

struct UnknownSetMember {
  std::string set;
  std::string member;
};

/// In the order of the dictionary. REQUIRES: there is one.
std::vector<UnknownSetMember> UnknownSetMembers(const ReadingFacts& reading);

/// The sets without these members; a set of which nothing is left is left out.
std::vector<SetDescriptor> SetsOfKnownMembers(const ReadingFacts& reading);

}  // namespace runtime::data
