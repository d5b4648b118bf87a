// What a dictionary standard could not say by itself.
#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace runtime::data {

struct WrittenFacts {
  /// Properties and notes of our own that were needed, by name, and in how many places.
  std::map<std::string, std::size_t> extensions;
  /// What has no place in the file, by name: facts of the resource and the package in a Table Schema by itself.
  std::map<std::string, std::size_t> leftOut;
};

}  // namespace runtime::data
