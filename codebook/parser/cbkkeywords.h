// The command's keywords: one constant each, for the grammar, the look-ups and the message texts alike.
#pragma once

#include <string>

namespace codebook::keyword {

extern const std::string kCodebook;

extern const std::string kList;  // the subcommand without a name: the list behind the command name
extern const std::string kVarInfo;
extern const std::string kFileInfo;
extern const std::string kStatistics;
extern const std::string kOptions;

extern const std::string kPosition;
extern const std::string kLabel;
extern const std::string kType;
extern const std::string kFormat;
extern const std::string kMeasure;
extern const std::string kRole;
extern const std::string kAttributes;
extern const std::string kValueLabels;
extern const std::string kMissing;
extern const std::string kReservedAttributes;

extern const std::string kName;
extern const std::string kLocation;
extern const std::string kCaseCount;
extern const std::string kDocuments;
extern const std::string kWeight;

extern const std::string kNone;
extern const std::string kCount;
extern const std::string kPercent;
extern const std::string kMean;
extern const std::string kStdDev;
extern const std::string kQuartiles;

extern const std::string kMaxCats;
extern const std::string kVarOrder;
extern const std::string kSort;
extern const std::string kFile;
extern const std::string kAlpha;
extern const std::string kVarList;
extern const std::string kAttribute;
extern const std::string kAscending;
extern const std::string kDescending;

// In the list.
extern const std::string kAll;
extern const std::string kAllSets;
extern const std::string kTo;
extern const std::string kOpenBracket;
extern const std::string kCloseBracket;
extern const std::string kNominal;
extern const std::string kOrdinal;
extern const std::string kScale;

}  // namespace codebook::keyword
