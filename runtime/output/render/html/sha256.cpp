#include "runtime/output/render/html/sha256.h"

#include <bit>
#include <cstddef>

namespace runtime::output {
namespace {

constexpr std::size_t kBlock = 64;  // bytes

// FIPS 180-4, section 4.2.2.
constexpr std::array<std::uint32_t, 64> kConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

std::uint32_t BigEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (const char byte : bytes) value = value << 8U | static_cast<unsigned char>(byte);
  return value;
}

// Section 6.2.2.
void AddBlock(std::string_view block, std::array<std::uint32_t, 8>& hash) {
  std::array<std::uint32_t, 64> schedule{};
  for (std::size_t t = 0; t < 16; ++t) schedule[t] = BigEndian(block.substr(4 * t, 4));
  for (std::size_t t = 16; t < 64; ++t) {
    const std::uint32_t low = schedule[t - 15];
    const std::uint32_t high = schedule[t - 2];
    const std::uint32_t sigma0 = std::rotr(low, 7) ^ std::rotr(low, 18) ^ low >> 3U;
    const std::uint32_t sigma1 = std::rotr(high, 17) ^ std::rotr(high, 19) ^ high >> 10U;
    schedule[t] = sigma1 + schedule[t - 7] + sigma0 + schedule[t - 16];
  }
  auto [a, b, c, d, e, f, g, h] = hash;
  for (std::size_t t = 0; t < 64; ++t) {
    const std::uint32_t sum1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const std::uint32_t first = h + sum1 + ((e & f) ^ (~e & g)) + kConstants[t] + schedule[t];
    const std::uint32_t sum0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const std::uint32_t second = sum0 + ((a & b) ^ (a & c) ^ (b & c));
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + second;
  }
  const std::array<std::uint32_t, 8> added = {a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < hash.size(); ++i) hash[i] += added[i];
}

}  // namespace

std::array<std::uint8_t, 32> Sha256(std::string_view bytes) {
  std::array<std::uint32_t, 8> hash = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                       0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::string_view rest = bytes;
  for (; rest.size() >= kBlock; rest.remove_prefix(kBlock)) AddBlock(rest, hash);

  std::string last(rest);
  last += '\x80';
  while (last.size() % kBlock != kBlock - 8) last += '\0';
  const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
  for (int shift = 56; shift >= 0; shift -= 8) last += static_cast<char>(bits >> shift & 0xFFU);
  for (std::size_t at = 0; at < last.size(); at += kBlock) AddBlock(std::string_view(last).substr(at), hash);

  std::array<std::uint8_t, 32> digest{};
  for (std::size_t i = 0; i < digest.size(); ++i)
    digest[i] = static_cast<std::uint8_t>(hash[i / 4] >> (24 - 8 * (i % 4)) & 0xFFU);
  return digest;
}

std::string Base64(const std::uint8_t* bytes, std::size_t count) {
  static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < count; at += 3) {
    const std::size_t here = count - at < 3 ? count - at : 3;
    std::uint32_t three = 0;
    for (std::size_t i = 0; i < 3; ++i) three = three << 8U | (i < here ? bytes[at + i] : 0U);
    for (std::size_t i = 0; i < 4; ++i) text += i <= here ? kDigits[three >> (18 - 6 * i) & 63U] : '=';
  }
  return text;
}

}  // namespace runtime::output
