#include "runtime/data/source/sql/pieces.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/source/sql/exactwhole.h"
#include "tests/unit/data/source/sql/anynumbers.h"
#include "tests/unit/data/source/sql/askedrows.h"
#include "tests/unit/data/source/sqlitefolder.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;

class Pieces : public SqliteFolder {
 protected:
  /// A table `t` whose column `x` holds these very doubles.
  std::unique_ptr<SqlConnection> TableOf(const std::vector<double>& numbers) const {
    const std::string path = Write("DROP TABLE IF EXISTS t; CREATE TABLE t (x REAL)");
    sqlite3* database = nullptr;
    sqlite3_stmt* insert = nullptr;
    EXPECT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    sqlite3_exec(database, "BEGIN", nullptr, nullptr, nullptr);
    EXPECT_EQ(sqlite3_prepare_v2(database, "INSERT INTO t VALUES (?)", -1, &insert, nullptr), SQLITE_OK);
    for (const double number : numbers) {
      sqlite3_bind_double(insert, 1, number);
      EXPECT_EQ(sqlite3_step(insert), SQLITE_DONE);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(database);
    return OpenSqlConnection("sqlite:" + path);
  }

  /// What the answers of a question for each piece add up to. `form` has a place for the piece.
  static mpq_class PutTogether(SqlConnection& connection, const PiecePlan& plan, const char* form) {
    mpq_class sum = 0;
    for (int piece = 0; piece < plan.count; ++piece) {
      const std::string expression = PieceExpression(DialectOf(connection.engine()), "x", plan, piece);
      for (const auto& cell : AskedColumn(connection, fmt::format(fmt::runtime(form), expression)))
        sum += Scaled(WholeOfText(cell.value_or("no number")), plan.exponent(piece));
    }
    return sum;
  }

  static PiecePlan PlanFor(const std::vector<double>& numbers, int bits) {
    int top = TopBit(numbers.front());
    int lowest = LowestBit(numbers.front());
    for (const double number : numbers) {
      top = std::max(top, TopBit(number));
      lowest = std::min(lowest, LowestBit(number));
    }
    const std::optional<PiecePlan> plan = PlanPieces(top, lowest, bits);
    EXPECT_TRUE(plan) << top << " " << lowest << " " << bits;
    return plan.value_or(PiecePlan{});
  }
};

TEST_F(Pieces, ofNumbersOfEitherSignSumUpToTheExactSum) {
  std::mt19937_64 random(1);
  for (const int bits : {20, 31, 43, 52}) {
    std::vector<double> numbers;
    const int reach = 2 * bits - 27;  // with 53 bits of a number, four pieces
    for (int i = 0; i < 300; ++i)
      numbers.push_back(AnyPositive(random, -reach, std::max(-reach, reach - 20)) * (random() % 2 == 0 ? 1.0 : -1.0));
    const PiecePlan plan = PlanFor(numbers, bits);
    EXPECT_GE(plan.count, 3);
    const mpq_class sum = PutTogether(*TableOf(numbers), plan, "SELECT SUM({}) FROM t");
    EXPECT_TRUE(sum == ExactSum(numbers)) << bits << " " << sum.get_d();
  }
}

TEST_F(Pieces, ofPositiveNumbersMayHaveMoreBitsThanADouble) {
  std::mt19937_64 random(2);
  std::vector<double> numbers;
  for (int i = 0; i < 300; ++i) numbers.push_back(AnyPositive(random, -200, 110));
  const PiecePlan plan = PlanFor(numbers, 62);
  const mpq_class sum = PutTogether(*TableOf(numbers), plan, "SELECT {} FROM t");  // their sum is beyond 64 bits
  EXPECT_TRUE(sum == ExactSum(numbers)) << sum.get_d();
}

TEST_F(Pieces, holdZeroAndNumbersAtTheEdgesOfAPiece) {
  const std::vector<double> numbers = {
      0.0, -0.0, 0x1p52, -0x1p52, 0x1p-52, -0x1p-52, 1.0, -1.0, 0x1.fffffffffffffp51, -0x1.fffffffffffffp51};
  const PiecePlan plan = *PlanPieces(53, -52, 52);
  const auto connection = TableOf(numbers);
  std::vector<mpq_class> together(numbers.size());
  for (int piece = 0; piece < plan.count; ++piece) {
    const auto cells =
        AskedColumn(*connection, "SELECT " + PieceExpression(DialectOf("SQLite"), "x", plan, piece) + " FROM t");
    ASSERT_EQ(cells.size(), numbers.size());
    for (std::size_t i = 0; i < cells.size(); ++i) together[i] += Scaled(WholeOfText(*cells[i]), plan.exponent(piece));
  }
  for (std::size_t i = 0; i < numbers.size(); ++i) EXPECT_TRUE(together[i] == mpq_class(numbers[i])) << numbers[i];
}

TEST_F(Pieces, oneAloneIsTheNumberInItsUnit) {
  const std::vector<double> numbers = {0.0, -0.0, 0.25, -0.25, 0x1p40, 0x1p40 + 0.25, -0x1p40 - 0.25};
  const PiecePlan plan = *PlanPieces(41, -2, 52);
  ASSERT_EQ(plan.count, 1);
  const mpq_class sum = PutTogether(*TableOf(numbers), plan, "SELECT SUM({}) FROM t");
  EXPECT_TRUE(sum == ExactSum(numbers)) << sum.get_d();
}

TEST_F(Pieces, tellWhetherANumberHasBitsBelowTheLastOne) {
  const auto connection = TableOf({1.0, -1.0, 1.0 + 0x1p-10, -1.0 - 0x1p-10, 0x1p-11, -0x1p-11, 0.0});
  const auto bitsBelow = [&](int lowest) {
    const PiecePlan plan = *PlanPieces(1, lowest, 1 - lowest);
    EXPECT_EQ(plan.lowestExponent(), lowest);
    const std::string condition = HasBitsBelow(DialectOf("SQLite"), "x", plan);
    return AskedColumn(*connection, "SELECT CASE WHEN " + condition + " THEN 1 ELSE 0 END FROM t");
  };
  EXPECT_THAT(bitsBelow(-9), ElementsAre("0", "0", "1", "1", "1", "1", "0"));
  EXPECT_THAT(bitsBelow(-10), ElementsAre("0", "0", "0", "0", "1", "1", "0"));
  EXPECT_THAT(bitsBelow(-11), ElementsAre("0", "0", "0", "0", "0", "0", "0"));
}

TEST(PiecePlans, reachDownToTheLowestBit) {
  for (const int bits : {8, 31, 52, 62})
    for (int lowest = -6 * bits + 10; lowest <= 10; ++lowest) {
      const std::optional<PiecePlan> plan = PlanPieces(10, lowest, bits);
      ASSERT_TRUE(plan) << bits << " " << lowest;
      EXPECT_LE(plan->lowestExponent(), lowest);
      EXPECT_GE(plan->count, 1);
    }
}

TEST(PiecePlans, areNoneForNumbersTooFarApartOrTooFarOut) {
  EXPECT_FALSE(PlanPieces(10, 10 - 6 * 31 - 1, 31));
  EXPECT_FALSE(PlanPieces(901, 890, 31));
  EXPECT_FALSE(PlanPieces(-880, -901, 31));
}

}  // namespace
}  // namespace runtime::data
