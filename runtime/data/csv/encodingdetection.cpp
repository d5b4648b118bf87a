#include "runtime/data/csv/encodingdetection.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include <unicode/ucsdet.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/utf8walk.h"

namespace runtime::data {

namespace {

constexpr std::size_t kWideLookedAt = std::size_t{64} << 10;
constexpr std::size_t kMostLookedAt = std::size_t{64} << 20;  // for bytes beyond ASCII
constexpr std::size_t kSampleBytes = std::size_t{64} << 10;   // of lines that hold some
constexpr std::size_t kEnoughForStatistics = 24;              // bytes beyond ASCII
// Of 100, as the detector rates short cells in many languages: what is right has 57 and more among languages in Latin
// letters, from 19 on in other scripts, where little else is possible; what is wrong 29 and 12.
constexpr std::int32_t kLikely = 50;
constexpr std::int32_t kLikelyOfOtherScripts = 15;
constexpr const char* kWestern = "windows-1252";

bool IsBeyondAscii(char byte) { return (static_cast<unsigned char>(byte) & 0x80) != 0; }

/// The lines that hold bytes beyond ASCII: the others say nothing of the encoding.
std::string SampleOf(std::string_view bytes) {
  std::string sample;
  bytes = bytes.substr(0, kMostLookedAt);
  for (std::size_t begin = 0; begin < bytes.size() && sample.size() < kSampleBytes;) {
    const std::size_t end = std::min(bytes.find('\n', begin), bytes.size() - 1) + 1;
    const std::string_view line = bytes.substr(begin, std::min(end - begin, kSampleBytes));
    if (std::any_of(line.begin(), line.end(), IsBeyondAscii)) sample += line;
    begin = end;
  }
  return sample;
}

bool IsMostlyUtf8(std::string_view sample) {
  std::size_t valid = 0;
  std::size_t invalid = 0;
  for (std::size_t at = 0; at < sample.size();) {
    const Utf8Step step = StepUtf8(sample, at);
    if (IsBeyondAscii(sample[at])) ++(step.valid ? valid : invalid);
    at += step.valid ? step.length : 1;
  }
  return valid >= invalid;
}

bool FitsWestern(std::string_view sample) {
  constexpr std::string_view kUndefined = "\x81\x8d\x8f\x90\x9d";
  return sample.find_first_of(kUndefined) == std::string_view::npos;
}

/// Whether most letters are beyond ASCII, as in Cyrillic, Greek or Chinese text.
bool IsOtherScript(std::string_view sample) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  return std::count_if(sample.begin(), sample.end(), IsBeyondAscii) >
         std::count_if(sample.begin(), sample.end(), isLetter);
}

/// Neither what is known otherwise nor what is seen everywhere: the detector takes much for Hebrew or for EBCDIC.
bool IsCandidate(std::string_view name) {
  for (const std::string_view family : {"UTF", "ISO-2022", "ISO-8859-8", "IBM"})
    if (name.substr(0, family.size()) == family) return false;
  return true;
}

/// What the statistics of languages say, empty when they are not sure.
std::string EncodingByStatistics(std::string_view sample) {
  UErrorCode error = U_ZERO_ERROR;
  const std::unique_ptr<UCharsetDetector, decltype(&ucsdet_close)> detector(ucsdet_open(&error), &ucsdet_close);
  if (U_FAILURE(error)) return {};
  ucsdet_setText(detector.get(), sample.data(), static_cast<std::int32_t>(sample.size()), &error);
  std::int32_t count = 0;
  const UCharsetMatch** const matches = ucsdet_detectAll(detector.get(), &count, &error);
  if (U_FAILURE(error)) return {};
  for (std::int32_t i = 0; i < count; ++i) {  // the most likely one first
    const std::string name = ucsdet_getName(matches[i], &error);
    const std::int32_t confidence = ucsdet_getConfidence(matches[i], &error);
    if (U_FAILURE(error)) return {};
    if (!IsCandidate(name)) continue;
    if (confidence < (IsOtherScript(sample) ? kLikelyOfOtherScripts : kLikely)) return {};
    return name == "ISO-8859-1" ? kWestern : name;
  }
  return {};
}

}  // namespace

std::optional<std::string> DetectWideEncoding(std::string_view bytes) {
  bytes = bytes.substr(0, kWideLookedAt);
  constexpr std::size_t kFewestZeros = 40;  // one in so many units
  const auto isLineEnd = [](char byte) { return byte == '\n' || byte == '\r'; };
  std::array<std::size_t, 2> zeros{};     // in the first and second half of the units
  std::array<std::size_t, 2> lineEnds{};  // in that half, with a zero in the other one
  std::size_t otherLineEnds = 0;          // as bytes of other characters, or of text in bytes
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    for (const std::size_t half : {std::size_t{0}, std::size_t{1}}) {
      const char other = bytes[at + 1 - half];
      if (bytes[at + half] == '\0') {
        if (other == '\0') return std::nullopt;
        ++zeros[half];
      } else if (isLineEnd(bytes[at + half])) {
        ++(other == '\0' ? lineEnds[half] : otherLineEnds);
      }
    }
  }
  const auto is = [&](std::size_t half) {
    return zeros[half] == 0 && lineEnds[half] > 10 * otherLineEnds && zeros[1 - half] * kFewestZeros > bytes.size() / 2;
  };
  if (is(0)) return "UTF-16LE";
  if (is(1)) return "UTF-16BE";
  return std::nullopt;
}

std::optional<DetectedEncoding> DetectEncoding(std::string_view bytes) {
  const std::string sample = SampleOf(bytes);
  if (IsMostlyUtf8(sample)) return std::nullopt;
  DetectedEncoding detected;
  detected.otherBytes = static_cast<std::size_t>(std::count_if(sample.begin(), sample.end(), IsBeyondAscii));
  if (detected.otherBytes >= kEnoughForStatistics) detected.name = EncodingByStatistics(sample);
  if (detected.name.empty() || !IsKnownEncoding(detected.name)) detected.name = FitsWestern(sample) ? kWestern : "";
  if (detected.name.empty()) return std::nullopt;
  return detected;
}

}  // namespace runtime::data
