#include "app/memorysize.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "runtime/machine/spillfile.h"

namespace app {

namespace {

constexpr double kMost = 1152921504606846976.0;  // 2^60

constexpr std::array<std::pair<std::string_view, double>, 10> kUnits = {{{"", 1.0},
                                                                         {"b", 1.0},
                                                                         {"kb", 1e3},
                                                                         {"mb", 1e6},
                                                                         {"gb", 1e9},
                                                                         {"tb", 1e12},
                                                                         {"kib", 1024.0},
                                                                         {"mib", 1048576.0},
                                                                         {"gib", 1073741824.0},
                                                                         {"tib", 1099511627776.0}}};

}  // namespace

std::optional<std::int64_t> ReadMemorySize(std::string_view text) {
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (error != std::errc{} || std::isnan(number) || number < 0.0) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);

  std::string unit;
  for (const char letter : text) unit += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
  for (const auto& [name, bytes] : kUnits) {
    if (unit != name) continue;
    const double size = std::floor(number * bytes);
    if (size > kMost) return std::nullopt;
    return static_cast<std::int64_t>(size);
  }
  return std::nullopt;
}

std::int64_t MemoryForPercentiles(std::int64_t columnBytes) {
  constexpr std::int64_t kAlways = std::int64_t{30} * 1000 * 1000;
  return runtime::machine::CanOpenNamelessFile() ? columnBytes / 5 + kAlways : 0;
}

}  // namespace app
