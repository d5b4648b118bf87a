#include "runtime/parser/unknowncommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using runtime::parser::ReadCommands;
using runtime::parser::UnknownCommandMessage;
using testing::StartsWith;

TEST(UnknownCommand, namesTheNearestCommandAndThePlace) {
  EXPECT_EQ(UnknownCommandMessage(ReadCommands("\n codebok x.")[0], {"CODEBOOK"}),
            "Unknown command \"codebok\" (line 2, column 2). Did you mean CODEBOOK? Expected CODEBOOK.\n"
            "   codebok x.\n"
            "   ^");
}

TEST(UnknownCommand, listsTheKnownOnes) {
  EXPECT_EQ(UnknownCommandMessage(ReadCommands("LIST x")[0], {"CODEBOOK", "SUMMARIZE", "TABLES"}),
            "Unknown command \"LIST\" (line 1, column 1). Expected CODEBOOK, SUMMARIZE or TABLES.\n"
            "  LIST x\n"
            "  ^");
}

TEST(UnknownCommand, saysWhenTheCommandBeginsWithNoWord) {
  EXPECT_EQ(UnknownCommandMessage(ReadCommands("/VARINFO LABEL")[0], {"CODEBOOK"}),
            "A command begins with its name, found \"/\" (line 1, column 1). Expected CODEBOOK.\n"
            "  /VARINFO LABEL\n"
            "  ^");
  EXPECT_EQ(
      UnknownCommandMessage(ReadCommands("'CODEBOOK' x")[0], {"CODEBOOK"}),
      "A command begins with its name, found the quoted text \"CODEBOOK\" (line 1, column 1). Did you mean CODEBOOK? "
      "Expected CODEBOOK. Command names are written without quotes.\n"
      "  'CODEBOOK' x\n"
      "  ^");
}

TEST(UnknownCommand, tellsAQuoteThatIsNotClosedFirst) {
  EXPECT_THAT(UnknownCommandMessage(ReadCommands("'CODEBOOK x")[0], {"CODEBOOK"}),
              StartsWith("The quoted text that opens"));
}

TEST(UnknownCommand, showsNothingThatATerminalWouldActOn) {
  EXPECT_THAT(UnknownCommandMessage(ReadCommands("\x1B[2J")[0], {"CODEBOOK"}),
              StartsWith("Unknown command \"<U+001B>\" "));
}

}  // namespace
