// REDCap data dictionaries.
#include "runtime/data/dictionary/redcap/readredcap.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/dictionary/redcap/redcapfield.h"
#include "tests/unit/data/dictionary/ddi/ddi.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kDownloaded =
    "\"Variable / Field Name\",\"Form Name\",\"Section Header\",\"Field Type\",\"Field Label\",\"Choices, "
    "Calculations, OR "
    "Slider Labels\",\"Field Note\",\"Text Validation Type OR Show Slider Number\",\"Text Validation Min\",\"Text "
    "Validation "
    "Max\",Identifier?,\"Branching Logic (Show field only if...)\",\"Required Field?\",\"Custom Alignment\",\"Question "
    "Number (surveys only)\",\"Matrix Group Name\",\"Matrix Ranking?\",\"Field Annotation\"\n";
const std::string kOfInterface =
    "field_name,form_name,section_header,field_type,field_label,select_choices_or_calculations,field_note,"
    "text_validation_type_or_show_slider_number,text_validation_min,text_validation_max,identifier,branching_logic,"
    "required_field,custom_alignment,question_number,matrix_group_name,matrix_ranking,field_annotation\n";

/// Of rows of the first six columns or more.
DdiReading ReadRows(const std::string& rows, const std::vector<std::string>& headers = {},
                    const std::string& header = kDownloaded) {
  const TemporaryFolder folder;
  DdiReading reading;
  std::vector<Note> notes;
  try {
    reading.table = ReadRedcap(
        folder.Write("dictionary.csv", header + rows), [&] { return headers; }, notes);
  } catch (const DataError& error) {
    reading.error = error.what();
  }
  for (const Note& note : notes) reading.notes.push_back(note.text);
  return reading;
}

TEST(RedcapChoices, mayHaveBlanksAnywhere) {
  EXPECT_THAT(Written(ReadRedcapChoices("1, Yes | 2, No")), ElementsAre("1=Yes", "2=No"));
  EXPECT_THAT(Written(ReadRedcapChoices("1,Yes|2,No")), ElementsAre("1=Yes", "2=No"));
  EXPECT_THAT(Written(ReadRedcapChoices("  1 ,  Yes, a lot  |\n  -9 , No answer | | ")),
              ElementsAre("1=Yes, a lot", "-9=No answer"));
  EXPECT_THAT(Written(ReadRedcapChoices("a | 2,")), ElementsAre("a", "2"));
  EXPECT_THAT(ReadRedcapChoices(""), IsEmpty());
}

TEST(RedcapChoices, ofCheckboxesAreColumns) {
  EXPECT_EQ(CheckboxColumn("media", "1"), "media___1");
  EXPECT_EQ(CheckboxColumn("media", "-9"), "media____9");
  EXPECT_EQ(CheckboxColumn("media", "NA"), "media___na");
}

TEST(RedcapHeader, isKnownAsDownloadedAndOfTheInterface) {
  const TemporaryFolder folder;
  EXPECT_TRUE(IsRedcapDictionary(folder.Write("a.csv", kDownloaded)));
  EXPECT_TRUE(IsRedcapDictionary(folder.Write("b.csv", "\xEF\xBB\xBF" + kOfInterface)));
  EXPECT_FALSE(IsRedcapDictionary(folder.Write("c.csv", "name,label,type\na,b,c\n")));
  EXPECT_FALSE(IsRedcapDictionary(folder.Write("d.csv", "")));
  EXPECT_FALSE(IsRedcapDictionary(folder.Path("none.csv")));
  EXPECT_EQ(ReadRows("age,f,,text,Age,\n", {}, kOfInterface).Field("age").title, "Age");
}

TEST(RedcapFields, ofChoicesHaveCategories) {
  const DdiReading reading = ReadRows(
      "sex,f,,radio,Sex,\"1, Male | 2, Female\"\nplace,f,,dropdown,Place,\"01, A | 02, "
      "B\"\ngrade,f,,radio,Grade,\"0.5, a | "
      "1, b\"\nok,f,,yesno,OK?,\nright,f,,truefalse,Right?,\n");
  EXPECT_THAT(reading.notes, IsEmpty());
  EXPECT_THAT(Written(reading.Field("sex").categories), ElementsAre("1=Male", "2=Female"));
  EXPECT_EQ(reading.Field("sex").dialect.type, FieldType::Integer);
  EXPECT_TRUE(reading.Field("sex").hasCategories);
  EXPECT_EQ(reading.Field("place").dialect.type, FieldType::String);
  EXPECT_EQ(reading.Field("grade").dialect.type, FieldType::Number);
  EXPECT_THAT(Written(reading.Field("ok").categories), ElementsAre("1=Yes", "0=No"));
  EXPECT_THAT(Written(reading.Field("right").categories), ElementsAre("1=True", "0=False"));
}

TEST(RedcapFields, typesAreThoseOfTheValidation) {
  const auto read = [](const std::string& validation) {
    return ReadRows("x,f,,text,X,,," + validation + "\n").Field("x").dialect;
  };
  EXPECT_EQ(read("").type, FieldType::Inferred);
  EXPECT_EQ(read("integer").type, FieldType::Integer);
  EXPECT_EQ(read("number").type, FieldType::Number);
  EXPECT_EQ(read("number_2dp_comma_decimal").decimalChar, ",");
  EXPECT_EQ(read("date_dmy").type, FieldType::Date);
  EXPECT_EQ(read("date_dmy").format, "default");
  EXPECT_EQ(read("datetime_ymd").format, "%Y-%m-%d %H:%M");
  EXPECT_EQ(read("datetime_seconds_mdy").format, "%Y-%m-%d %H:%M:%S");
  EXPECT_EQ(read("time").type, FieldType::Time);
  EXPECT_EQ(read("email").type, FieldType::String);
  EXPECT_EQ(ReadRows("x,f,,notes,X,\n").Field("x").dialect.type, FieldType::String);
  EXPECT_EQ(ReadRows("x,f,,slider,X,low | high\n").Field("x").measure, "scale");
}

TEST(RedcapFields, checkboxesAreColumnsAndASet) {
  const DdiReading reading = ReadRows("a,f,,text,A,\nmedia,f,,checkbox,Which media?,\"1, Radio | 2, TV | -9, None\"\n");
  ASSERT_THAT(reading.table.fields, SizeIs(4));
  EXPECT_EQ(reading.Field("media___1").title, "Radio");
  EXPECT_THAT(Written(reading.Field("media____9").categories), ElementsAre("1=Checked", "0=Unchecked"));
  EXPECT_THAT(Written(reading.Field("media___2").attributes),
              ElementsAre("Question=Which media?", "Form=f", "FieldType=checkbox"));
  ASSERT_THAT(reading.table.sets, SizeIs(1));
  const SetDescriptor& set = reading.table.sets[0];
  EXPECT_EQ(set.name, "$media");
  EXPECT_EQ(set.label, "Which media?");
  EXPECT_TRUE(set.isDichotomy);
  EXPECT_EQ(set.countedValue, "1");
  EXPECT_THAT(set.variables, ElementsAre("media___1", "media___2", "media____9"));
}

TEST(RedcapFields, membersThatTheDataLackAreLeftOut) {
  const DdiReading reading =
      ReadRows("media,f,,checkbox,M,\"1, Radio | 2, TV\"\nlost,f,,checkbox,L,\"1, a\"\n", {"media___2"});
  ASSERT_THAT(reading.table.sets, SizeIs(1));
  EXPECT_THAT(reading.table.sets[0].variables, ElementsAre("media___2"));
  EXPECT_THAT(reading.notes, ElementsAre(AllOf(HasSubstr("dictionary.csv:2: "), HasSubstr("\"media___1\""))));
}

TEST(RedcapFields, whatElseIsSaidIsAttributes) {
  const DdiReading reading = ReadRows(
      "bmi,exam,Body,calc,BMI,[weight]/([height]*[height]),kg/m2,,,,,,,,,,,\n"
      "weight,exam,,text,Weight,,,number,20,300,y,[sex] = '1',y,RH,3a,grid,,@HIDDEN\n"
      "name,other,,text,Name,,,,,,,,,,,,,\n");
  EXPECT_THAT(Written(reading.Field("bmi").attributes),
              ElementsAre("Form=exam", "Section=Body", "FieldType=calc", "Calculation=[weight]/([height]*[height])",
                          "Notes=kg/m2"));
  EXPECT_THAT(Written(reading.Field("weight").attributes),
              ElementsAre("Form=exam", "Section=Body", "FieldType=text", "Validation=number", "Identifier=yes",
                          "BranchingLogic=[sex] = '1'", "Required=yes", "CustomAlignment=RH", "QuestionNumber=3a",
                          "MatrixGroup=grid", "Annotation=@HIDDEN"));
  EXPECT_THAT(Written(reading.Field("weight").extras), ElementsAre("constraints: {\"minimum\":20,\"maximum\":300}"));
  EXPECT_THAT(Written(reading.Field("name").attributes), ElementsAre("Form=other", "FieldType=text"));
}

TEST(RedcapFields, descriptiveTextsAreNoneAndFormsHaveAState) {
  const DdiReading reading =
      ReadRows("intro,f,,descriptive,Welcome,\na,f,,text,A,\nb,g,,text,B,\n", {"a", "f_complete", "b"});
  ASSERT_THAT(reading.table.fields, SizeIs(3));
  EXPECT_EQ(reading.table.fields[1].name, "f_complete");
  EXPECT_THAT(Written(reading.table.fields[1].categories), ElementsAre("0=Incomplete", "1=Unverified", "2=Complete"));
}

TEST(RedcapFaults, areToldWithTheirLine) {
  EXPECT_THAT(ReadRows("a,f,,text,A,\n,f,,text,B,\n").error,
              AllOf(HasSubstr("dictionary.csv:3: "), HasSubstr("no field name")));
  EXPECT_THAT(ReadRows("a,f,,\"text,A,\n").error, AllOf(HasSubstr("dictionary.csv:2: "), HasSubstr("quote")));
  EXPECT_THAT(ReadRows("a,f,,text,A,\na,f,,text,B,\n").notes,
              ElementsAre(HasSubstr("dictionary.csv:3: there is a field \"a\"")));
  EXPECT_THAT(ReadRows("a,f,,radio,A,\n").notes,
              ElementsAre(AllOf(HasSubstr("dictionary.csv:2: "), HasSubstr("1, Yes | 2, No"))));
  EXPECT_THAT(ReadRows("a,f,,radio,A,\"1, x | 1, y\"\n").notes, ElementsAre(HasSubstr("\"1\" twice")));
  EXPECT_THAT(ReadRows("a,f,,hologram,A,\n").notes, ElementsAre(HasSubstr("\"hologram\"")));
  EXPECT_THAT(ReadRows("a\n").notes, ElementsAre(HasSubstr("type")));
}

}  // namespace
}  // namespace runtime::data
