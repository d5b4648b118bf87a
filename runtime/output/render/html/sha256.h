// SHA-256 (FIPS 180-4), by which a page's content security policy names its script and its style.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace runtime::output {

std::array<std::uint8_t, 32> Sha256(std::string_view bytes);

/// Base 64 with padding (RFC 4648, section 4).
std::string Base64(const std::uint8_t* bytes, std::size_t count);

}  // namespace runtime::output
