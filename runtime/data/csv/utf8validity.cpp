// The method is that of John Keiser and Daniel Lemire, "Validating UTF-8 In Less Than One Instruction Per Byte",
// Software: Practice and Experience 51 (2021): three tables, by the halves of two neighbouring bytes, hold the errors
// that these halves allow; an error that all three allow is there. Whether third and fourth bytes stand where they must
// is seen from the bytes two and three places before.
#include "runtime/data/csv/utf8validity.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "runtime/data/utf8walk.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "runtime/data/csv/utf8validity.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace runtime::data {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

/// For a machine without vectors.
bool IsValid(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  for (std::size_t at = 0; at < size;) {
    const Utf8Step step = StepUtf8(text, at);
    if (!step.valid) return false;
    at += step.length;
  }
  return true;
}

#else

constexpr std::uint8_t kTooShort = 1 << 0;      // a lead byte before no continuation
constexpr std::uint8_t kTooLong = 1 << 1;       // a continuation behind ASCII
constexpr std::uint8_t kOverlong3 = 1 << 2;     // E0 before 80 to 9F
constexpr std::uint8_t kTooLarge = 1 << 3;      // F4 before 90 to BF, F5 and above
constexpr std::uint8_t kSurrogate = 1 << 4;     // ED before A0 to BF
constexpr std::uint8_t kOverlong2 = 1 << 5;     // C0, C1
constexpr std::uint8_t kTooLarge1000 = 1 << 6;  // F5 and above before 80 to 8F
constexpr std::uint8_t kOverlong4 = 1 << 6;     // F0 before 80 to 8F
constexpr std::uint8_t kTwoContinuations = 1 << 7;
constexpr std::uint8_t kAnyLowHalf = kTooShort | kTooLong | kTwoContinuations;

alignas(16) constexpr std::uint8_t kByHighHalfOfFirst[16] = {kTooLong,
                                                             kTooLong,
                                                             kTooLong,
                                                             kTooLong,
                                                             kTooLong,
                                                             kTooLong,
                                                             kTooLong,
                                                             kTooLong,
                                                             kTwoContinuations,
                                                             kTwoContinuations,
                                                             kTwoContinuations,
                                                             kTwoContinuations,
                                                             kTooShort | kOverlong2,
                                                             kTooShort,
                                                             kTooShort | kOverlong3 | kSurrogate,
                                                             kTooShort | kTooLarge | kTooLarge1000 | kOverlong4};

constexpr std::uint8_t kFiveAndAbove = kAnyLowHalf | kTooLarge | kTooLarge1000;

alignas(16) constexpr std::uint8_t kByLowHalfOfFirst[16] = {kAnyLowHalf | kOverlong3 | kOverlong2 | kOverlong4,
                                                            kAnyLowHalf | kOverlong2,
                                                            kAnyLowHalf,
                                                            kAnyLowHalf,
                                                            kAnyLowHalf | kTooLarge,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove | kSurrogate,
                                                            kFiveAndAbove,
                                                            kFiveAndAbove};

constexpr std::uint8_t kAnyContinuation = kTooLong | kOverlong2 | kTwoContinuations;

alignas(16) constexpr std::uint8_t kByHighHalfOfSecond[16] = {
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kAnyContinuation | kOverlong3 | kTooLarge1000 | kOverlong4,
    kAnyContinuation | kOverlong3 | kTooLarge,
    kAnyContinuation | kSurrogate | kTooLarge,
    kAnyContinuation | kSurrogate | kTooLarge,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort};

/// Whether no byte from `text` on to `size` is wrong, given the three before `text`. Checks whole vectors of 64 bytes
/// or less. REQUIRES: size is a multiple of 64, and three bytes before `text`.
bool HasNoError(const std::uint8_t* HWY_RESTRICT text, std::size_t size) {
  const hn::CappedTag<std::uint8_t, 64> d;
  const hn::Repartition<std::uint16_t, decltype(d)> pairs;
  const std::size_t lanes = hn::Lanes(d);
  const auto byHighHalfOfFirst = hn::LoadDup128(d, kByHighHalfOfFirst);
  const auto byLowHalfOfFirst = hn::LoadDup128(d, kByLowHalfOfFirst);
  const auto byHighHalfOfSecond = hn::LoadDup128(d, kByHighHalfOfSecond);
  const auto lowHalf = hn::Set(d, std::uint8_t{0x0F});
  const auto highBit = hn::Set(d, std::uint8_t{0x80});
  // A byte of so much or more, less this, has its high bit set.
  const auto leadOfThree = hn::Set(d, std::uint8_t{0xE0 - 0x80});
  const auto leadOfFour = hn::Set(d, std::uint8_t{0xF0 - 0x80});
  const auto highHalf = [pairs, d, lowHalf](auto bytes) HWY_ATTR {
    return hn::And(hn::BitCast(d, hn::ShiftRight<4>(hn::BitCast(pairs, bytes))), lowHalf);
  };
  auto errors = hn::Zero(d);
  for (std::size_t at = 0; at < size; at += lanes) {
    const auto bytes = hn::LoadU(d, text + at);
    const auto threeBefore = hn::LoadU(d, text + at - 3);
    if (hn::AllTrue(d, hn::Lt(hn::Or(bytes, threeBefore), highBit))) continue;
    const auto twoBefore = hn::LoadU(d, text + at - 2);
    const auto oneBefore = hn::LoadU(d, text + at - 1);
    const auto found = hn::And(hn::And(hn::TableLookupBytes(byHighHalfOfFirst, highHalf(oneBefore)),
                                       hn::TableLookupBytes(byLowHalfOfFirst, hn::And(oneBefore, lowHalf))),
                               hn::TableLookupBytes(byHighHalfOfSecond, highHalf(bytes)));
    const auto mustContinue =
        hn::And(hn::Or(hn::SaturatedSub(twoBefore, leadOfThree), hn::SaturatedSub(threeBefore, leadOfFour)), highBit);
    errors = hn::Or(errors, hn::Xor(mustContinue, found));
  }
  return hn::AllTrue(d, hn::Eq(errors, hn::Zero(d)));
}

bool IsValid(const std::uint8_t* bytes, std::size_t size) {
  constexpr std::size_t kWord = 64;
  constexpr std::size_t kBefore = 3;
  // The first word has nothing before it and the last one zeros behind it, before which no character may be unfinished.
  std::array<std::uint8_t, kBefore + kWord> edge{};
  std::copy(bytes, bytes + std::min(size, kWord), edge.data() + kBefore);
  if (!HasNoError(edge.data() + kBefore, kWord)) return false;
  if (size < kWord) return true;
  const std::size_t whole = size / kWord * kWord;
  if (!HasNoError(bytes + kWord, whole - kWord)) return false;
  edge = {};
  std::copy(bytes + whole - kBefore, bytes + size, edge.data());
  return HasNoError(edge.data() + kBefore, kWord);
}

#endif  // of a machine with vectors

}  // namespace HWY_NAMESPACE
}  // namespace runtime::data
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace runtime::data {

HWY_EXPORT(IsValid);

bool IsValidUtf8(std::string_view text) {
  return HWY_DYNAMIC_DISPATCH(IsValid)(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

}  // namespace runtime::data

#endif
