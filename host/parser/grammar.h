// The grammar that a module declares for its command.
#pragma once

#include <string>
#include <vector>

#include "host/common/api.h"

enum SubComSpec : int { kSubComPlain = 1 };

enum ParamSpec : int {
  kParamKeyword = 1,    // a bare keyword; its presence is all there is to read
  kParamExport = 2,     // as exported parameter: the subcommand's raw tokens
  kParamString = 3,     // KEY=text or KEY(text); one of the declared string values when there are any
  kParamInteger = 9,    // KEY=n or KEY(n)
  kParamQualified = 27  // KEY=QUALIFIER, one of the declared qualifiers, which may carry a value of its own
};

enum BracketOptions : int { kBracketsDefault = 0 };

/// A keyword of a subcommand, or a qualifier that takes a value of its own. The two flags are kept, not interpreted.
class HOST_API ParamDescriptor {
 public:
  ParamDescriptor(std::string name, ParamSpec spec, bool flag1, bool flag2, BracketOptions brackets);
  ~ParamDescriptor();
  ParamDescriptor(const ParamDescriptor&);
  ParamDescriptor(ParamDescriptor&&) noexcept;
  ParamDescriptor& operator=(const ParamDescriptor&);
  ParamDescriptor& operator=(ParamDescriptor&&) noexcept;

  /// Declares a qualifier without a value of its own.
  void addQualifDesc(const std::string& name);
  /// Declares a qualifier that takes a value (copied).
  void addQualifDesc(const ParamDescriptor& qualifier);
  /// Declares an allowed string value.
  void addStringValue(const std::string& value);

  const std::string& name() const { return fName; }
  ParamSpec spec() const { return fSpec; }
  const std::vector<ParamDescriptor>& qualifiers() const { return fQualifiers; }
  const std::vector<std::string>& stringValues() const { return fStringValues; }

 private:
  std::string fName;
  ParamSpec fSpec;
  std::vector<ParamDescriptor> fQualifiers;
  std::vector<std::string> fStringValues;
};

/// A subcommand. The list that follows the command name is the subcommand with the empty name.
class HOST_API SubComDescriptor {
 public:
  SubComDescriptor(std::string name, SubComSpec spec, bool flag1, bool flag2);
  ~SubComDescriptor();
  SubComDescriptor(const SubComDescriptor&);
  SubComDescriptor(SubComDescriptor&&) noexcept;
  SubComDescriptor& operator=(const SubComDescriptor&);
  SubComDescriptor& operator=(SubComDescriptor&&) noexcept;

  void allowSubComEmpty(bool allowed);
  /// The subcommand's raw tokens are handed on as they are (see SubComObj::exportParamObj).
  void setExportParamDesc(ParamSpec spec, bool flag);
  void addParamDesc(const std::string& name, ParamSpec spec, bool flag1, bool flag2, BracketOptions brackets);
  void addParamDesc(const ParamDescriptor& param);

  const std::string& name() const { return fName; }
  bool emptyAllowed() const { return fEmptyAllowed; }
  bool exportsTokens() const { return fExportsTokens; }
  const std::vector<ParamDescriptor>& params() const { return fParams; }

 private:
  std::string fName;
  bool fEmptyAllowed = false;
  bool fExportsTokens = false;
  std::vector<ParamDescriptor> fParams;
};

class HOST_API CommandDescriptor {
 public:
  explicit CommandDescriptor(std::string name);
  ~CommandDescriptor();
  CommandDescriptor(const CommandDescriptor&) = delete;
  CommandDescriptor& operator=(const CommandDescriptor&) = delete;

  /// Copies the subcommand's description.
  void addSubComDesc(const SubComDescriptor& subcommand);

  const std::string& name() const { return fName; }
  const std::vector<SubComDescriptor>& subcommands() const { return fSubcommands; }

 private:
  std::string fName;
  std::vector<SubComDescriptor> fSubcommands;
};
