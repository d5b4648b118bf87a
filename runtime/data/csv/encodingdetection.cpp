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
constexpr std::int32_t kConfident = 50;                       // of 100
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

/// What the statistics of languages say, empty when they are not sure.
std::string EncodingByStatistics(std::string_view sample) {
  UErrorCode error = U_ZERO_ERROR;
  const std::unique_ptr<UCharsetDetector, decltype(&ucsdet_close)> detector(ucsdet_open(&error), &ucsdet_close);
  if (U_FAILURE(error)) return {};
  ucsdet_setText(detector.get(), sample.data(), static_cast<std::int32_t>(sample.size()), &error);
  const UCharsetMatch* const match = ucsdet_detect(detector.get(), &error);
  if (U_FAILURE(error) || match == nullptr) return {};
  const std::int32_t confidence = ucsdet_getConfidence(match, &error);
  const char* const name = ucsdet_getName(match, &error);
  if (U_FAILURE(error) || confidence < kConfident) return {};
  const std::string_view found = name;
  if (found == "ISO-8859-1") return kWestern;
  if (found.substr(0, 3) == "UTF" || found.substr(0, 8) == "ISO-2022") return {};
  return std::string(found);
}

}  // namespace

std::optional<std::string> DetectWideEncoding(std::string_view bytes) {
  bytes = bytes.substr(0, kWideLookedAt);
  std::array<std::size_t, 2> zeros{};
  std::array<std::size_t, 2> separators{};  // by the half in which their own byte stands
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    for (const std::size_t half : {std::size_t{0}, std::size_t{1}}) {
      if (bytes[at + half] != '\0') continue;
      ++zeros[half];
      const char other = bytes[at + 1 - half];
      if (other == '\0') return std::nullopt;
      if (other == '\n' || other == '\r' || other == ',' || other == ';' || other == '\t') ++separators[1 - half];
    }
  }
  if (zeros[0] == 0 && separators[0] > 0) return "UTF-16LE";
  if (zeros[1] == 0 && separators[1] > 0) return "UTF-16BE";
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
