#include "host/data/variableset.h"

#include <utility>

VariableSetImpl::VariableSetImpl(std::string name) : fName(std::move(name)) {}
VariableSetImpl::~VariableSetImpl() = default;
VariableSetImpl::VariableSetImpl(const VariableSetImpl&) = default;
VariableSetImpl::VariableSetImpl(VariableSetImpl&&) noexcept = default;
VariableSetImpl& VariableSetImpl::operator=(const VariableSetImpl&) = default;
VariableSetImpl& VariableSetImpl::operator=(VariableSetImpl&&) noexcept = default;

VariableSet::VariableSet() = default;
VariableSet::~VariableSet() = default;
VariableSet::VariableSet(const VariableSet&) = default;
VariableSet::VariableSet(VariableSet&&) noexcept = default;
VariableSet& VariableSet::operator=(const VariableSet&) = default;
VariableSet& VariableSet::operator=(VariableSet&&) noexcept = default;

void VariableSet::SetName(std::string name) { fName = std::move(name); }
void VariableSet::SetLabel(std::string label) { fLabel = std::move(label); }
void VariableSet::SetVariableNames(std::vector<std::string> names) { fVariableNames = std::move(names); }
void VariableSet::SetValue(std::string value) { fValue = std::move(value); }
