#include "runtime/data/source/odbc/connectionstring.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/source/sql/askedrows.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(ConnectionStrings, areKeysWithValuesInBracesOrWithout) {
  const ConnectionString source(" DSN = survey ;Driver={Post}}gre;SQL}; Server=a=b;;Empty=");
  ASSERT_EQ(source.keys().size(), 4U);
  EXPECT_EQ(*source.Find("dsn"), "survey");
  EXPECT_EQ(*source.Find("DRIVER"), "Post}gre;SQL");
  EXPECT_EQ(*source.Find("Server"), "a=b");
  EXPECT_EQ(*source.Find("empty"), "");
  EXPECT_EQ(source.Find("none"), nullptr);
  EXPECT_EQ(source.Written(), "DSN=survey;Driver={Post}}gre;SQL};Server=a=b;Empty=");
}

TEST(ConnectionStrings, theirNameKeepsOnlyWhichDatabaseItIs) {
  EXPECT_EQ(
      ConnectionString("Driver={PostgreSQL Unicode};UID=anna;Server=h;Port=1;Database=d;Options=x;sslkey=y").Name(),
      "odbc:Driver={PostgreSQL Unicode};Server=h;Port=1;Database=d");
  EXPECT_EQ(ConnectionString("dsn=x;uid=anna").Name(), "odbc:dsn=x");
}

TEST(ConnectionStrings, passwordsAreRefusedAndNeverRepeated) {
  for (const std::string text : {"DSN=x;PWD=hush", "DSN=x;Password=hush", "DSN=x; pwd ={hush}", "DSN=x;Passwd=hush",
                                 "DSN=x;PRIV_KEY_FILE_PWD=hush", "DSN=x;Auth_AccessToken=hush",
                                 "DSN=x;pqopt={host=a password=hush}", "DSN=x;OAuthClientSecret=hush"})
    EXPECT_THAT(DataErrorOf([&] { ConnectionString source(text); }),
                AllOf(HasSubstr("the list of processes would show"), HasSubstr("CODEBOOK_ODBC_PASSWORD"),
                      Not(HasSubstr("hush"))))
        << text;
  EXPECT_EQ(DataErrorOf([] { ConnectionString source("DSN=x;UID=anna"); }), "");
}

TEST(ConnectionStrings, othersAreRefusedWithoutRepeatingThem) {
  for (const std::string text : {"", ";", "survey", "DSN=x;hush", "=hush", "DSN=x;Driver={hush", "DSN={x}hush"})
    EXPECT_THAT(DataErrorOf([&] { ConnectionString source(text); }),
                AllOf(HasSubstr("odbc:DSN=name"), Not(HasSubstr("hush"))))
        << text;
}

TEST(ConnectionStrings, keysAreAddedOnlyWhereTheyAreMissing) {
  ConnectionString source("DSN=x;fetch=7");
  source.AddMissing("Fetch", "1000");
  source.AddMissing("Protocol", "7.4-0");
  EXPECT_EQ(source.Written(), "DSN=x;fetch=7;Protocol=7.4-0");
}

TEST(ConnectionStrings, valuesOfOursStandInBraces) {
  std::string text = "DSN=x";
  AppendConnectionKey(text, "PWD", "s;}=t", true);
  EXPECT_EQ(text, "DSN=x;PWD={s;}}=t}");
}

}  // namespace
}  // namespace runtime::data
