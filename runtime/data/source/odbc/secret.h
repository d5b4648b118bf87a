// Texts that nobody else may read.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace runtime::data {

/// A text of a bounded length whose memory is overwritten when it goes, and which leaves no copies while it grows.
template <typename Unit>
class Secret {
 public:
  static constexpr std::size_t kLongest = 1 << 16;

  Secret() { fText.reserve(kLongest); }
  ~Secret() { explicit_bzero(fText.data(), fText.capacity() * sizeof(Unit)); }
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;

  /// The text is to be written here; never beyond kLongest.
  std::basic_string<Unit>& text() { return fText; }
  const std::basic_string<Unit>& text() const { return fText; }

 private:
  std::basic_string<Unit> fText;
};

}  // namespace runtime::data
