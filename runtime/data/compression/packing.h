// Files that are compressed: gzip and Zstandard.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace runtime::data {

enum class Packing { None, Gzip, Zstandard };

/// By the first bytes of a file.
Packing PackingOf(std::string_view bytes);

/// A path without the ending .gz or .zst (in either case), which says nothing of what is in the file.
std::string WithoutPackedEnding(const std::string& path);

/// The unpacked bytes of a compressed file, in their order. Members and frames that follow one another are one text.
class Unpacker {
 public:
  virtual ~Unpacker();
  /// Fills the buffer as far as there are bytes; fewer than `size` at the end only. Throws DataError for what is
  /// damaged or cut off, and for what unpacks beyond all measure: to more than kMostBytes and more than kMostTimes
  /// times its own size.
  std::size_t Read(char* buffer, std::size_t size);

  static constexpr std::uint64_t kMostBytes = std::uint64_t{1} << 30;
  static constexpr std::uint64_t kMostTimes = 500;

 protected:
  /// `name` is what messages name the file.
  Unpacker(std::string_view packed, std::string name);
  /// As Read; 0 at the end.
  virtual std::size_t Unpack(char* buffer, std::size_t size) = 0;
  [[noreturn]] void FailAt(std::size_t at, const std::string& problem) const;
  [[noreturn]] void FailAtEnd() const;

  const std::string_view fPacked;

 private:
  std::string fName;
  std::uint64_t fUnpacked = 0;
};

/// `packed` must outlive the unpacker. REQUIRES: not None.
std::unique_ptr<Unpacker> NewUnpacker(Packing packing, std::string_view packed, const std::string& name);

}  // namespace runtime::data
