// Which texts of a DDI-Codebook become attributes, and how everything else of it is kept.
//
// What the Dictionary has no word for is kept as ExtraProperty, one of each name, in the order of the document:
//
//  - "ddi:PATH" is the element, below `var` for a field and below `codeBook` for the table ("ddi:valrng",
//    "ddi:stdyDscr/method/notes"). Its JSON value is a list of elements where it stands several times, else one
//    element: a text when it has neither attributes nor elements of its own, else an object with "@NAME" for each
//    attribute, a member for each element in it (a list for several of one name), and "#text" for its text.
//  - "ddi:PATH/@NAME" is an attribute, of an element that is itself understood ("ddi:@ID", "ddi:qstn/@seqNo"). Its JSON
//    value is a text; where the element stands several times a list, with null for those without the attribute.
//  - "ddi:PATH/#text" is the text of an element whose attributes are understood ("ddi:varFormat/#text").
//  - "ddi:catgry/PATH" and "ddi:catgry/@NAME" are what the categories say beside code, label and missing: an object by
//    code (as it stands in `catValu`, without blanks around; empty for a category without one), its values as above.
//    "ddi:varGrp/PATH" and "ddi:varGrp/@NAME" are the same of the groups that are sets, by the set's name.
//
// What DDI has no word for stands in notes of our own, see ddinotes.h.
//
// Not kept: `source` (who supplied an element), comments, name spaces, and the markup of paragraphs, lists and emphasis
// in texts, of which paragraphs and list items become lines.
#pragma once

#include <array>
#include <string_view>

namespace runtime::data {

/// A text of a DDI-Codebook that is an attribute; an element that stands several times gives several values.
struct DdiText {
  std::string_view path;
  std::string_view attribute;
};

/// Below `var`. The attribute Description is the field's description too.
inline constexpr std::array kDdiVariableTexts = {DdiText{"imputation", "Imputation"},
                                                 DdiText{"security", "Security"},
                                                 DdiText{"respUnit", "ResponseUnit"},
                                                 DdiText{"anlysUnit", "AnalysisUnit"},
                                                 DdiText{"qstn/preQTxt", "PreQuestion"},
                                                 DdiText{"qstn/qstnLit", "Question"},
                                                 DdiText{"qstn/postQTxt", "PostQuestion"},
                                                 DdiText{"qstn/ivuInstr", "InterviewerInstruction"},
                                                 DdiText{"universe", "Universe"},
                                                 DdiText{"txt", "Description"},
                                                 DdiText{"codInstr", "CodingInstruction"},
                                                 DdiText{"concept", "Concept"},
                                                 DdiText{"derivation/drvdesc", "Derivation"},
                                                 DdiText{"notes", "Notes"}};

/// Below `codeBook`. The title is the file label and the abstracts are the documents.
inline constexpr std::array kDdiStudyTexts = {DdiText{"stdyDscr/citation/titlStmt/subTitl", "Subtitle"},
                                              DdiText{"stdyDscr/citation/titlStmt/altTitl", "AlternativeTitle"},
                                              DdiText{"stdyDscr/citation/titlStmt/parTitl", "ParallelTitle"},
                                              DdiText{"stdyDscr/citation/titlStmt/IDNo", "Identifier"},
                                              DdiText{"stdyDscr/citation/rspStmt/AuthEnty", "Author"},
                                              DdiText{"stdyDscr/citation/rspStmt/othId", "Contributor"},
                                              DdiText{"stdyDscr/citation/prodStmt/producer", "Producer"},
                                              DdiText{"stdyDscr/citation/prodStmt/copyright", "Copyright"},
                                              DdiText{"stdyDscr/citation/prodStmt/prodDate", "ProductionDate"},
                                              DdiText{"stdyDscr/citation/prodStmt/prodPlac", "ProductionPlace"},
                                              DdiText{"stdyDscr/citation/prodStmt/fundAg", "Funding"},
                                              DdiText{"stdyDscr/citation/prodStmt/grantNo", "GrantNumber"},
                                              DdiText{"stdyDscr/citation/distStmt/distrbtr", "Distributor"},
                                              DdiText{"stdyDscr/citation/distStmt/distDate", "DistributionDate"},
                                              DdiText{"stdyDscr/citation/serStmt/serName", "Series"},
                                              DdiText{"stdyDscr/citation/verStmt/version", "Version"},
                                              DdiText{"stdyDscr/citation/biblCit", "Citation"},
                                              DdiText{"stdyDscr/stdyInfo/subject/keyword", "Keywords"},
                                              DdiText{"stdyDscr/stdyInfo/subject/topcClas", "Topics"},
                                              DdiText{"stdyDscr/stdyInfo/sumDscr/timePrd", "TimePeriod"},
                                              DdiText{"stdyDscr/stdyInfo/sumDscr/collDate", "CollectionDate"},
                                              DdiText{"stdyDscr/stdyInfo/sumDscr/nation", "Country"},
                                              DdiText{"stdyDscr/stdyInfo/sumDscr/geogCover", "GeographicCoverage"},
                                              DdiText{"stdyDscr/stdyInfo/sumDscr/geogUnit", "GeographicUnit"},
                                              DdiText{"stdyDscr/stdyInfo/sumDscr/anlyUnit", "AnalysisUnit"},
                                              DdiText{"stdyDscr/stdyInfo/sumDscr/universe", "Universe"},
                                              DdiText{"stdyDscr/stdyInfo/sumDscr/dataKind", "DataKind"},
                                              DdiText{"stdyDscr/method/dataColl/timeMeth", "TimeMethod"},
                                              DdiText{"stdyDscr/method/dataColl/dataCollector", "DataCollector"},
                                              DdiText{"stdyDscr/method/dataColl/sampProc", "Sampling"},
                                              DdiText{"stdyDscr/method/dataColl/collMode", "CollectionMode"},
                                              DdiText{"stdyDscr/method/dataColl/weight", "Weighting"},
                                              DdiText{"stdyDscr/method/anlyInfo/respRate", "ResponseRate"},
                                              DdiText{"stdyDscr/dataAccs/useStmt/restrctn", "Restrictions"},
                                              DdiText{"stdyDscr/dataAccs/useStmt/contact", "Contact"},
                                              DdiText{"stdyDscr/dataAccs/useStmt/citReq", "CitationRequirement"},
                                              DdiText{"stdyDscr/dataAccs/useStmt/conditions", "Conditions"},
                                              DdiText{"stdyDscr/dataAccs/useStmt/disclaimer", "Disclaimer"},
                                              DdiText{"stdyDscr/notes", "Notes"},
                                              DdiText{"fileDscr/fileTxt/fileCont", "FileContents"},
                                              DdiText{"fileDscr/notes", "FileNotes"}};

}  // namespace runtime::data
