#include "app/commands/datawords.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <system_error>

#include <fmt/format.h>

#include "app/options.h"

namespace app {

void DataWords::AddTo(CLI::App& cli) {
  cli.add_option("DATA", paths, "data files of one table, or - for standard input")->type_name("")->required();
  cli.add_option("--table", table, "the table of a database, or of a SQLite file that holds several")
      ->type_name("NAME");
  cli.add_option("--threads", threads, "threads to use at most")->type_name("N")->check(CLI::PositiveNumber);
}

void DataWords::Give(runtime::data::OpenOptions& options) const {
  options.path = paths.front();
  options.furtherPaths.assign(paths.begin() + 1, paths.end());
  if (!table.empty()) options.table = table;
  options.pool = std::make_shared<runtime::machine::ThreadPool>(threads);
}

void CheckThatInputStays(const std::optional<std::string>& output, const runtime::data::OpenOptions& inputs) {
  if (!output) return;
  std::vector<std::string> paths = inputs.furtherPaths;
  paths.push_back(inputs.path);
  if (inputs.dictionary) paths.push_back(*inputs.dictionary);
  std::error_code error;
  for (const std::string& input : paths)
    if (std::filesystem::equivalent(*output, input, error) && !error)
      throw UsageError(fmt::format("The output would overwrite \"{}\", which is read. Name another file.", input));
}

}  // namespace app
