// From an accepted command to the settings: defaults, and the checks that the grammar cannot make.
#include <string>

#include "codebook/parser/cbkkeywords.h"
#include "codebook/parser/cbkparser.h"

namespace codebook {

bool sameName(const std::string& a, const std::string& b) {
  return a.size() == b.size() && MAVOMBstrnicmp_A(a.c_str(), b.c_str(), a.size()) == 0;
}

void CodebookRequest::warnNoKeyword(const std::string& subcommand) {
  fParserMessage->GenericWarning("< ^1 > must be followed by one or more keywords. This subcommand ignored.",
                                 subcommand.c_str(), nullptr, nullptr, nullptr, nullptr);
}

bool CodebookRequest::interpret(const CommandSpec& commandSpec) {
  ListResolution resolution(*this);
  if (const SubComObj* list = commandSpec.getSubComObj(keyword::kList)) {
    if (!resolution.resolveList(*list)) return false;
  } else {
    resolution.addWholeDictionary(true, true);
  }
  if (!interpretVarInfo(commandSpec)) return false;
  if (!interpretFileInfo(commandSpec)) return false;
  if (!interpretStatistics(commandSpec)) return false;
  return interpretOptions(commandSpec);
}

bool CodebookRequest::interpretVarInfo(const CommandSpec& commandSpec) {
  fSettings->setVarInfoGiven(false);
  const SubComObj* varInfo = commandSpec.getSubComObj(keyword::kVarInfo);
  const auto written = [varInfo](const std::string& name) {
    return varInfo != nullptr && varInfo->getParamObj(name) != nullptr;
  };
  const bool position = written(keyword::kPosition);
  const bool label = written(keyword::kLabel);
  const bool type = written(keyword::kType);
  const bool format = written(keyword::kFormat);
  const bool measure = written(keyword::kMeasure);
  const bool role = written(keyword::kRole);
  const bool attributes = written(keyword::kAttributes);
  const bool valueLabels = written(keyword::kValueLabels);
  const bool missing = written(keyword::kMissing);
  const bool reservedAttributes = written(keyword::kReservedAttributes);
  if (varInfo != nullptr) {
    if (position || label || type || format || measure || role || attributes || valueLabels || missing ||
        reservedAttributes)
      fSettings->setVarInfoGiven(true);
    else
      warnNoKeyword(keyword::kVarInfo);
  }
  fSettings->setVarInfo(position, label, type, format, measure, role, attributes, valueLabels, missing,
                        reservedAttributes);
  return true;
}

bool CodebookRequest::interpretFileInfo(const CommandSpec& commandSpec) {
  fSettings->setFileInfoGiven(false);
  const SubComObj* fileInfo = commandSpec.getSubComObj(keyword::kFileInfo);
  const auto written = [fileInfo](const std::string& name) {
    return fileInfo != nullptr && fileInfo->getParamObj(name) != nullptr;
  };
  const bool name = written(keyword::kName);
  const bool location = written(keyword::kLocation);
  const bool caseCount = written(keyword::kCaseCount);
  const bool label = written(keyword::kLabel);
  const bool attributes = written(keyword::kAttributes);
  const bool documents = written(keyword::kDocuments);
  const bool weight = written(keyword::kWeight);
  const bool reservedAttributes = written(keyword::kReservedAttributes);
  if (fileInfo != nullptr) {
    if (name || location || caseCount || label || attributes || documents || weight || reservedAttributes)
      fSettings->setFileInfoGiven(true);
    else
      warnNoKeyword(keyword::kFileInfo);
  }
  fSettings->setFileInfo(name, location, caseCount, label, attributes, documents, weight, reservedAttributes);
  return true;
}

bool CodebookRequest::interpretStatistics(const CommandSpec& commandSpec) {
  fSettings->setStatisticsGiven(false);
  const SubComObj* statistics = commandSpec.getSubComObj(keyword::kStatistics);
  const auto written = [statistics](const std::string& name) {
    return statistics != nullptr && statistics->getParamObj(name) != nullptr;
  };
  const bool none = written(keyword::kNone);
  const bool count = written(keyword::kCount);
  const bool percent = written(keyword::kPercent);
  const bool mean = written(keyword::kMean);
  const bool stdDev = written(keyword::kStdDev);
  const bool quartiles = written(keyword::kQuartiles);
  const bool anyStatistic = count || percent || mean || stdDev || quartiles;
  if (statistics != nullptr) {
    if (none && anyStatistic) {
      fParserMessage->ParamExclAnyOther(keyword::kNone.c_str(), keyword::kStatistics.c_str());
      return false;
    }
    if (none || anyStatistic)
      fSettings->setStatisticsGiven(true);
    else
      warnNoKeyword(keyword::kStatistics);
  }
  if (none)
    fSettings->setStatisticsNone(true);
  else
    fSettings->setStatistics(count, percent, mean, stdDev, quartiles);
  return true;
}

bool CodebookRequest::interpretOptions(const CommandSpec& commandSpec) {
  bool result = true;
  bool noKeyword = true;
  VarOrder order = kOrderVarList;
  bool ascending = true;

  const SubComObj* options = commandSpec.getSubComObj(keyword::kOptions);
  if (options == nullptr) return true;
  fSettings->setOptionsGiven(true);

  if (const ParamObj* maxCats = options->getParamObj(keyword::kMaxCats)) {
    int value = kDefaultMaxCats;
    if (!maxCats->getIntegerValue(value) || value <= 0) {
      // An invalid value does not count as a keyword, so OPTIONS MAXCATS=0 alone warns twice.
      fSettings->setMaxCats(kDefaultMaxCats);
      fParserMessage->GenericWarning("MAXCATS must be a positive integer.", nullptr, nullptr, nullptr, nullptr,
                                     nullptr);
    } else {
      fSettings->setMaxCats(value);
      noKeyword = false;
    }
  }

  if (const ParamObj* varOrder = options->getParamObj(keyword::kVarOrder)) {
    ParamObj chosen;
    varOrder->getStringAndQual(chosen, nullptr, nullptr);
    const std::string& name = chosen.getParamName();
    if (sameName(name, keyword::kFile)) {
      order = kOrderFile;
      noKeyword = false;
    } else if (sameName(name, keyword::kAlpha)) {
      order = kOrderAlpha;
      noKeyword = false;
    } else if (sameName(name, keyword::kVarList)) {
      order = kOrderVarList;
      noKeyword = false;
    } else if (sameName(name, keyword::kMeasure)) {
      order = kOrderMeasure;
      noKeyword = false;
    } else if (sameName(name, keyword::kAttribute)) {
      order = kOrderAttribute;
      noKeyword = false;
      std::string attribute;
      chosen.getStringGeneric(attribute);
      if (isListedAttribute(attribute)) {
        fSettings->setVarOrderAttribute(attribute);
      } else {
        order = kOrderVarList;
        fParserMessage->GenericWarning("Invalid attribute name specified for VARORDER.", nullptr, nullptr, nullptr,
                                       nullptr, nullptr);
      }
    } else {
      result = false;
    }
  }

  if (const ParamObj* sort = options->getParamObj(keyword::kSort)) {
    ParamObj chosen;
    sort->getStringAndQual(chosen, nullptr, nullptr);
    const std::string& name = chosen.getParamName();
    if (sameName(name, keyword::kAscending)) {
      ascending = true;
      noKeyword = false;
    } else if (sameName(name, keyword::kDescending)) {
      ascending = false;
      noKeyword = false;
    } else {
      result = false;
    }
  }

  if (noKeyword)
    warnNoKeyword(keyword::kOptions);
  else
    fSettings->setOptionsGiven(true);
  fSettings->setSortAscending(ascending);
  fSettings->setVarOrder(order);
  return result;
}

bool CodebookRequest::isListedAttribute(const std::string& name) const {
  bool listed = false;
  for (const ListedItem& item : fSettings->items()) {
    if (item.isSet()) continue;
    const DatasourceAttributes& attributes = fDataSource->GetVariable(item.index).GetAttributes();
    for (std::size_t i = 0; i < attributes.Size(); ++i) {
      const std::string attribute = attributes.Name(i);
      // The second test is met whenever the first is; both stand, as the rule for reserved names is written elsewhere.
      if (sameName(attribute, name) && !attribute.starts_with("$") && !attribute.starts_with("$@")) listed = true;
    }
  }
  return listed;
}

}  // namespace codebook
