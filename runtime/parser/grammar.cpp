#include "host/parser/grammar.h"

#include <utility>

ParamDescriptor::ParamDescriptor(std::string name, ParamSpec spec, bool /*flag1*/, bool /*flag2*/,
                                 BracketOptions /*brackets*/)
    : fName(std::move(name)), fSpec(spec) {}
ParamDescriptor::~ParamDescriptor() = default;
ParamDescriptor::ParamDescriptor(const ParamDescriptor&) = default;
ParamDescriptor::ParamDescriptor(ParamDescriptor&&) noexcept = default;
ParamDescriptor& ParamDescriptor::operator=(const ParamDescriptor&) = default;
ParamDescriptor& ParamDescriptor::operator=(ParamDescriptor&&) noexcept = default;

void ParamDescriptor::addQualifDesc(const std::string& name) {
  fQualifiers.emplace_back(name, kParamKeyword, false, true, kBracketsDefault);
}
void ParamDescriptor::addQualifDesc(const ParamDescriptor& qualifier) { fQualifiers.push_back(qualifier); }
void ParamDescriptor::addStringValue(const std::string& value) { fStringValues.push_back(value); }

SubComDescriptor::SubComDescriptor(std::string name, SubComSpec /*spec*/, bool /*flag1*/, bool /*flag2*/)
    : fName(std::move(name)) {}
SubComDescriptor::~SubComDescriptor() = default;
SubComDescriptor::SubComDescriptor(const SubComDescriptor&) = default;
SubComDescriptor::SubComDescriptor(SubComDescriptor&&) noexcept = default;
SubComDescriptor& SubComDescriptor::operator=(const SubComDescriptor&) = default;
SubComDescriptor& SubComDescriptor::operator=(SubComDescriptor&&) noexcept = default;

void SubComDescriptor::allowSubComEmpty(bool allowed) { fEmptyAllowed = allowed; }
void SubComDescriptor::setExportParamDesc(ParamSpec spec, bool /*flag*/) { fExportsTokens = spec == kParamExport; }
void SubComDescriptor::addParamDesc(const std::string& name, ParamSpec spec, bool flag1, bool flag2,
                                    BracketOptions brackets) {
  fParams.emplace_back(name, spec, flag1, flag2, brackets);
}
void SubComDescriptor::addParamDesc(const ParamDescriptor& param) { fParams.push_back(param); }

CommandDescriptor::CommandDescriptor(std::string name) : fName(std::move(name)) {}
CommandDescriptor::~CommandDescriptor() = default;

void CommandDescriptor::addSubComDesc(const SubComDescriptor& subcommand) { fSubcommands.push_back(subcommand); }
