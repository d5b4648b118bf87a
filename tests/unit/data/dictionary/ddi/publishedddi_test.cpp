// DDI-Codebooks as others published them (tests/data/ddi/SOURCE.md); the expected values were read off the documents.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/open.h"
#include "tests/unit/data/dictionary/ddi/ddi.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

OpenedDataset Open(const std::string& data, const std::string& dictionary) {
  OpenOptions options;
  options.path = DdiPath(data);
  options.dictionary = DdiPath(dictionary);
  return OpenDataset(options);
}

const VariableRecord& VariableOf(const OpenedDataset& opened, const std::string& name) {
  const Dictionary& dictionary = opened.dataset->dictionary();
  return *dictionary.variables.at(static_cast<std::size_t>(dictionary.FindVariable(name)));
}

std::vector<std::string> TextsOf(const std::vector<Note>& notes) {
  std::vector<std::string> texts;
  for (const Note& note : notes) texts.push_back(note.text);
  return texts;
}

const char* const kHouseholds = "household-budget/microdata_HBS_household_raw.csv";
const char* const kPersons = "household-budget/microdata_HBS_individual_raw.csv";
const char* const kBudget = "household-budget/HBS_2023_synth_ground-truth.xml";

TEST(HouseholdBudget, theFileOfHouseholdsIsFoundByItsHeader) {
  const OpenedDataset opened = Open(kHouseholds, kBudget);
  EXPECT_THAT(TextsOf(opened.notes), Contains(AllOf(HasSubstr("HBS_2023_synth_ground-truth.xml:181"),
                                                    HasSubstr("\"F1\""), HasSubstr("35 of its 46 variables"))));
  EXPECT_EQ(opened.dataset->dictionary().variables.size(), 40U);
  EXPECT_EQ(opened.dataset->dictionary().label,
            "Individual and Household Population, 2023 [Ground Truth]: Household Budget Variables");

  const VariableRecord& id = VariableOf(opened, "hid");
  EXPECT_EQ(id.label, "Household identifier");
  EXPECT_EQ(id.width, 11);
  EXPECT_THAT(LabelsOf(id), IsEmpty());

  const VariableRecord& floor = VariableOf(opened, "floor");
  EXPECT_EQ(floor.label, "Main material of the floor");
  EXPECT_EQ(floor.level, MAVO_Variable_Enumerations::kLevelNominal);
  EXPECT_THAT(LabelsOf(floor),
              ElementsAre("1.0=Earth", "2.0=Cement/concrete", "3.0=Tile", "4.0=Stone", "5.0=Wood", "6.0=Other"));
  EXPECT_THAT(Written(floor.attributes),
              ElementsAre("Question=What is the main material of the dwelling floor?",
                          "PostQuestion=Record observation. If observation is not possible, ask the respondent to "
                          "determine the material of the  floor."));

  const VariableRecord& expenditure = VariableOf(opened, "exp_01");
  EXPECT_EQ(expenditure.level, MAVO_Variable_Enumerations::kLevelScale);
  EXPECT_EQ(expenditure.width, 0);
}

TEST(HouseholdBudget, theFileOfPersonsIsFoundByItsHeader) {
  const OpenedDataset opened = Open(kPersons, kBudget);
  EXPECT_THAT(TextsOf(opened.notes), ElementsAre(AllOf(HasSubstr("\"F2\""), HasSubstr("10 of its 10 variables"))));
  const VariableRecord& relation = VariableOf(opened, "relation");
  EXPECT_EQ(relation.label, "Relationship to the head of household");
  EXPECT_THAT(LabelsOf(relation),
              ElementsAre("1.0=Head", "2.0=Spouse/partner", "3.0=Child", "4.0=Other relative", "5.0=Non-relative"));
  EXPECT_THAT(
      LabelsOf(VariableOf(opened, "migrate_recent")),
      ElementsAre("0.0=NIU (not in universe)", "10.0=Same major administrative unit",
                  "11.0=Same major, same minor administrative u", "12.0=Same major, different minor administrat",
                  "20.0=Different major administrative unit", "30.0=Abroad", "99.0=Unknown/missing"));
  EXPECT_THAT(Written(VariableOf(opened, "age_month").attributes),
              ElementsAre("Question=Age in months", "PostQuestion=The value must be 0 to 59",
                          "Universe=For children aged 0 to 4 years:"));
  EXPECT_THAT(LabelsOf(VariableOf(opened, "age_month")), IsEmpty());
  EXPECT_EQ(VariableOf(opened, "age").level, MAVO_Variable_Enumerations::kLevelScale);
}

TEST(HouseholdBudget, theStudyIsDescribed) {
  const DdiReading reading = ReadDdiFile(DdiPath(kBudget), {"F2", {}, {}});
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.notes, IsEmpty());
  ASSERT_THAT(reading.table.documents, SizeIs(1));
  EXPECT_THAT(reading.table.documents[0], ElementsAre(AllOf(StartsWith("This synthetic dataset constitutes a subset"),
                                                            HasSubstr("Complutense University of Madrid."))));
  const std::vector<std::string> attributes = Written(reading.table.attributes);
  for (const char* text : {"AlternativeTitle=HBS2023", "ProductionDate=August 03, 2025", "Country=Imaginary country",
                           "Keywords=synthetic data|open data|safe data|demographics|education|labour, employment",
                           "TimePeriod=2023|2023", "AnalysisUnit=household, Individual",
                           "FileContents=Synthetic data, individual-level labour force variables, full population"})
    EXPECT_THAT(attributes, Contains(text));
  const std::vector<std::string> extras = Written(reading.table.extras);
  EXPECT_THAT(extras, Contains("ddi:fileDscr/fileTxt/fileName: \"LFS_2023_synth_individual_ground-truth\""));
  EXPECT_THAT(extras, Contains("ddi:stdyDscr/stdyInfo/sumDscr/timePrd/@event: [\"start\",\"end\"]"));
}

TEST(HouseholdBudget, withoutDataTheFileMustBeNamed) {
  EXPECT_THAT(
      ReadDdiFile(DdiPath(kBudget)).error,
      AllOf(HasSubstr("\"F1\" \"LFS_2023_synth_household_ground-truth\" (46 variables)"),
            HasSubstr("\"F2\" \"LFS_2023_synth_individual_ground-truth\" (10 variables)"), HasSubstr("--resource")));
}

TEST(HouseholdBudget, itsSiblingsAreRead) {
  struct Sibling {
    const char* name;
    std::size_t households;
    std::size_t persons;
  };
  for (const Sibling& sibling : {Sibling{"LFS_2023_synth_ground-truth", 6, 13},
                                 {"WLD_2023_SYNTH-CEN-EN_v01_M", 47, 26},
                                 {"frame_2023_synth_perfect", 6, 5}}) {
    const std::string path = DdiPath("household-budget/" + std::string(sibling.name) + ".xml");
    const DdiReading households = ReadDdiFile(path, {"F1", {}, {}});
    EXPECT_EQ(households.error, "");
    EXPECT_THAT(households.table.fields, SizeIs(sibling.households)) << path;
    const DdiReading persons = ReadDdiFile(path, {"F2", {}, {}});
    EXPECT_THAT(persons.table.fields, SizeIs(sibling.persons)) << path;
    EXPECT_EQ(persons.Field("hid").title, "Household identifier");
  }
}

TEST(TinySurvey, labelsAreTheQuestions) {
  const OpenedDataset opened = Open("tiny/101.csv", "tiny/101.xml");
  EXPECT_EQ(VariableOf(opened, "respondentname").label, "What is your name?");
  EXPECT_EQ(VariableOf(opened, "age").label, "What is your age?");
  EXPECT_EQ(VariableOf(opened, "age").level, MAVO_Variable_Enumerations::kLevelScale);
  EXPECT_EQ(VariableOf(opened, "thankyou").label, "Thank you for your participation!");
  EXPECT_EQ(opened.dataset->dictionary().label, "Basic Example Survey");
  EXPECT_THAT(Written(opened.dataset->dictionary().attributes),
              ElementsAre("Identifier=Basic Survey", "ProductionDate=2026-05-05", "Version=1.0"));
}

TEST(TinySurvey, numericVariableWithTextCodesIsText) {
  const OpenedDataset opened = Open("tiny/101.csv", "tiny/101.xml");
  const VariableRecord& consent = VariableOf(opened, "consent");
  EXPECT_EQ(consent.width, 3);
  EXPECT_THAT(LabelsOf(consent), ElementsAre("no =No", "yes=Yes"));
  EXPECT_THAT(TextsOf(opened.notes),
              ElementsAre(AllOf(HasSubstr("101.xml:32: variable \"consent\""), HasSubstr("\"yes\""))));
}

TEST(GermanStudies, multipleResponsesBecomeSets) {
  const DdiReading reading = ReadDdiFile(DdiPath("german/studies/svr_fb_studie.xml"));
  EXPECT_EQ(reading.error, "");
  EXPECT_THAT(reading.table.fields, SizeIs(129));
  std::vector<std::string> sets;
  for (const SetDescriptor& set : reading.table.sets) {
    EXPECT_TRUE(set.isDichotomy) << set.name;
    EXPECT_EQ(set.countedValue, "1") << set.name;
    sets.push_back(set.name + " " + std::to_string(set.variables.size()));
  }
  EXPECT_THAT(sets, ElementsAre("$selbstverstaendnis_migrantenorganisation 6", "$aktivitaetsbereiche 24",
                                "$nutzergruppen 16", "$religionszugehoerigkeit 13", "$angebote_fluechtlinge 14",
                                "$bezahlte_beschaeftigung 9", "$foerderer_2019 14"));
  EXPECT_EQ(reading.table.sets[2].label, "Wer nutzt die Angebote Ihrer Organisation oft?");
  const FieldDescriptor& club = reading.Field("eingetragener_verein");
  EXPECT_THAT(Written(club.categories), Contains("1=ja"));
  EXPECT_THAT(Written(club.attributes), Contains("Concept=Rechtsform als eingetragener Verein"));
  EXPECT_THAT(Written(reading.table.attributes), Contains("ProductionDate=1. Dezember 2020"));
}

TEST(GermanStudies, setsOfAGroupOfGroupsAreFound) {
  const DdiReading reading = ReadDdiFile(DdiPath("german/studies/cdl_instrumente.xml"));
  EXPECT_THAT(reading.notes, IsEmpty());
  ASSERT_THAT(reading.table.sets, SizeIs(1));
  EXPECT_EQ(reading.table.sets[0].name, "$geschlecht_choices");
  EXPECT_EQ(reading.table.sets[0].label, "Was ist Ihr Geschlecht?");
  EXPECT_THAT(reading.table.sets[0].variables,
              ElementsAre("geschlecht_weiblich", "geschlecht_maennlich", "geschlecht_nicht_binaer",
                          "geschlecht_kein_geschlecht", "geschlecht_keine_angabe"));
  EXPECT_EQ(reading.Field("geschlecht_weiblich").title, "weiblich");
  EXPECT_EQ(reading.Field("nps").title,
            "Wie wahrscheinlich ist es, dass Sie <ETWAS> einer Freund*in oder Kolleg*in weiterempfehlen werden?");
  EXPECT_THAT(reading.Field("nps").categories, SizeIs(11));
  EXPECT_THAT(Written(reading.Field("nps").categories), Contains("10=10 - Äußerst wahrscheinlich"));
  EXPECT_EQ(reading.Field("geschlecht_other").dialect.type, FieldType::String);
}

TEST(GermanStudies, gridsAreGroupsAndListsAreLines) {
  const DdiReading reading = ReadDdiFile(DdiPath("german/studies/prove_it.xml"));
  EXPECT_THAT(reading.notes, IsEmpty());
  EXPECT_THAT(reading.table.fields, SizeIs(28));
  EXPECT_THAT(reading.table.sets, IsEmpty());
  EXPECT_EQ(reading.Field("space_use_freq").title, "How often do you use your local <PROJECT/SPACE>?");
  EXPECT_THAT(Written(reading.Field("space_use_freq").categories),
              ElementsAre("1=Frequently", "2=Sometimes", "3=Rarely", "4=Never"));
  std::size_t grouped = 0;
  for (const FieldDescriptor& field : reading.table.fields)
    for (const std::string& attribute : Written(field.attributes))
      grouped += attribute.rfind("Group=", 0) == 0 ? 1U : 0U;
  EXPECT_EQ(grouped, 8U);
  ASSERT_THAT(reading.table.documents, SizeIs(1));
  const std::vector<std::string>& lines = reading.table.documents[0];
  ASSERT_THAT(lines, SizeIs(12));
  EXPECT_THAT(lines[0], StartsWith("To make the survey in the Prove It! Toolkit as simple to administer"));
  EXPECT_EQ(lines[6], "People's networks and contacts:");
  EXPECT_EQ(lines[7], "for achieving change");
}

TEST(GermanStudies, standardsAreRead) {
  const DdiReading reading = ReadDdiFile(DdiPath("german/studies/demo.xml"));
  EXPECT_THAT(reading.table.fields, SizeIs(45));
  EXPECT_THAT(Written(reading.Field("geschlecht").categories), ElementsAre("1=männlich", "2=weiblich", "3=divers"));
  EXPECT_EQ(reading.Field("geschlecht").title, "Welches Geschlecht haben Sie?");
  EXPECT_EQ(reading.Field("geburtsdatum").measure, "scale");
  EXPECT_THAT(Written(reading.table.attributes), Contains("Identifier=10.21241/ssoar.94099"));
}

/// The notes and the error of one of the samples that break a rule of their project.
DdiReading Sample(const std::string& name) { return ReadDdiFile(DdiPath("german/rules/" + name + ".xml")); }

TEST(GermanRules, whatBreaksThemIsTold) {
  EXPECT_THAT(Sample("valid_sample").notes, IsEmpty());
  EXPECT_THAT(Sample("invalid_duplicate_id").notes,
              ElementsAre(AllOf(HasSubstr("invalid_duplicate_id.xml:22: the ID \"V1\" of variable \"q2\""))));
  EXPECT_THAT(Sample("invalid_missing_label").notes,
              ElementsAre(HasSubstr("invalid_missing_label.xml:12: variable \"V1\" has no name")));
  EXPECT_THAT(Sample("invalid_no_categories").notes,
              ElementsAre(AllOf(HasSubstr("invalid_no_categories.xml:12: variable \"q1\""), HasSubstr("categories"))));
}

TEST(GermanRules, whatOthersAllowIsRead) {
  const DdiReading label = Sample("invalid_labl_on_var");
  EXPECT_THAT(label.notes, IsEmpty());
  EXPECT_EQ(label.Field("bad_var").title, "This should not be here");
  const DdiReading section = Sample("invalid_vargrp_bad_type");
  EXPECT_THAT(section.notes, IsEmpty());
  EXPECT_THAT(Written(section.Field("some_var").attributes), Contains("Group=Section groups are not supported"));
  const DdiReading bogus = Sample("invalid_xsd_bad_element");
  EXPECT_THAT(Written(bogus.Field("q1").extras),
              Contains("ddi:bogusElement: \"This element does not exist in the DDI schema\""));
}

}  // namespace
}  // namespace runtime::data
