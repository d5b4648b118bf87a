#include "host/common/check.h"

InternalCheckFailure::InternalCheckFailure(const std::string& condition, const std::string& source)
    : std::logic_error(source + ": " + condition), fCondition(condition), fSource(source) {}

InternalCheckFailure::~InternalCheckFailure() = default;

void HostCheckFailed(const char* condition, const char* source) { throw InternalCheckFailure(condition, source); }
