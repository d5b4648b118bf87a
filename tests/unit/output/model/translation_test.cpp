// What the language of a report changes, and what it leaves.
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "host/data/datasource.h"
#include "host/output/celltext.h"

#include "runtime/data/builder.h"
#include "runtime/output/binding.h"
#include "runtime/output/language/catalog.h"
#include "runtime/output/model/report.h"

using runtime::output::BindOutput;
using runtime::output::Catalog;
using runtime::output::CellContent;
using runtime::output::OutputBinding;

namespace {

class Translation : public ::testing::Test {
 protected:
  Translation() {
    binding.catalog = catalog.get();
    previous = BindOutput(&binding);
  }
  ~Translation() override { BindOutput(previous); }

  std::shared_ptr<const Catalog> catalog = Catalog::Of("de");
  OutputBinding binding;
  OutputBinding* previous = nullptr;
};

}  // namespace

TEST_F(Translation, isOfFixedTexts) {
  const BpString text("Missing Values", true);
  EXPECT_EQ(text.content()->text, "Fehlende Werte");
  EXPECT_TRUE(text.content()->fixed);
  EXPECT_EQ(text.content()->kind, CellContent::Kind::Text);
}

TEST_F(Translation, leavesTextsFromTheData) {
  const BpString text("Missing Values", false);
  EXPECT_EQ(text.content()->text, "Missing Values");
  EXPECT_FALSE(text.content()->fixed);
}

TEST_F(Translation, leavesAFixedTextThatTheCatalogDoesNotHold) {
  EXPECT_EQ(BpString("no such words", true).content()->text, "no such words");
  EXPECT_EQ(BpString("", true).content()->text, "");
}

TEST_F(Translation, leavesNumbersAsTheyAreFormatted) {
  EXPECT_EQ(BpNumber(1234.5, {kFormatComma, 0, 1}).content()->text, "1,234.5");
}

TEST_F(Translation, leavesVariablesWhoseNameIsAWordOfTheProgram) {
  runtime::data::DatasetBuilder builder;
  builder.AddString("Count", {"Valid"}).Label("Mean");
  const MAVO_DataSource source(builder.Build());
  const MAVO_Variable& variable = source.GetVariable(0);
  EXPECT_EQ(BpVariable(variable, BpVariable::kName).content()->text, "Count");
  EXPECT_EQ(BpVariable(variable, BpVariable::kLabel).content()->text, "Mean");
  const BpDataValue value(variable, reinterpret_cast<const OBS*>("Valid"), BpDataValue::kFormattedValue);
  EXPECT_EQ(value.content()->text, "Valid");
}

TEST_F(Translation, isEnglishWithoutACatalog) {
  binding.catalog = nullptr;
  EXPECT_EQ(BpString("Missing Values", true).content()->text, "Missing Values");
  BindOutput(nullptr);
  EXPECT_EQ(BpString("Missing Values", true).content()->text, "Missing Values");
  BindOutput(&binding);
}
