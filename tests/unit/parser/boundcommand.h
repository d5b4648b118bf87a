// Runs a command text through the parser library as the host does: one binding a command.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/parser/commandspec.h"
#include "host/parser/grammar.h"
#include "host/parser/token.h"

#include "runtime/parser/binding.h"
#include "runtime/parser/commandtext.h"

namespace parsertest {

struct Message {
  bool isError = false;
  std::string text;

  bool operator==(const Message&) const = default;
};

class RecordingSink : public runtime::parser::MessageSink {
 public:
  void Report(bool isError, const std::string& text) override { messages.push_back({isError, text}); }

  std::vector<Message> messages;
};

/// Binds the calling thread for as long as it lives.
class Bound {
 public:
  Bound(const runtime::parser::ReadCommand* command, runtime::parser::MessageSink* sink)
      : fBinding{command, sink}, fPrevious(runtime::parser::BindCommand(&fBinding)) {}
  ~Bound() { runtime::parser::BindCommand(fPrevious); }
  Bound(const Bound&) = delete;
  Bound& operator=(const Bound&) = delete;

 private:
  runtime::parser::CommandBinding fBinding;
  runtime::parser::CommandBinding* fPrevious;
};

/// A grammar with every kind of parameter: the one that the codebook procedure declares.
inline void DeclareGrammar(CommandDescriptor& command) {
  SubComDescriptor list("", kSubComPlain, false, false);
  list.allowSubComEmpty(true);
  list.setExportParamDesc(kParamExport, false);
  command.addSubComDesc(list);

  const auto addPlain = [&command](const char* name, const std::vector<const char*>& keywords) {
    SubComDescriptor subcommand(name, kSubComPlain, false, false);
    subcommand.allowSubComEmpty(true);
    for (const char* keyword : keywords) {
      subcommand.addParamDesc(keyword, kParamKeyword, false, true, kBracketsDefault);
    }
    command.addSubComDesc(subcommand);
  };
  addPlain("VARINFO", {"POSITION", "LABEL", "TYPE", "FORMAT", "MEASURE", "ROLE", "ATTRIBUTES", "VALUELABELS", "MISSING",
                       "RESERVEDATTRIBUTES"});
  addPlain("FILEINFO",
           {"NAME", "LOCATION", "CASECOUNT", "LABEL", "ATTRIBUTES", "DOCUMENTS", "WEIGHT", "RESERVEDATTRIBUTES"});
  addPlain("STATISTICS", {"NONE", "COUNT", "PERCENT", "MEAN", "STDDEV", "QUARTILES"});

  SubComDescriptor options("OPTIONS", kSubComPlain, false, false);
  options.allowSubComEmpty(true);
  options.setExportParamDesc(kParamExport, false);
  options.addParamDesc("MAXCATS", kParamInteger, false, true, kBracketsDefault);
  ParamDescriptor order("VARORDER", kParamQualified, false, true, kBracketsDefault);
  for (const char* qualifier : {"FILE", "ALPHA", "VARLIST", "MEASURE"}) order.addQualifDesc(qualifier);
  order.addQualifDesc(ParamDescriptor("ATTRIBUTE", kParamString, false, true, kBracketsDefault));
  options.addParamDesc(order);
  ParamDescriptor sort("SORT", kParamString, false, true, kBracketsDefault);
  sort.addStringValue("ASCENDING");
  sort.addStringValue("DESCENDING");
  options.addParamDesc(sort);
  command.addSubComDesc(options);
}

/// What the parser made of a text with one command.
struct Parsed {
  int result = -1;
  std::unique_ptr<CommandSpec> spec = std::make_unique<CommandSpec>();
  std::vector<Message> messages;

  bool accepted() const { return result == 0 && messages.empty(); }
  /// The only message; otherwise what there is instead.
  std::string error() const {
    if (result == 0) return "(accepted)";
    if (messages.size() != 1) return "(" + std::to_string(messages.size()) + " messages)";
    return messages.front().text;
  }
};

inline Parsed ParseCommand(const runtime::parser::ReadCommand& command, const CommandDescriptor& grammar) {
  Parsed parsed;
  RecordingSink sink;
  const Bound bound(&command, &sink);
  const MAVO_TokenSequence tokens(true);
  UniversalParser parser(tokens, *parsed.spec, grammar);
  parsed.result = parser.getCommandSpecifications();
  parsed.messages = std::move(sink.messages);
  return parsed;
}

inline Parsed ParseCommand(const runtime::parser::ReadCommand& command) {
  CommandDescriptor grammar("CODEBOOK");
  DeclareGrammar(grammar);
  return ParseCommand(command, grammar);
}

/// REQUIRES: a text with one command.
inline Parsed Parse(const std::string& text) {
  const std::vector<runtime::parser::ReadCommand> commands = runtime::parser::ReadCommands(text);
  if (commands.size() != 1) return {};
  return ParseCommand(commands.front());
}

inline std::vector<std::string> Texts(const std::vector<TokenInfoObj>& tokens) {
  std::vector<std::string> texts;
  for (const TokenInfoObj& token : tokens) texts.push_back(token.getString());
  return texts;
}

/// The tokens' texts, a list a command.
inline std::vector<std::vector<std::string>> ReadTexts(const std::string& text) {
  std::vector<std::vector<std::string>> texts;
  for (const runtime::parser::ReadCommand& command : runtime::parser::ReadCommands(text)) {
    texts.push_back(Texts(command.tokens()));
  }
  return texts;
}

}  // namespace parsertest
