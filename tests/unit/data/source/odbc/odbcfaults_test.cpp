#include "runtime/data/source/odbc/odbcfaults.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string Told(OdbcStep step, const OdbcDiagnosis& diagnosis, const std::string& source = "DSN=x",
                 const std::string& secret = "") {
  const OdbcHandle environment;
  return DescribeFault(ConnectionString(source), step, {diagnosis}, environment, secret);
}

TEST(OdbcFaults, sayWhatToDoWhenConnectingFails) {
  EXPECT_THAT(
      Told(OdbcStep::Connecting, {"IM002", 0, "Data source name not found"}),
      AllOf(HasSubstr("odbc:DSN=x: there is no data source \"x\"; those there are: "), HasSubstr("~/.odbc.ini")));
  EXPECT_THAT(Told(OdbcStep::Connecting, {"01000", 0, "Can't open lib 'Nope' : file not found"}, "Driver={Nope}"),
              HasSubstr("odbc:Driver={Nope}: the ODBC driver \"Nope\" is not installed; those installed: "));
  EXPECT_THAT(Told(OdbcStep::Connecting, {"01000", 0, "Can't open lib '/l/x.so' : file not found"}, "Driver=/l/x.so"),
              HasSubstr("the ODBC driver cannot be loaded: Can't open lib '/l/x.so'"));
  for (const char* state : {"28000", "28P01"})
    EXPECT_THAT(Told(OdbcStep::Connecting, {state, 0, "refused"}),
                AllOf(HasSubstr("refuses the user or the password: refused"), HasSubstr("CODEBOOK_ODBC_PASSWORD")));
  EXPECT_THAT(Told(OdbcStep::Connecting, {"08001", 0, "Connection refused"}), HasSubstr("cannot connect: Connection"));
  EXPECT_THAT(Told(OdbcStep::Connecting, {"HYT00", 0, "late"}), HasSubstr("did not answer in time: late"));
}

TEST(OdbcFaults, neverTellThePassword) {
  EXPECT_THAT(Told(OdbcStep::Connecting, {"08001", 0, "bad word hush for PWD=hush"}, "DSN=x", "hush"),
              AllOf(Not(HasSubstr("hush")), HasSubstr("PWD=***")));
}

TEST(OdbcFaults, tellLostConnectionsPermissionsAndTimeoutsApart) {
  for (const char* state : {"08S01", "57P01", "57P02"})
    EXPECT_THAT(Told(OdbcStep::Reading, {state, 0, "gone"}), HasSubstr("the connection was lost: gone")) << state;
  EXPECT_THAT(Told(OdbcStep::Asking, {"HY000", 0, "server closed the connection unexpectedly"}),
              HasSubstr("the connection was lost"));
  EXPECT_THAT(Told(OdbcStep::Asking, {"42501", 0, "permission denied for table t"}), HasSubstr("GRANT SELECT"));
  EXPECT_THAT(Told(OdbcStep::Asking, {"57014", 0, "canceling statement"}), HasSubstr("the server broke the query off"));
  EXPECT_THAT(Told(OdbcStep::Asking, {"42601", 0, "syntax error"}), HasSubstr("the query fails: syntax error"));
  EXPECT_THAT(Told(OdbcStep::Reading, {"HY000", 0, "disk"}), HasSubstr("the rows cannot be read: disk"));
}

}  // namespace
}  // namespace runtime::data
