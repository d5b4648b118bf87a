// Whether every file that both can read gives the same cells through our CSV reader and through DuckDB's.
//
//   cells_as_duckdb [--files N] [--seed S] [--verbose] [--plant] [FILE OR FOLDER ...]
//
// Compares N random files (2,000), made from the seed, and all CSV files below the folders (or in golden cases). Ends
// with 1 when there is a difference that is none of the known ones. --plant changes a cell of what DuckDB read before
// it is compared, which must be seen.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <unistd.h>

#include "tests/cells/differences.h"
#include "tests/cells/duckdbcells.h"
#include "tests/cells/nastyfile.h"
#include "tests/cells/ourcells.h"

namespace cells {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string Contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class Comparer {
 public:
  Comparer(bool verbose, bool plant) : fVerbose(verbose), fPlant(plant) {}

  void CompareFile(const std::string& path, const std::string& name) {
    ++fFiles;
    OurReading ours = ReadOurs(path);
    const std::size_t columns = ours.table.isRead() ? ours.table.rows.front().size() : 1;
    Table theirs = fDuckDB.Read(path, ours.dialect, columns);
    if (!ours.table.isRead() || !theirs.isRead()) return NoteRefusal(name, ours.table, theirs);
    ++fReadByBoth;
    if (fPlant) theirs.rows.back().back() += "planted";

    const std::string bytes = Contents(path);
    std::string_view text = bytes;
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
    const Comparison comparison = Compare(text, ours.table, theirs, ours.dialect);
    if (!comparison.unexplained.empty()) {
      ++fUnexplained;
      fmt::print("{}: {}\n", name, comparison.unexplained);
    }
    if (comparison.isEqual()) ++fEqual;
    if (comparison.ranOff) ++fRanOff;
    for (std::size_t i = 0; i < comparison.count.size(); ++i) {
      if (comparison.count[i] > 0) ++fFilesWith[i];
      if (fVerbose && comparison.count[i] > 0)
        fmt::print("{}: {}: {}\n", name, kDifferences[i].name, comparison.count[i]);
    }
  }

  void Report(const char* what) const {
    fmt::print("{}: {} files, {} read by both, {} of them equal\n", what, fFiles, fReadByBoth, fEqual);
    for (const DifferenceEntry& entry : kDifferences)
      fmt::print("  {:5} {}\n", fFilesWith[static_cast<std::size_t>(entry.difference)], entry.name);
    fmt::print("  {:5} of these not compared to the end, for DuckDB lost track of the quotes\n", fRanOff);
    fmt::print("  {:5} not explained\n", fUnexplained);
    for (const auto& [refusal, files] : fRefused) fmt::print("  {:5} {}\n", files, refusal);
  }

  std::size_t readByBoth() const { return fReadByBoth; }
  std::size_t unexplained() const { return fUnexplained; }

 private:
  void NoteRefusal(const std::string& name, const Table& ours, const Table& theirs) {
    const char* who = "refused by both";
    if (ours.isRead()) who = "read by ours only";
    if (theirs.isRead()) who = "read by DuckDB only";
    ++fRefused[who];
    if (fVerbose) fmt::print("{}: {}: {}\n", name, who, (ours.isRead() ? theirs.problem : ours.problem).substr(0, 200));
  }

  DuckDB fDuckDB;
  bool fVerbose;
  bool fPlant;
  std::size_t fFiles = 0;
  std::size_t fReadByBoth = 0;
  std::size_t fEqual = 0;
  std::size_t fRanOff = 0;
  std::size_t fUnexplained = 0;
  std::array<std::size_t, kDifferences.size()> fFilesWith{};
  std::map<std::string, std::size_t> fRefused;
};

/// A file that is there as long as this object.
class ScratchFile {
 public:
  ScratchFile() : fPath((std::filesystem::temp_directory_path() / fmt::format("cells-{}.csv", getpid())).string()) {}
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(fPath, ignored);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  void Write(const std::string& text) const { std::ofstream(fPath, std::ios::binary) << text; }
  const std::string& path() const { return fPath; }

 private:
  std::string fPath;
};

/// The data of a golden case: the lines of its section "data".
std::string DataOfGoldenCase(const std::string& text) {
  constexpr std::string_view kSection = "--- data\n";
  std::size_t at = text.find(kSection);
  if (at == std::string::npos) return {};
  at += kSection.size();
  return text.substr(at, text.find("\n--- ", at) + 1 - at);
}

void CompareBelow(const std::filesystem::path& place, const ScratchFile& scratch, Comparer& comparer) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(place))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  for (const std::filesystem::path& file : files) {
    if (file.extension() == ".csv" || file.extension() == ".tsv") comparer.CompareFile(file.string(), file.string());
    if (file.extension() != ".golden") continue;
    const std::string data = DataOfGoldenCase(Contents(file));
    if (data.empty()) continue;
    scratch.Write(data);
    comparer.CompareFile(scratch.path(), file.string());
  }
}

int Run(int argc, char** argv) {
  std::uint64_t files = 2000;
  std::uint64_t seed = 1;
  bool verbose = false;
  bool plant = false;
  std::vector<std::string> places;
  for (int at = 1; at < argc; ++at) {
    const std::string argument = argv[at];
    if (argument == "--files" && at + 1 < argc)
      files = std::stoull(argv[++at]);
    else if (argument == "--seed" && at + 1 < argc)
      seed = std::stoull(argv[++at]);
    else if (argument == "--verbose")
      verbose = true;
    else if (argument == "--plant")
      plant = true;
    else
      places.push_back(argument);
  }

  const ScratchFile scratch;
  Comparer random(verbose, plant);
  for (std::uint64_t number = 0; number < files; ++number) {
    scratch.Write(NastyFile(seed * 1'000'000 + number));
    random.CompareFile(scratch.path(), fmt::format("random file {} of seed {}", number, seed));
  }
  Comparer kept(verbose, plant);
  for (const std::string& place : places) CompareBelow(place, scratch, kept);
  if (files > 0) random.Report("random");
  if (!places.empty()) kept.Report("kept");
  const bool nothingCompared = random.readByBoth() + kept.readByBoth() == 0;
  return nothingCompared || random.unexplained() + kept.unexplained() > 0 ? 1 : 0;
}

}  // namespace
}  // namespace cells

int main(int argc, char** argv) {
  try {
    return cells::Run(argc, argv);
  } catch (const std::exception& error) {
    fmt::print(stderr, "{}\n", error.what());
    return 2;
  }
}
