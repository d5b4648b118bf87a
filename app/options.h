// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "runtime/data/open.h"

namespace app {

enum class TimingForm { None, Table, Json };
enum class TypeListing { None, Text, Json };

struct Options {
  runtime::data::OpenOptions data;
  std::optional<std::string> commandText;       // -c
  std::optional<std::string> commandFile;       // -f
  std::string format;                           // a name that the program can write
  std::optional<std::string> outputFile;        // -o; absent: standard output
  std::optional<int> width;                     // of text; absent: the terminal's
  std::string language = "en";                  // of the report's fixed texts; one that the program has
  bool pager = true;                            // a text report on a terminal goes through a pager, where there is one
  TypeListing typeListing = TypeListing::None;  // instead of a report
  int threads = 0;                              // 0: as many as the machine gives
  bool showQueries = false;                     // what is sent to a database is told on standard error
  bool quiet = false;                           // no progress, and no word that is neither warning nor error
  TimingForm timing = TimingForm::None;
  std::int64_t percentileMemory = 0;  // bytes that the values kept for percentiles may take; 0: no limit
};

/// The command line cannot be used as it stands; what() says why and what to do.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The command line asks for a text (help, version) and for nothing else.
struct TextWanted {
  std::string text;
};

/// Reads the command line. Throws UsageError, or TextWanted for --help and --version.
Options ReadOptions(int argc, const char* const* argv);

/// Throws UsageError when the format is no text that a terminal could show.
void CheckThatTerminalsShow(const std::string& format);

/// The text of the commands to run: that of -c, of the file of -f, or the program's own. Throws UsageError.
std::string CommandText(const Options& options);

}  // namespace app
