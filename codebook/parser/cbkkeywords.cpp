#include "codebook/parser/cbkkeywords.h"

namespace codebook::keyword {

const std::string kCodebook = "CODEBOOK";
const std::string kList;
const std::string kVarInfo = "VARINFO";
const std::string kFileInfo = "FILEINFO";
const std::string kStatistics = "STATISTICS";
const std::string kOptions = "OPTIONS";
const std::string kPosition = "POSITION";
const std::string kLabel = "LABEL";
const std::string kType = "TYPE";
const std::string kFormat = "FORMAT";
const std::string kMeasure = "MEASURE";
const std::string kRole = "ROLE";
const std::string kAttributes = "ATTRIBUTES";
const std::string kValueLabels = "VALUELABELS";
const std::string kMissing = "MISSING";
const std::string kReservedAttributes = "RESERVEDATTRIBUTES";
const std::string kName = "NAME";
const std::string kLocation = "LOCATION";
const std::string kCaseCount = "CASECOUNT";
const std::string kDocuments = "DOCUMENTS";
const std::string kWeight = "WEIGHT";
const std::string kNone = "NONE";
const std::string kCount = "COUNT";
const std::string kPercent = "PERCENT";
const std::string kMean = "MEAN";
const std::string kStdDev = "STDDEV";
const std::string kQuartiles = "QUARTILES";
const std::string kMaxCats = "MAXCATS";
const std::string kVarOrder = "VARORDER";
const std::string kSort = "SORT";
const std::string kFile = "FILE";
const std::string kAlpha = "ALPHA";
const std::string kVarList = "VARLIST";
const std::string kAttribute = "ATTRIBUTE";
const std::string kAscending = "ASCENDING";
const std::string kDescending = "DESCENDING";
const std::string kAll = "ALL";
const std::string kAllSets = "$ALL";
const std::string kTo = "TO";
const std::string kOpenBracket = "[";
const std::string kCloseBracket = "]";
const std::string kNominal = "N";
const std::string kOrdinal = "O";
const std::string kScale = "S";

}  // namespace codebook::keyword
