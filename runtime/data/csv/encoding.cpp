#include "runtime/data/csv/encoding.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include "runtime/data/csv/utf8validity.h"
#include "runtime/data/utf8walk.h"

namespace runtime::data {

namespace {

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

constexpr std::size_t kUnitsAtOnce = std::size_t{32} * 1024;

Converter OpenConverter(const std::string& encoding) {
  UErrorCode error = U_ZERO_ERROR;
  Converter converter(ucnv_open(encoding.c_str(), &error), &ucnv_close);
  if (U_FAILURE(error)) converter.reset();
  return converter;
}

/// Writes U+FFFD and counts, whatever is wrong with the bytes.
void CountAndReplace(const void* context, UConverterToUnicodeArgs* arguments, const char* /*bytes*/,
                     std::int32_t /*length*/, UConverterCallbackReason reason, UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  ++*static_cast<std::int64_t*>(const_cast<void*>(context));
  *error = U_ZERO_ERROR;
  const UChar replacement = 0xFFFD;
  ucnv_cbToUWriteUChars(arguments, &replacement, 1, 0, error);
}

std::int64_t LineOf(std::string_view text, std::size_t at) {
  std::int64_t line = 1;
  for (std::size_t i = 0; i < at; ++i)
    if (text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'))) ++line;
  return line;
}

void AppendUnits(std::string& text, const UChar* units, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    char32_t character = units[i];
    if (U16_IS_LEAD(units[i]) && i + 1 < count && U16_IS_TRAIL(units[i + 1])) {
      character = static_cast<char32_t>(U16_GET_SUPPLEMENTARY(units[i], units[i + 1]));
      ++i;
    } else if (U16_IS_SURROGATE(units[i])) {
      character = 0xFFFD;
    }
    AppendUtf8(text, character);
  }
}

/// A character after the other: for texts with something wrong in them.
std::size_t PlaceOfInvalidUtf8(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080U;
  std::size_t at = 0;
  while (at < text.size()) {
    while (text.size() - at >= 8) {
      std::uint64_t word = 0;
      std::memcpy(&word, text.data() + at, 8);
      if ((word & kHighBits) != 0) break;
      at += 8;
    }
    if (at == text.size()) break;
    const Utf8Step step = StepUtf8(text, at);
    if (!step.valid) return at;
    at += step.length;
  }
  return std::string_view::npos;
}

}  // namespace

std::size_t FirstInvalidUtf8(std::string_view text) {
  return IsValidUtf8(text) ? std::string_view::npos : PlaceOfInvalidUtf8(text);
}

std::string RepairedUtf8(std::string_view text, Replacements& replaced) {
  std::string repaired;
  repaired.reserve(text.size() + text.size() / 8);
  for (std::size_t done = 0; done < text.size();) {
    const std::size_t bad = PlaceOfInvalidUtf8(text.substr(done));
    if (bad == std::string_view::npos) {
      repaired.append(text.substr(done));
      break;
    }
    repaired.append(text.substr(done, bad));
    AppendUtf8(repaired, 0xFFFD);
    if (replaced.count++ == 0) replaced.firstLine = LineOf(text, done + bad);
    done += bad + 1;
  }
  return repaired;
}

bool IsUtf8Name(const std::string& encoding) { return ucnv_compareNames(encoding.c_str(), "utf8") == 0; }

bool IsKnownEncoding(const std::string& encoding) { return !encoding.empty() && OpenConverter(encoding) != nullptr; }

std::string ConvertedToUtf8(std::string_view bytes, const std::string& encoding, Replacements& replaced) {
  const Converter converter = OpenConverter(encoding);
  if (!converter) throw std::invalid_argument("no converter for " + encoding);
  UErrorCode error = U_ZERO_ERROR;
  std::int64_t count = 0;
  ucnv_setToUCallBack(converter.get(), CountAndReplace, &count, nullptr, nullptr, &error);

  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  std::vector<UChar> units(kUnitsAtOnce);
  const char* source = bytes.data();
  const char* const end = source + bytes.size();
  std::size_t kept = 0;  // a lead surrogate whose trail comes with the next units
  bool more = true;
  while (more) {
    UChar* target = units.data() + kept;
    error = U_ZERO_ERROR;
    const std::int64_t before = count;
    ucnv_toUnicode(converter.get(), &target, units.data() + units.size(), &source, end, nullptr, true, &error);
    more = error == U_BUFFER_OVERFLOW_ERROR;
    if (!more && U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
    auto filled = static_cast<std::size_t>(target - units.data());
    kept = more && filled > 0 && U16_IS_LEAD(units[filled - 1]) ? 1 : 0;
    AppendUnits(text, units.data(), filled - kept);
    if (before == 0 && count > 0) replaced.firstLine = LineOf(text, std::min(text.find("\xEF\xBF\xBD"), text.size()));
    if (kept == 1) units[0] = units[filled - 1];
  }
  replaced.count += count;
  return text;
}

std::optional<ByteOrderMark> FindByteOrderMark(std::string_view bytes) {
  using namespace std::string_view_literals;
  struct Mark {
    std::string_view bytes;
    const char* encoding;
  };
  // The longer of two marks with the same beginning goes first.
  constexpr Mark kMarks[] = {{"\xEF\xBB\xBF"sv, "UTF-8"},
                             {"\xFF\xFE\0\0"sv, "UTF-32LE"},
                             {"\0\0\xFE\xFF"sv, "UTF-32BE"},
                             {"\xFF\xFE"sv, "UTF-16LE"},
                             {"\xFE\xFF"sv, "UTF-16BE"}};
  for (const Mark& mark : kMarks)
    if (bytes.substr(0, mark.bytes.size()) == mark.bytes) return ByteOrderMark{mark.encoding, mark.bytes.size()};
  return std::nullopt;
}

}  // namespace runtime::data
