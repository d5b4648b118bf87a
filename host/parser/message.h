// The message channel of the command that is being run.
#pragma once

#include <string>

#include "host/common/api.h"

/// Binds to the calling thread's session. Texts carry the placeholders ^1 to ^5, filled in one pass from the arguments
/// (null where there is none); a placeholder inside an argument stays as it is.
class HOST_API ParserMessage {
 public:
  ParserMessage();
  ~ParserMessage();
  ParserMessage(const ParserMessage&) = delete;
  ParserMessage& operator=(const ParserMessage&) = delete;

  void GenericError(const char* text, const char* p1, const char* p2, const char* p3, const char* p4, const char* p5);
  void GenericWarning(const char* text, const char* p1, const char* p2, const char* p3, const char* p4, const char* p5);
  /// "Keyword ^1 of subcommand ^2 cannot be combined with any other keyword."
  void ParamExclAnyOther(const char* keyword, const char* subcommand);
  /// "Keyword ^1 is misplaced in the variable list." The second and third argument may be null and are not shown.
  void KeywordImproperVarList(const char* keyword, const char* p2, const char* p3);
};
