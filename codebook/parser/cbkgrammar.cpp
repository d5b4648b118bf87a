// The grammar of the command, and the parse that drives the host's parser with it.
#include <string>

#include "codebook/parser/cbkkeywords.h"
#include "codebook/parser/cbkparser.h"

namespace codebook {

namespace {

SubComDescriptor makeSubcommand(const std::string& name) {
  SubComDescriptor subcommand(name, kSubComPlain, false, false);
  subcommand.allowSubComEmpty(true);
  return subcommand;
}

void addKeywords(SubComDescriptor& subcommand, std::initializer_list<const std::string*> keywords) {
  for (const std::string* name : keywords) subcommand.addParamDesc(*name, kParamKeyword, false, true, kBracketsDefault);
}

}  // namespace

CodebookRequest::CodebookRequest(ProcedureDataSource* dataSource, ParserMessage* parserMessage)
    : fDataSource(dataSource),
      fSettings(std::make_unique<CodebookSettings>()),
      fParserMessage(parserMessage),
      fSetCounter(static_cast<std::int32_t>(dataSource->ColumnCount())) {
  std::vector<std::int32_t> kinds = fSettings->itemKinds();
  kinds.insert(kinds.end(), dataSource->ColumnCount(), kScaleItem);
  kinds.insert(kinds.end(), dataSource->GetMRSets().size(), kNominalItem);
  fSettings->setItemKinds(kinds);
}

CodebookRequest::~CodebookRequest() = default;

bool CodebookRequest::parse() {
  CommandSpec commandSpec;
  if (!checkSyntax(commandSpec)) return false;
  return interpret(commandSpec);
}

bool CodebookRequest::checkSyntax(CommandSpec& commandSpec) {
  CommandDescriptor descriptor(keyword::kCodebook);
  declareGrammar(descriptor);
  MAVO_TokenSequence tokens(true);
  UniversalParser parser(tokens, commandSpec, descriptor);
  return parser.getCommandSpecifications() == 0;
}

void CodebookRequest::declareGrammar(CommandDescriptor& descriptor) const {
  using namespace keyword;

  SubComDescriptor list = makeSubcommand(kList);
  list.setExportParamDesc(kParamExport, false);
  descriptor.addSubComDesc(list);

  SubComDescriptor varInfo = makeSubcommand(kVarInfo);
  addKeywords(varInfo, {&kPosition, &kLabel, &kType, &kFormat, &kMeasure, &kRole, &kAttributes, &kValueLabels,
                        &kMissing, &kReservedAttributes});
  descriptor.addSubComDesc(varInfo);

  SubComDescriptor fileInfo = makeSubcommand(kFileInfo);
  addKeywords(fileInfo,
              {&kName, &kLocation, &kCaseCount, &kLabel, &kAttributes, &kDocuments, &kWeight, &kReservedAttributes});
  descriptor.addSubComDesc(fileInfo);

  SubComDescriptor statistics = makeSubcommand(kStatistics);
  addKeywords(statistics, {&kNone, &kCount, &kPercent, &kMean, &kStdDev, &kQuartiles});
  descriptor.addSubComDesc(statistics);

  SubComDescriptor options = makeSubcommand(kOptions);
  options.setExportParamDesc(kParamExport, false);
  options.addParamDesc(kMaxCats, kParamInteger, false, true, kBracketsDefault);
  ParamDescriptor varOrder(kVarOrder, kParamQualified, false, true, kBracketsDefault);
  varOrder.addQualifDesc(kFile);
  varOrder.addQualifDesc(kAlpha);
  varOrder.addQualifDesc(kVarList);
  varOrder.addQualifDesc(kMeasure);
  varOrder.addQualifDesc(ParamDescriptor(kAttribute, kParamString, false, true, kBracketsDefault));
  options.addParamDesc(varOrder);
  ParamDescriptor sort(kSort, kParamString, false, true, kBracketsDefault);
  sort.addStringValue(kAscending);
  sort.addStringValue(kDescending);
  options.addParamDesc(sort);
  descriptor.addSubComDesc(options);
}

}  // namespace codebook
