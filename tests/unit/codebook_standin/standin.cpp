#include "tests/unit/codebook_standin/standin.h"

#include "host/output/procedure.h"
#include "host/parser/grammar.h"
#include "host/parser/message.h"

namespace codebook::standin {

namespace {

std::unique_ptr<Host> present;

void addRows(const runtime::output::Item& group, const std::string& path, std::vector<std::string>& lines) {
  for (const auto& item : group.items) {
    const std::string name = path.empty() ? item->label->text : path + " > " + item->label->text;
    if (item->isGroup) {
      addRows(*item, name, lines);
      continue;
    }
    std::string line = name;
    for (const runtime::output::Cell& cell : item->cells) line += " | " + cell.content->text;
    lines.push_back(line);
  }
}

}  // namespace

Host& host() { return *present; }

Host& newHost() {
  present = std::make_unique<Host>();
  return *present;
}

std::vector<std::string> tableTitles() {
  std::vector<std::string> titles;
  for (const auto& procedure : host().procedures)
    for (const auto& table : procedure->tables) titles.push_back(table->title->text);
  return titles;
}

std::vector<std::string> rowsOfTable(std::size_t i) {
  std::vector<std::string> lines;
  for (const auto& dimension : host().procedures.front()->tables.at(i)->dimensions)
    if (!dimension->inColumns) addRows(dimension->root, "", lines);
  return lines;
}

}  // namespace codebook::standin

using codebook::standin::host;

// The parser library's builder of specifications is a friend of their classes; here it is the tests' own.
class CommandReader {
 public:
  static SubComObj& append(CommandSpec& spec, const std::string& name) {
    spec.fSubcommands.push_back(std::make_unique<SubComObj>());
    spec.fSubcommands.back()->fName = name;
    return *spec.fSubcommands.back();
  }

  static void addKeyword(SubComObj& subcommand, const codebook::standin::Keyword& keyword) {
    auto param = std::make_unique<ParamObj>();
    param->fName = keyword.name;
    param->fWritten = true;
    param->fHasValue = keyword.value.has_value();
    param->fValue = keyword.value.value_or("");
    if (keyword.chosen) {
      auto chosen = std::make_shared<ParamObj>();
      chosen->fName = *keyword.chosen;
      param->fChosen = std::move(chosen);
    }
    subcommand.fParams.push_back(std::move(param));
  }

  static void setTokens(SubComObj& list, const std::vector<std::string>& tokens, bool exported, bool readable) {
    for (const std::string& token : tokens) list.fTokens.emplace_back(token, TokenInfoObj::Kind::Word, 1, 1);
    if (!exported) return;
    list.fExported = std::make_unique<ParamObj>();
    list.fExported->fTokens = list.fTokens;
    list.fExported->fWritten = readable;
  }
};

namespace codebook::standin {

void addSubcommand(CommandSpec& spec, const std::string& name, const std::vector<Keyword>& keywords) {
  SubComObj& subcommand = CommandReader::append(spec, name);
  for (const Keyword& keyword : keywords) CommandReader::addKeyword(subcommand, keyword);
}

void addList(CommandSpec& spec, const std::vector<std::string>& tokens, bool exported, bool readable) {
  CommandReader::setTokens(CommandReader::append(spec, ""), tokens, exported, readable);
}

}  // namespace codebook::standin

UniversalParser::UniversalParser(const MAVO_TokenSequence& tokens, CommandSpec& spec,
                                 const CommandDescriptor& descriptor)
    : fTokens(tokens), fSpec(spec), fDescriptor(descriptor) {
  host().life.push_back("parser of " + fDescriptor.name());
}
UniversalParser::~UniversalParser() { host().life.emplace_back("~parser"); }
int UniversalParser::getCommandSpecifications() { return host().read ? host().read(fSpec) : 0; }

namespace {

void report(const std::string& severity, const char* text, const char* p1, const char* p2) {
  std::string line = severity + ": " + text;
  if (p1 != nullptr) line += std::string(" (") + p1 + (p2 != nullptr ? std::string(", ") + p2 : "") + ")";
  host().messages.push_back(line);
}

}  // namespace

ParserMessage::ParserMessage() { host().life.emplace_back("messages"); }
ParserMessage::~ParserMessage() { host().life.emplace_back("~messages"); }
void ParserMessage::GenericError(const char* text, const char* p1, const char* p2, const char*, const char*,
                                 const char*) {
  report("error", text, p1, p2);
}
void ParserMessage::GenericWarning(const char* text, const char* p1, const char* p2, const char*, const char*,
                                   const char*) {
  report("warning", text, p1, p2);
}
void ParserMessage::ParamExclAnyOther(const char* keyword, const char* subcommand) {
  report("error", "excludes any other", keyword, subcommand);
}
void ParserMessage::KeywordImproperVarList(const char* keyword, const char*, const char*) {
  report("error", "misplaced", keyword, nullptr);
}

ProcDSIterator::ProcDSIterator(const MAVO_DataSource& source, std::unique_ptr<CaseCursor> cursor)
    : MAVO_InputCaseIterator(source, std::move(cursor)) {
  host().life.emplace_back("iterator");
}
ProcDSIterator::~ProcDSIterator() { host().life.emplace_back("~iterator"); }

ProcedureDataSource::ProcedureDataSource() : MAVO_DataSource(host().dataset) {
  host().life.emplace_back("data source");
}
ProcedureDataSource::~ProcedureDataSource() { host().life.emplace_back("~data source"); }
bool ProcedureDataSource::FatalError() const { return host().fatalError; }
const MAVO_DataSource* ProcedureDataSource::Parent() const { return host().parent; }
int ProcedureDataSource::GetWeightVarIndex() const { return WeightIndex(); }
MAVO_InputCaseIterator* ProcedureDataSource::NewCaseIterator(int) {
  if (host().newIterator) return host().newIterator(*this);
  return std::make_unique<ProcDSIterator>(*this, NewCursor()).release();
}

BpHeading::BpHeading(std::shared_ptr<runtime::output::Procedure> procedure) : fProcedure(std::move(procedure)) {}
BpHeading::~BpHeading() = default;
BpPivotTable BpHeading::PivotTable(const BpString& title, const BpString& subtype, bool flag) {
  auto table = std::make_shared<runtime::output::Table>();
  table->title = title.content();
  table->subtype = subtype.content();
  table->flag = flag;
  fProcedure->tables.push_back(table);
  return BpPivotTable(std::move(table));
}

BpProcedure::BpProcedure(std::string title, int number)
    : BpHeading([&] {
        auto procedure = std::make_shared<runtime::output::Procedure>();
        procedure->title = std::move(title);
        procedure->number = number;
        host().procedures.push_back(procedure);
        return procedure;
      }()) {
  host().life.emplace_back("procedure");
}
BpProcedure::~BpProcedure() { host().life.emplace_back("~procedure"); }
BpFormatSpec BpProcedure::Count() { return {kFormatF, 0, 0}; }
BpFormatSpec BpProcedure::Percent() { return {kFormatF, 0, 1}; }
BpFormatSpec BpProcedure::Coefficient() { return {kFormatF, 0, 3}; }
BpFormatSpec BpProcedure::Mean(int) const { return {kFormatF, 0, 2}; }
BpFormatSpec BpProcedure::StdDev(int) const { return {kFormatF, 0, 3}; }
