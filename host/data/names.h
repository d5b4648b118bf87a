// Names of variables and sets.
#pragma once

#include <cstddef>
#include <string>

#include "host/common/api.h"

/// 0 when `name` is a well-formed variable name: 1 to 64 bytes of UTF-8; begins with a letter, @ or #; goes on with
/// letters, digits and . _ $ # @; does not end with a period; is none of ALL AND BY EQ GE GT LE LT NE NOT OR TO WITH.
HOST_API int ValidateMAVOName(const char* name);

/// A variable name as a value.
class HOST_API MavoVarName {
 public:
  explicit MavoVarName(const char* name);
  explicit MavoVarName(const std::string& name);
  ~MavoVarName();
  MavoVarName(const MavoVarName&);
  MavoVarName(MavoVarName&&) noexcept;
  MavoVarName& operator=(const MavoVarName&);
  MavoVarName& operator=(MavoVarName&&) noexcept;

  const std::string& text() const { return fText; }
  const char* c_str() const { return fText.c_str(); }

 private:
  std::string fText;
};

/// Comparison of two UTF-8 texts under full Unicode simple case folding; 0 when equal, else the sign of the order of
/// the folded texts. Bytes that are no UTF-8 compare as they stand.
HOST_API int MAVOMBstricmp_A(const char* a, const char* b);
/// The same over the first `length` bytes of each (fewer when a text ends before).
HOST_API int MAVOMBstrnicmp_A(const char* a, const char* b, std::size_t length);
/// Copies `length` bytes of a text into a fixed-width buffer, without a terminator; what does not fit is left out at a
/// character's end, what remains of the buffer is left as it is.
HOST_API void MAVOMBCopyToFixed_A(char* buffer, std::size_t bufferSize, const char* text, std::size_t length);
