#include "tests/unit/codebook/commandrun.h"

#include <stdexcept>
#include <utility>

#include "runtime/common/session.h"
#include "tests/unit/codebook/insession.h"

extern "C" void CODEBOOK();

namespace codebook::test {

namespace {

using runtime::output::Item;
using runtime::output::Table;

void addRows(const Item& group, const std::string& path, std::vector<std::string>& lines) {
  for (const auto& item : group.items) {
    const std::string name = path.empty() ? item->label->text : path + " > " + item->label->text;
    if (item->isGroup) {
      if (item->items.empty())
        lines.push_back(name + " >");
      else
        addRows(*item, name, lines);
      continue;
    }
    std::string line = name;
    for (const runtime::output::Cell& cell : item->cells)
      line += " | " + (cell.column != nullptr ? cell.column->label->text + ": " : std::string()) + cell.content->text;
    lines.push_back(std::move(line));
  }
}

}  // namespace

CommandRun::CommandRun(std::shared_ptr<const runtime::data::Dataset> dataset, const std::string& commandText) {
  runtime::common::Session session(std::move(dataset), {{"CODEBOOK", &CODEBOOK}});
  fDone = session.Run(commandText);
  fReport = std::move(session.report());
}

std::vector<std::string> CommandRun::messages() const { return messageLines(fReport); }

std::vector<std::string> CommandRun::titles() const {
  std::vector<std::string> titles;
  for (const auto& procedure : fReport.procedures)
    for (const auto& table : procedure->tables) titles.push_back(table->title->text);
  return titles;
}

const Table& CommandRun::table(const std::string& title, int occurrence) const {
  for (const auto& procedure : fReport.procedures)
    for (const auto& table : procedure->tables)
      if (table->title->text == title && occurrence-- == 0) return *table;
  throw std::runtime_error("no table " + title);
}

std::vector<std::string> CommandRun::rows(const std::string& title, int occurrence) const {
  std::vector<std::string> lines;
  for (const auto& dimension : table(title, occurrence).dimensions)
    if (!dimension->inColumns) addRows(dimension->root, "", lines);
  return lines;
}

std::vector<std::string> CommandRun::rowsOf(const std::string& title, const std::string& group) const {
  std::vector<std::string> lines;
  for (const std::string& line : rows(title))
    if (line.starts_with(group)) lines.push_back(line);
  return lines;
}

}  // namespace codebook::test
