// The characters of a command text: decoding, and what each of them is to the tokens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace runtime::parser {

/// Stands for a byte sequence that is no character.
inline constexpr std::int32_t kIllFormed = -1;

/// The character at `offset`, which is moved past it; kIllFormed for a sequence that is not UTF-8 (moved past its
/// longest part that could have begun a character, at least one byte). REQUIRES: offset < text.size().
std::int32_t NextCharacter(std::string_view text, std::size_t& offset);

/// The bytes of the line end at `offset`: 1 for LF or CR, 2 for CR LF, 0 where there is none.
std::size_t LineEndLength(std::string_view text, std::size_t offset);

/// White space that ends no line; also the no-break and wide blanks that come with pasted text.
bool IsBlank(std::int32_t character);

/// C0, DEL and C1 controls that are neither blank nor line end.
bool IsControl(std::int32_t character);

/// [ ] ( ) = /
bool IsSpecial(std::int32_t character);

inline bool IsQuote(std::int32_t character) { return character == '"' || character == '\''; }

/// Simple upper case mapping, character by character; ill-formed bytes stay.
std::string UpperCase(std::string_view text);

}  // namespace runtime::parser
