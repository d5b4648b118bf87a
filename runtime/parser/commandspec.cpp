#include "host/parser/commandspec.h"

#include "runtime/parser/characters.h"
#include "runtime/parser/numberform.h"

using runtime::parser::UpperCase;

ParamObj::ParamObj() = default;
ParamObj::~ParamObj() = default;
ParamObj::ParamObj(const ParamObj&) = default;
ParamObj::ParamObj(ParamObj&&) noexcept = default;
ParamObj& ParamObj::operator=(const ParamObj&) = default;
ParamObj& ParamObj::operator=(ParamObj&&) noexcept = default;

bool ParamObj::getIntegerValue(int& value) const {
  if (!fHasValue) return false;
  const auto integer = runtime::parser::ReadInteger(fValue);
  if (!integer) return false;
  value = *integer;
  return true;
}

bool ParamObj::getStringAndQual(ParamObj& chosen, const ParamDescriptor* /*descriptor*/,
                                const ParserMessage* /*message*/) const {
  // Held here, because `chosen` may be this very object.
  const std::shared_ptr<const ParamObj> carried = fChosen;
  if (!carried) return false;
  chosen = *carried;
  return true;
}

bool ParamObj::getStringGeneric(std::string& text) const {
  if (!fHasValue) return false;
  text = fValue;
  return true;
}

bool ParamObj::getTokenList(std::vector<TokenInfoObj>& tokens) const {
  if (!fWritten) return false;
  tokens = fTokens;
  return true;
}

SubComObj::SubComObj() = default;
SubComObj::~SubComObj() = default;

ParamObj* SubComObj::getParamObj(const std::string& name) const {
  const std::string upper = UpperCase(name);
  for (const auto& param : fParams) {
    if (UpperCase(param->getParamName()) == upper) return param.get();
  }
  return nullptr;
}

ParamObj* SubComObj::exportParamObj() const { return fExported.get(); }

std::size_t SubComObj::getTokenListSize() const { return fTokens.size(); }

TokenInfoObj* SubComObj::getTokenObj(std::size_t i) const { return i < fTokens.size() ? &fTokens[i] : nullptr; }

CommandSpec::CommandSpec() = default;
CommandSpec::~CommandSpec() = default;

SubComObj* CommandSpec::getSubComObj(const std::string& name) const {
  const std::string upper = UpperCase(name);
  for (const auto& subcommand : fSubcommands) {
    if (UpperCase(subcommand->fName) == upper) return subcommand.get();
  }
  return nullptr;
}
