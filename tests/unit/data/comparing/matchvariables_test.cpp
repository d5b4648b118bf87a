#include "runtime/data/comparing/matchvariables.h"

#include <gmock/gmock.h>

#include "tests/unit/data/comparing/wave.h"

namespace runtime::data {
namespace {

using test::Numeric;
using test::Wave;

ComparedVariable Labelled(std::string name, std::string label, std::vector<ComparedLabel> labels) {
  ComparedVariable variable = Numeric(std::move(name), std::move(label));
  variable.labels = std::move(labels);
  return variable;
}

const std::vector<ComparedLabel> kYesNo = {{"1", "Yes"}, {"2", "No"}};

/// The one proposal that two single variables lead to.
std::optional<RenameEvidence> ProposalOf(const ComparedVariable& before, const ComparedVariable& after) {
  const std::vector<VariableMatch> matches = MatchVariables(Wave({before}), Wave({after}));
  EXPECT_EQ(matches.at(0).before.has_value(), matches.at(0).renamed.has_value());
  return matches.at(0).renamed;
}

TEST(MatchVariables, prefersTheExactName) {
  const auto matches = MatchVariables(Wave({Numeric("A"), Numeric("a")}), Wave({Numeric("a")}));
  EXPECT_EQ(matches[0].before, 1U);
  EXPECT_FALSE(matches[0].renamed);
}

TEST(MatchVariables, proposesARenameByLabelValueLabelsAndType) {
  const auto proposal = ProposalOf(Labelled("q1", "Sex", kYesNo), Labelled("q01", "Sex", kYesNo));
  ASSERT_TRUE(proposal);
  EXPECT_TRUE(proposal->sameLabels);
  EXPECT_TRUE(proposal->sameType);
  EXPECT_DOUBLE_EQ(proposal->score, 1.0);
}

TEST(MatchVariables, proposesARenameByLabelAndValueLabels) {
  ComparedVariable text = Labelled("q01", "Sex", kYesNo);
  text.type = ComparedType::String;
  const auto proposal = ProposalOf(Labelled("q1", "Sex", kYesNo), text);
  ASSERT_TRUE(proposal);
  EXPECT_FALSE(proposal->sameType);
  EXPECT_DOUBLE_EQ(proposal->score, 0.9);
}

TEST(MatchVariables, proposesARenameByLabelAndType) {
  const auto alone = ProposalOf(Numeric("q1", "Age"), Numeric("age", "Age"));
  ASSERT_TRUE(alone);
  EXPECT_DOUBLE_EQ(alone->score, 0.8);
  const auto otherLabels = ProposalOf(Labelled("q1", "Age", kYesNo), Numeric("age", "Age"));
  ASSERT_TRUE(otherLabels);
  EXPECT_DOUBLE_EQ(otherLabels->score, 0.6);
}

TEST(MatchVariables, proposesNothingWithoutACommonLabel) {
  EXPECT_FALSE(ProposalOf(Labelled("q1", "Sex", kYesNo), Labelled("q2", "Gender", kYesNo)));
  EXPECT_FALSE(ProposalOf(Numeric("q1"), Numeric("q2")));
}

TEST(MatchVariables, proposesNothingByTheLabelAlone) {
  ComparedVariable text = Numeric("q2", "Age");
  text.type = ComparedType::String;
  EXPECT_FALSE(ProposalOf(Numeric("q1", "Age"), text));
}

TEST(MatchVariables, proposesNothingWhereSeveralFit) {
  const auto matches =
      MatchVariables(Wave({Numeric("a", "Other"), Numeric("b", "Other")}), Wave({Numeric("c", "Other")}));
  EXPECT_FALSE(matches[0].before);
}

TEST(MatchVariables, proposesTheBetterOneOfSeveral) {
  const auto matches = MatchVariables(Wave({Numeric("a", "Other"), Labelled("b", "Other", kYesNo)}),
                                      Wave({Labelled("c", "Other", kYesNo)}));
  EXPECT_EQ(matches[0].before, 1U);
}

TEST(MatchVariables, leavesVariablesThatHaveTheirNameAlone) {
  const auto matches = MatchVariables(Wave({Numeric("a", "Age")}), Wave({Numeric("b", "Age"), Numeric("a", "Age")}));
  EXPECT_FALSE(matches[0].before);
  EXPECT_EQ(matches[1].before, 0U);
}

}  // namespace
}  // namespace runtime::data
