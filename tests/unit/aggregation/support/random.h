// Random choices of a test, the same for the same seed everywhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

struct Random {
  std::mt19937_64 engine;

  explicit Random(std::uint64_t seed) : engine(seed) {}
  /// From 0 to below `bound`.
  std::size_t Below(std::size_t bound) { return static_cast<std::size_t>(engine() % bound); }
  bool OneIn(std::size_t n) { return Below(n) == 0; }
  double Unit() { return static_cast<double>(engine() >> 11) * 0x1p-53; }
  template <class T>
  const T& Of(const std::vector<T>& choices) {
    return choices[Below(choices.size())];
  }
};
