// Internal consistency checks of a procedure module.
#pragma once

#include <stdexcept>
#include <string>

#include "host/common/api.h"

/// Thrown by HostCheck. It passes through the module (which catches nothing) to the host, which reports the condition
/// and the source, writes no report and runs no further command.
class HOST_API InternalCheckFailure : public std::logic_error {
 public:
  InternalCheckFailure(const std::string& condition, const std::string& source);
  ~InternalCheckFailure() override;

  const std::string& condition() const { return fCondition; }
  const std::string& source() const { return fSource; }

 private:
  std::string fCondition;
  std::string fSource;
};

/// Throws InternalCheckFailure. `condition` is the text of the condition that did not hold, `source` names the place,
/// such as "backend/codebook/cbkoutput". Neither is null.
[[noreturn]] HOST_API void HostCheckFailed(const char* condition, const char* source);

/// An assertion that is made in every build.
inline void HostCheck(bool holds, const char* condition, const char* source) {
  if (!holds) HostCheckFailed(condition, source);
}
