// What becomes of the elements of a DDI-Codebook.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/ddi/ddi.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// The only variable, from what stands in it and its attributes.
FieldDescriptor Variable(const std::string& content, const std::string& attributes = {},
                         std::vector<std::string>* notes = nullptr) {
  DdiReading reading = ReadVariables("<var name='v' " + attributes + ">" + content + "</var>");
  EXPECT_EQ(reading.error, "");
  if (notes)
    *notes = reading.notes;
  else
    EXPECT_THAT(reading.notes, IsEmpty());
  return reading.table.fields.empty() ? FieldDescriptor() : reading.table.fields.front();
}

TEST(DdiRoot, everyNameSpaceIsTaken) {
  for (const char* root : {"codeBook", "codeBook xmlns='ddi:codebook:2_5'", "codeBook xmlns='ddi:codebook:2_6'",
                           "codeBook xmlns='http://www.icpsr.umich.edu/DDI'",
                           "codeBook xmlns='http://www.icpsr.umich.edu/DDI/Version2-0' version='2.0'"}) {
    const DdiReading reading =
        ReadDdiText("<" + std::string(root) + "><dataDscr><var name='a'><labl>A</labl></var></dataDscr></codeBook>");
    EXPECT_EQ(reading.error, "") << root;
    EXPECT_EQ(reading.Field("a").title, "A") << root;
  }
  const DdiReading prefixed = ReadDdiText(
      "<d:codeBook xmlns:d='ddi:codebook:2_1'><d:dataDscr><d:var name='a'><d:labl>A</d:labl><d:catgry><d:catValu>1"
      "</d:catValu></d:catgry></d:var></d:dataDscr></d:codeBook>");
  EXPECT_EQ(prefixed.Field("a").title, "A");
  EXPECT_THAT(Written(prefixed.Field("a").categories), ElementsAre("1"));
}

TEST(DdiRoot, codeBookWithinARecordOfARepositoryIsFound) {
  const DdiReading reading = ReadDdiText(
      "<OAI-PMH><GetRecord><record><metadata><ddi:codeBook xmlns:ddi='x'><ddi:dataDscr><ddi:var "
      "name='a'/></ddi:dataDscr>"
      "</ddi:codeBook></metadata></record></GetRecord></OAI-PMH>");
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.table.fields, SizeIs(1));
}

TEST(DdiRoot, otherDocumentsAreRefusedByName) {
  EXPECT_THAT(ReadDdiText("<html><body/></html>").error, AllOf(HasSubstr("study.xml:1: "), HasSubstr("\"<html>\"")));
  EXPECT_THAT(ReadDdiText("<DDIInstance xmlns='ddi:instance:3_3'/>").error, HasSubstr("DDI-Lifecycle"));
  EXPECT_THAT(ReadDdiText("<codeBook><stdyDscr/></codeBook>").error, HasSubstr("no variables"));
}

TEST(DdiName, standsForAnAbsentOneTheId) {
  const DdiReading reading = ReadVariables("<var ID='V1'/>");
  EXPECT_EQ(reading.table.fields.at(0).name, "V1");
  EXPECT_THAT(reading.notes, ElementsAre(HasSubstr("study.xml:2: variable \"V1\" has no name")));
  EXPECT_THAT(ReadVariables("<var/>").error, AllOf(HasSubstr("study.xml:2: "), HasSubstr("neither a name nor an ID")));
}

TEST(DdiName, thatStandsTwiceIsTold) {
  const DdiReading reading = ReadVariables("<var name='a' ID='x'/>\n<var name='a' ID='x'/>");
  EXPECT_THAT(reading.table.fields, SizeIs(2));
  EXPECT_THAT(reading.notes, ElementsAre(HasSubstr("study.xml:3: there is a variable \"a\" before"),
                                         HasSubstr("study.xml:3: the ID \"x\"")));
}

TEST(DdiLabel, isTheFirstOfTheVariable) {
  const FieldDescriptor field = Variable(
      "<labl level='category'>no</labl><labl xml:lang='en'>  Age\n   in years </labl><labl xml:lang='de'>Alter</labl>");
  EXPECT_EQ(field.title, "Age in years");
  EXPECT_THAT(
      Written(field.extras),
      ElementsAre("ddi:labl: [{\"@level\":\"category\",\"#text\":\"no\"},{\"@xml:lang\":\"de\",\"#text\":\"Alter\"}]",
                  "ddi:labl/@xml:lang: \"en\""));
}

TEST(DdiLabel, isElseTheQuestionElseTheConcept) {
  EXPECT_EQ(Variable("<labl/><qstn><qstnLit>Why?</qstnLit></qstn><concept>c</concept>").title, "Why?");
  EXPECT_EQ(Variable("<qstn/><concept>c</concept>").title, "c");
  EXPECT_EQ(Variable("").title, std::nullopt);
}

TEST(DdiTexts, becomeAttributes) {
  const FieldDescriptor field = Variable(
      "<labl>l</labl><qstn><preQTxt>p</preQTxt><qstnLit>q1</qstnLit><qstnLit>q2</qstnLit><postQTxt>o</postQTxt>"
      "<ivuInstr>i</ivuInstr></qstn><universe>u</universe><txt>first\n   second</txt><codInstr>c</codInstr>"
      "<security>s</security><respUnit>r</respUnit><derivation><drvdesc>d</drvdesc></derivation><notes>n</notes>");
  EXPECT_THAT(Written(field.attributes),
              ElementsAre("PreQuestion=p", "Question=q1|q2", "PostQuestion=o", "InterviewerInstruction=i", "Universe=u",
                          "Description=first\nsecond", "CodingInstruction=c", "Security=s", "ResponseUnit=r",
                          "Derivation=d", "Notes=n"));
  EXPECT_EQ(field.description, "first\nsecond");
  EXPECT_THAT(field.extras, IsEmpty());
}

TEST(DdiTexts, paragraphsAndListItemsAreLines) {
  const FieldDescriptor field = Variable(
      "<notes><h:p xmlns:h='x'>one\n   <h:em>two</h:em> three</h:p>\n<h:ul><h:li>a: <h:ul><h:li>b</h:li></h:ul></h:li>"
      "<h:li>c</h:li></h:ul></notes><txt>H<sub>2</sub>O</txt>");
  EXPECT_THAT(Written(field.attributes), ElementsAre("Notes=one two three\na:\nb\nc", "Description=H2O"));
}

TEST(DdiTexts, questionMayStandInItsElementItself) {
  EXPECT_THAT(Written(Variable("<qstn>How old?</qstn>").attributes), ElementsAre("Question=How old?"));
}

TEST(DdiCategories, haveCodeAndLabel) {
  const FieldDescriptor field = Variable(
      "<catgry><catValu> 1 </catValu><labl>\n yes </labl></catgry><catgry><catValu>02</catValu></catgry>"
      "<catgry><catValu>3</catValu><labl/><labl>three</labl></catgry><catgry/>");
  EXPECT_THAT(Written(field.categories), ElementsAre("1=yes", "02", "3=three"));
  EXPECT_TRUE(field.hasCategories);
  EXPECT_THAT(Written(field.missingValues), ElementsAre(""));
}

TEST(DdiCategories, missingOnesAreMissingValues) {
  const FieldDescriptor field = Variable(
      "<catgry><catValu>1</catValu></catgry><catgry missing='Y'><catValu>8</catValu><labl>refused</labl></catgry>"
      "<catgry missing='Y' missType='not asked'><catValu>9</catValu></catgry><catgry><catValu>.</catValu></catgry>"
      "<catgry missing='N'><catValu>2</catValu></catgry>");
  EXPECT_THAT(Written(field.categories), ElementsAre("1", "2"));
  EXPECT_THAT(Written(field.missingValues), ElementsAre("", "8=refused", "9=not asked", "."));
  EXPECT_FALSE(field.hasCategories);
  EXPECT_THAT(Written(field.extras), ElementsAre("ddi:catgry/@missType: {\"9\":\"not asked\"}"));
}

TEST(DdiCategories, ofTextCodesMakeTheVariableText) {
  std::vector<std::string> notes;
  const FieldDescriptor field = Variable(
      "<catgry><catValu>yes</catValu><labl>Yes</labl></catgry><catgry><catValu>no</catValu></catgry>"
      "<varFormat type='numeric'/>",
      "intrvl='discrete'", &notes);
  EXPECT_EQ(field.dialect.type, FieldType::String);
  EXPECT_THAT(notes,
              ElementsAre(AllOf(HasSubstr("study.xml:2: variable \"v\""), HasSubstr("numeric"), HasSubstr("\"yes\""))));
}

TEST(DdiCategories, thatCannotBeUsedAreToldOnceAKind) {
  std::vector<std::string> notes;
  const FieldDescriptor field = Variable(
      "\n<catgry><labl>lost</labl></catgry>\n<catgry><labl>too</labl></catgry><catgry><catValu>1</catValu><labl>a</"
      "labl>"
      "</catgry><catgry><catValu>1</catValu><labl>b</labl></catgry><catgry><catValu>1</catValu><labl>a</labl></catgry>",
      "", &notes);
  EXPECT_THAT(Written(field.categories), ElementsAre("1=a"));
  EXPECT_THAT(notes,
              ElementsAre(AllOf(HasSubstr("study.xml:3: "), HasSubstr("\"lost\""), HasSubstr("(1 more like it)")),
                          AllOf(HasSubstr("study.xml:4: "), HasSubstr("\"1\" twice"))));
}

TEST(DdiCategories, statisticsAreKept) {
  const FieldDescriptor field = Variable(
      "<sumStat type='min'>1</sumStat><sumStat type='max'>2</sumStat><catgry><catValu>1</catValu><catStat type='freq'>7"
      "</catStat><catStat type='percent'>70</catStat></catgry><catgry><catStat type='freq'>3</catStat></catgry>");
  EXPECT_THAT(
      Written(field.extras),
      ElementsAre(
          "ddi:catgry/catStat: {\"1\":[{\"@type\":\"freq\",\"#text\":\"7\"},{\"@type\":\"percent\",\"#text\":\"70\"}],"
          "\"\":{\"@type\":\"freq\",\"#text\":\"3\"}}",
          "ddi:sumStat: [{\"@type\":\"min\",\"#text\":\"1\"},{\"@type\":\"max\",\"#text\":\"2\"}]"));
}

TEST(DdiInvalid, itemsAndRangesAreMissing) {
  const FieldDescriptor field = Variable(
      "<invalrng><item VALUE='-1'/><item VALUE='9'/><range min='97' max='99'/><range min='5' max='5'/><range "
      "max='-10'/>"
      "<range/><key>-1 no</key></invalrng><catgry missing='Y'><catValu>9</catValu><labl>n</labl></catgry>");
  EXPECT_THAT(Written(field.missingValues), ElementsAre("", "9=n", "-1", "5"));
  ASSERT_THAT(field.missingRanges, SizeIs(2));
  EXPECT_EQ(field.missingRanges[0].min, 97);
  EXPECT_EQ(field.missingRanges[0].max, 99);
  EXPECT_EQ(field.missingRanges[1].min, std::nullopt);
  EXPECT_EQ(field.missingRanges[1].max, -10);
  EXPECT_EQ(field.dialect.type, FieldType::Number);
  EXPECT_THAT(Written(field.extras), ElementsAre("ddi:invalrng/key: \"-1 no\""));
}

TEST(DdiInvalid, exclusiveBoundsAreTheNextNumbers) {
  const FieldDescriptor field = Variable(
      "<invalrng><range UNITS='INT' minExclusive='90' maxExclusive='100'/><range UNITS='REAL' "
      "minExclusive='0.5'/></invalrng>");
  ASSERT_THAT(field.missingRanges, SizeIs(2));
  EXPECT_EQ(field.missingRanges[0].min, 91);
  EXPECT_EQ(field.missingRanges[0].max, 99);
  EXPECT_EQ(field.missingRanges[1].min, 0.50000000000000011);
}

TEST(DdiInvalid, rangesThatCannotBeUsedAreKeptAndTold) {
  std::vector<std::string> notes;
  const FieldDescriptor text =
      Variable("<invalrng><range min='8' max='9'/></invalrng><varFormat type='character'/>", "", &notes);
  EXPECT_THAT(text.missingRanges, IsEmpty());
  EXPECT_THAT(Written(text.extras), ElementsAre("ddi:invalrng/range: {\"@min\":\"8\",\"@max\":\"9\"}"));
  EXPECT_THAT(notes, ElementsAre(HasSubstr("is text")));
  Variable("<invalrng><range min='9' max='8'/><range min='x'/></invalrng>", "", &notes);
  EXPECT_THAT(notes, ElementsAre(AllOf(HasSubstr("bounds must be numbers"), HasSubstr("(1 more like it)"))));
}

TEST(DdiLevel, natureRulesOverInterval) {
  const auto level = [](const std::string& attributes) {
    return Variable("<catgry><catValu>1</catValu><labl>a</labl></catgry>", attributes).measure.value_or("-");
  };
  EXPECT_EQ(level("nature='ordinal' intrvl='contin'"), "ordinal");
  EXPECT_EQ(level("nature='nominal'"), "nominal");
  for (const char* nature : {"interval", "ratio", "percent"})
    EXPECT_EQ(level("nature='" + std::string(nature) + "' intrvl='discrete'"), "scale");
  EXPECT_EQ(level("nature='other' intrvl='contin'"), "scale");
  EXPECT_EQ(level("intrvl='contin'"), "scale");
  EXPECT_EQ(level("intrvl='discrete'"), "nominal");
  EXPECT_EQ(level(""), "-");
}

TEST(DdiLevel, ofDiscreteValuesWithoutLabelsTheDataDecide) {
  const FieldDescriptor field = Variable("<catgry><catValu>1</catValu></catgry>", "intrvl='discrete'");
  EXPECT_EQ(field.measure, std::nullopt);
  EXPECT_THAT(Written(field.extras), ElementsAre("ddi:@intrvl: \"discrete\""));
}

TEST(DdiLevel, unknownWordsAreTold) {
  std::vector<std::string> notes;
  Variable("", "nature='metric'", &notes);
  EXPECT_THAT(notes, ElementsAre(AllOf(HasSubstr("\"metric\""),
                                       HasSubstr("nominal, ordinal, interval, ratio, percent, other"))));
}

TEST(DdiFormatOf, typeIsThatOfTheFormat) {
  EXPECT_EQ(Variable("<varFormat type='numeric'/>").dialect.type, FieldType::Number);
  EXPECT_EQ(Variable("<varFormat type='character'/>").dialect.type, FieldType::String);
  EXPECT_EQ(Variable("").dialect.type, FieldType::Inferred);
}

TEST(DdiFormatOf, datesAreReadWhenTheirPartsAreSaid) {
  const FieldDescriptor german = Variable("<varFormat type='character' category='date' formatname='DD.MM.YYYY'/>");
  EXPECT_EQ(german.dialect.type, FieldType::Date);
  EXPECT_EQ(german.dialect.format, "%d.%m.%Y");
  EXPECT_EQ(Variable("<varFormat type='numeric' formatname='yyyy-mm-dd'/>").dialect.format, "%Y-%m-%d");
  EXPECT_EQ(Variable("<varFormat type='numeric' category='date'/>").dialect.type, FieldType::Inferred);
  EXPECT_EQ(Variable("<varFormat type='numeric' formatname='SDATE10'/>").dialect.type, FieldType::Inferred);
}

TEST(DdiFormatOf, decimalsAndWidthMakeAFormat) {
  const FieldDescriptor field = Variable("<location width='8'/><varFormat type='numeric'/>", "dcml='2'");
  ASSERT_TRUE(field.format);
  EXPECT_EQ(field.format->width, 8);
  EXPECT_EQ(field.format->decimals, 2);
  EXPECT_FALSE(Variable("<location width='2'/><varFormat type='numeric'/>", "dcml='2'").format);
  EXPECT_FALSE(Variable("<varFormat type='numeric'/>", "dcml='2'").format);
  const FieldDescriptor named = Variable("<varFormat type='numeric' formatname='F5.1'/>");
  ASSERT_TRUE(named.format);
  EXPECT_EQ(named.format->width, 5);
}

TEST(DdiFormatOf, widthOfATextIsItsGreatestLength) {
  EXPECT_EQ(Variable("<location width='11'/><varFormat type='character'/>").maxLength, 11);
  std::vector<std::string> notes;
  EXPECT_EQ(Variable("<location width='99999999'/><varFormat type='character'/>", "", &notes).maxLength, std::nullopt);
  EXPECT_THAT(notes, ElementsAre(HasSubstr("\"99999999\"")));
}

TEST(DdiWeight, isTheOneReferredTo) {
  const DdiReading reading =
      ReadVariables("<var name='a' wgt-var='W2'/><var name='w1' ID='W1' wgt='wgt'/><var name='w2' ID='W2' wgt='wgt'/>");
  EXPECT_EQ(reading.table.weight, "w2");
  EXPECT_THAT(reading.notes, IsEmpty());
}

TEST(DdiWeight, isElseTheFirstMarkedAndSeveralAreTold) {
  const DdiReading one = ReadVariables("<var name='a' wgt='not-wgt'/><var name='w' wgt='wgt'/>");
  EXPECT_EQ(one.table.weight, "w");
  const DdiReading two = ReadVariables("<var name='w1' wgt='wgt'/>\n<var name='w2' wgt='wgt'/>");
  EXPECT_EQ(two.table.weight, "w1");
  EXPECT_THAT(two.notes,
              ElementsAre(AllOf(HasSubstr("study.xml:2: "), HasSubstr("\"w1\", \"w2\""), HasSubstr("--weight"))));
}

TEST(DdiWeight, thatTheDataDoNotHoldIsLeftOut) {
  DdiOptions options;
  options.headers = [] { return std::vector<std::string>{"a"}; };
  const DdiReading reading = ReadVariables("<var name='a' wgt-var='W'/><var name='w' ID='W' wgt='wgt'/>", options);
  EXPECT_EQ(reading.table.weight, std::nullopt);
  EXPECT_THAT(reading.notes, ElementsAre(HasSubstr("the weight \"w\" is no column")));
}

std::string Members(const std::string& categories) {
  return "<var name='m1' ID='M1'>" + categories + "</var><var name='m2' ID='M2'>" + categories + "</var>";
}

TEST(DdiSets, ofNoughtAndOneCountOne) {
  const DdiReading reading = ReadVariables(
      "<varGrp ID='G' name='media' type='multipleResp' var='M1  M2'><txt>Which "
      "media?</txt><concept>c</concept></varGrp>" +
      Members("<catgry><catValu>0</catValu></catgry><catgry><catValu>1</catValu></catgry>"));
  ASSERT_THAT(reading.table.sets, SizeIs(1));
  const SetDescriptor& set = reading.table.sets[0];
  EXPECT_EQ(set.name, "$media");
  EXPECT_EQ(set.label, "Which media?");
  EXPECT_TRUE(set.isDichotomy);
  EXPECT_EQ(set.countedValue, "1");
  EXPECT_THAT(set.variables, ElementsAre("m1", "m2"));
  EXPECT_EQ(reading.Field("m1").dialect.type, FieldType::Number);
  EXPECT_THAT(Written(reading.table.extras),
              ElementsAre("ddi:varGrp/@ID: {\"$media\":\"G\"}", "ddi:varGrp/concept: {\"$media\":\"c\"}"));
}

TEST(DdiSets, countTheOnlyCategoryOrTheOneThatMeansYes) {
  const auto counted = [](const std::string& categories) {
    const DdiReading reading =
        ReadVariables("<varGrp name='g' type='multipleResp' var='M1 M2'/>" + Members(categories));
    if (reading.table.sets.size() != 1) return std::string("none");
    return reading.table.sets[0].isDichotomy ? reading.table.sets[0].countedValue : "category";
  };
  EXPECT_EQ(counted("<catgry><catValu>5</catValu></catgry>"), "5");
  EXPECT_EQ(
      counted(
          "<catgry><catValu>1</catValu><labl>Ja</labl></catgry><catgry><catValu>2</catValu><labl>Nein</labl></catgry>"),
      "1");
  EXPECT_EQ(counted("<catgry><catValu>1</catValu><labl>Radio</labl></catgry><catgry><catValu>2</catValu><labl>TV</"
                    "labl></catgry>"),
            "category");
  EXPECT_EQ(counted(""), "category");
}

TEST(DdiSets, leaveOutMembersThatAreNotThere) {
  DdiOptions options;
  options.headers = [] { return std::vector<std::string>{"m2"}; };
  const DdiReading reading = ReadVariables(
      "<varGrp name='g' type='multipleResp' var='M1 M2 M3'/>" + Members("<catgry><catValu>1</catValu></catgry>"),
      options);
  ASSERT_THAT(reading.table.sets, SizeIs(1));
  EXPECT_THAT(reading.table.sets[0].variables, ElementsAre("m2"));
  EXPECT_THAT(reading.notes, ElementsAre(AllOf(HasSubstr("\"M3\""), HasSubstr("no variable has that ID")),
                                         AllOf(HasSubstr("\"m1\""), HasSubstr("no column"))));
}

TEST(DdiSets, ofNumbersAndTextsAreNotMade) {
  const DdiReading reading = ReadVariables(
      "<varGrp name='g' type='multipleResp' var='A B'/><var name='a' ID='A'><varFormat type='numeric'/></var>"
      "<var name='b' ID='B'><varFormat type='character'/></var>");
  EXPECT_THAT(reading.table.sets, IsEmpty());
  EXPECT_THAT(reading.notes, ElementsAre(HasSubstr("some of its members are numbers and some are texts")));
}

TEST(DdiGroups, ofOtherKindsAreAttributesOfTheirVariables) {
  const DdiReading reading =
      ReadVariables("<varGrp name='g' type='section' var='M1 M2'><labl>Part A</labl></varGrp>" + Members(""));
  EXPECT_THAT(Written(reading.Field("m2").attributes), ElementsAre("Group=Part A"));
  EXPECT_THAT(
      Written(reading.table.extras),
      ElementsAre(
          "ddi:dataDscr/varGrp: {\"@name\":\"g\",\"@type\":\"section\",\"@var\":\"M1 M2\",\"labl\":\"Part A\"}"));
}

const char* const kTwoFiles =
    "<codeBook><fileDscr ID='F1'><fileTxt><fileName>Households.NSDstat</fileName></fileTxt></fileDscr><fileDscr "
    "ID='F2'>"
    "<fileTxt><fileName>persons.csv</fileName></fileTxt></fileDscr><dataDscr><var name='id' files='F1'/><var "
    "name='size' "
    "files='F1'/><var name='id' files='F2'/><var name='age' files='F2'/><var name='region'/></dataDscr></codeBook>";

std::vector<std::string> NamesOf(const DdiReading& reading) {
  std::vector<std::string> names;
  for (const FieldDescriptor& field : reading.table.fields) names.push_back(field.name);
  return names;
}

DdiOptions WithHeaders(std::vector<std::string> headers, std::optional<std::string> dataPath = "x.csv") {
  return {{}, std::move(dataPath), [headers = std::move(headers)] { return headers; }};
}

TEST(DdiFilesOf, theOneAskedForIsTaken) {
  EXPECT_THAT(NamesOf(ReadDdiText(kTwoFiles, {"F2", "households.csv", {}})), ElementsAre("id", "age", "region"));
  EXPECT_THAT(NamesOf(ReadDdiText(kTwoFiles, {"households", {}, {}})), ElementsAre("id", "size", "region"));
  EXPECT_THAT(ReadDdiText(kTwoFiles, {"F3", {}, {}}).error,
              AllOf(HasSubstr("\"F3\""),
                    HasSubstr("\"F1\" \"Households.NSDstat\" (3 variables), \"F2\" \"persons.csv\" (3 variables)")));
}

TEST(DdiFilesOf, theOneWithTheNameOfTheDataIsTaken) {
  EXPECT_THAT(NamesOf(ReadDdiText(kTwoFiles, {{}, "/tmp/HOUSEHOLDS.csv", {}})), ElementsAre("id", "size", "region"));
}

TEST(DdiFilesOf, theOneThatFitsTheHeaderIsTakenWithANote) {
  const DdiReading reading = ReadDdiText(kTwoFiles, WithHeaders({"age", "id"}));
  EXPECT_THAT(NamesOf(reading), ElementsAre("id", "age", "region"));
  EXPECT_THAT(reading.notes, ElementsAre(AllOf(HasSubstr("\"F2\""), HasSubstr("2 of its 3 variables"))));
}

TEST(DdiFilesOf, aNameThatFitsNoColumnIsNotBelieved) {
  EXPECT_THAT(NamesOf(ReadDdiText(kTwoFiles, WithHeaders({"age"}, "households.csv"))),
              ElementsAre("id", "age", "region"));
}

TEST(DdiFilesOf, severalThatFitAreAnErrorThatListsThem) {
  for (const DdiOptions& options : {DdiOptions{}, WithHeaders({"id"}), WithHeaders({}, "-")})
    EXPECT_THAT(ReadDdiText(kTwoFiles, options).error,
                AllOf(HasSubstr("2 files"), HasSubstr("--resource"), HasSubstr("\"F2\" \"persons.csv\"")));
}

TEST(DdiFilesOf, oneFileTakesAllVariables) {
  const DdiReading reading = ReadDdiText(
      "<codeBook><fileDscr ID='F9'><fileTxt><fileType charset='ISO-8859-15'/></fileTxt></fileDscr><dataDscr><var "
      "name='a' "
      "files='F1'/></dataDscr></codeBook>");
  EXPECT_THAT(NamesOf(reading), ElementsAre("a"));
  EXPECT_EQ(reading.table.dialect.encoding, "ISO-8859-15");
}

TEST(DdiStudy, titleAbstractAndTextsDescribeTheFile) {
  const DdiReading reading = ReadDdiText(
      "<codeBook><docDscr><citation><titlStmt><titl>Doc</titl></titlStmt></citation></docDscr><stdyDscr><citation>"
      "<titlStmt><titl> My\n study </titl><IDNo agency='X'>12</IDNo><IDNo>13</IDNo></titlStmt><prodStmt><prodDate "
      "date='2020'/>"
      "</prodStmt></citation><stdyInfo><abstract><p>one</p><p>two</p></abstract><sumDscr><timePrd date='2019' "
      "event='start'/></sumDscr></stdyInfo><method><notes>m</notes></method></stdyDscr><dataDscr><var "
      "name='a'/></dataDscr>"
      "</codeBook>");
  EXPECT_EQ(reading.table.label, "My study");
  EXPECT_THAT(reading.table.documents, ElementsAre(ElementsAre("one", "two")));
  EXPECT_THAT(Written(reading.table.attributes),
              ElementsAre("Identifier=12|13", "ProductionDate=2020", "TimePeriod=2019"));
  EXPECT_THAT(
      Written(reading.table.extras),
      ElementsAre("ddi:docDscr: {\"citation\":{\"titlStmt\":{\"titl\":\"Doc\"}}}",
                  "ddi:stdyDscr/citation/titlStmt/IDNo/@agency: [\"X\",null]",
                  "ddi:stdyDscr/citation/prodStmt/prodDate/@date: \"2020\"",
                  "ddi:stdyDscr/stdyInfo/sumDscr/timePrd/@date: \"2019\"",
                  "ddi:stdyDscr/stdyInfo/sumDscr/timePrd/@event: \"start\"", "ddi:stdyDscr/method/notes: \"m\""));
}

TEST(DdiStudy, titleOfTheDocumentStandsForAnAbsentOne) {
  EXPECT_EQ(
      ReadDdiText("<codeBook><docDscr><citation><titlStmt><titl>Doc</titl></titlStmt></citation></docDscr><dataDscr>"
                  "<var name='a'/></dataDscr></codeBook>")
          .table.label,
      "Doc");
}

TEST(DdiKept, isWhatNobodyUnderstands) {
  const FieldDescriptor field = Variable(
      "<location StartPos='3' EndPos='4'/><labl>l</labl><embargo date='2030'>wait</embargo><qstn seqNo='7'><forward "
      "qstn='Q2'>skip</forward></qstn><valrng><range min='1' "
      "max='5'/></valrng><bogus><x>1</x><x>2</x></bogus><geoMap/>",
      "ID='V1' rectype='r' source='producer'");
  EXPECT_THAT(Written(field.extras),
              ElementsAre("ddi:location/@StartPos: \"3\"", "ddi:location/@EndPos: \"4\"",
                          "ddi:embargo: {\"@date\":\"2030\",\"#text\":\"wait\"}", "ddi:qstn/@seqNo: \"7\"",
                          "ddi:qstn/forward: {\"@qstn\":\"Q2\",\"#text\":\"skip\"}",
                          "ddi:valrng: {\"range\":{\"@min\":\"1\",\"@max\":\"5\"}}", "ddi:bogus: {\"x\":[\"1\",\"2\"]}",
                          "ddi:@ID: \"V1\"", "ddi:@rectype: \"r\""));
}

TEST(DdiOwnNotes, ruleOverTheElements) {
  const DdiReading reading = ReadDdiText(
      "<codeBook><stdyDscr><notes type='codebook' subject='codebook.weight'>\"b\"</notes></stdyDscr><dataDscr><var "
      "name='a'>"
      "<labl>A</labl><varFormat type='numeric'/><notes type='codebook' subject='type'>\"boolean\"</notes><notes "
      "type='codebook' subject='codebook.role'>\"target\"</notes><notes>shown</notes></var><var "
      "name='b'/></dataDscr></codeBook>");
  EXPECT_EQ(reading.error, "");
  const FieldDescriptor& field = reading.Field("a");
  EXPECT_EQ(field.dialect.type, FieldType::Boolean);
  EXPECT_EQ(field.role, "target");
  EXPECT_EQ(field.title, "A");
  EXPECT_THAT(Written(field.attributes), ElementsAre("Notes=shown"));
  EXPECT_EQ(reading.table.weight, "b");
}

TEST(DdiOwnNotes, thatAreNoJsonAreToldAndThatAreImpossibleRefused) {
  std::vector<std::string> notes;
  Variable("<notes type='codebook' subject='type'>{</notes>", "", &notes);
  EXPECT_THAT(notes, ElementsAre(AllOf(HasSubstr("study.xml:2: "), HasSubstr("\"type\""), HasSubstr("no JSON"))));
  EXPECT_NE(ReadVariables("<var name='a'><notes type='codebook' subject='codebook.measure'>\"x\"</notes></var>").error,
            "");
}

}  // namespace
}  // namespace runtime::data
