#include "runtime/data/dictionary/numberwords.h"

#include <charconv>
#include <cmath>

namespace runtime::data {

std::string NumberWords(double number) {
  if (number == 0) return "0";
  const bool plain = std::fabs(number) >= 1e-5 && std::fabs(number) < 1e17;
  char buffer[64];
  char* const end = plain ? std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed).ptr
                          : std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
  return {buffer, end};
}

}  // namespace runtime::data
