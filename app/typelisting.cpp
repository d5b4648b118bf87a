#include "app/typelisting.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string_view>

#include <fmt/format.h>

#include "runtime/data/dictionary/typewords.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/data/typing/valuereader.h"
#include "runtime/output/render/terminaltext.h"

namespace app {

namespace {

using runtime::data::FieldType;
using runtime::data::TypeDecision;
using runtime::data::TypeOrigin;
using runtime::data::TypeStep;

std::string_view WordOf(FieldType type) {
  return runtime::data::WordOfType(type == FieldType::Inferred ? FieldType::String : type);
}

const char* WordOf(TypeOrigin origin) {
  switch (origin) {
    case TypeOrigin::Dictionary:
      return "dictionary";
    case TypeOrigin::DataFile:
      return "data file";
    case TypeOrigin::Cells:
      return "cells";
    case TypeOrigin::Asked:
      break;
  }
  return "asked";
}

std::string StepInWords(const TypeStep& step) {
  const std::string place =
      step.source.empty() ? fmt::format("row {}", step.row) : fmt::format("{}, row {}", step.source, step.row);
  const std::string what = step.type == FieldType::Inferred ? std::string("no value of another type")
                                                            : fmt::format("no {}", WordOf(step.type));
  const std::string why = runtime::data::WhyNot(step.cell);
  return fmt::format("{}: {} is {}{}{}", place, runtime::data::QuotedCell(step.cell), what, why.empty() ? "" : ": ",
                     why);
}

std::string WhyInWords(const TypeDecision& decision) {
  switch (decision.origin) {
    case TypeOrigin::Dictionary:
      return "the dictionary says so";
    case TypeOrigin::DataFile:
      return "the data say so";
    case TypeOrigin::Asked:
      return "nothing is inferred";
    case TypeOrigin::Cells:
      break;
  }
  if (decision.blankCells == decision.rows) return "no cell holds anything";
  std::string words;
  for (const TypeStep& step : decision.steps) words += (words.empty() ? "" : "; ") + StepInWords(step);
  if (!words.empty()) return words;
  if (decision.type == FieldType::String) return "no cell but declared missing values";
  return fmt::format("every cell{} reads so", decision.blankCells > 0 ? " that is not blank" : "");
}

}  // namespace

std::string TypesAsText(const std::vector<TypeDecision>& types, bool utf8) {
  constexpr std::size_t kWidestHeader = 42;  // as QuotedCell shortens it
  constexpr int kTypeWidth = 10;
  std::vector<std::string> headers;
  std::size_t width = 0;
  for (const TypeDecision& decision : types) {
    headers.push_back(runtime::data::QuotedCell(decision.header));
    width = std::max(width, std::min(headers.back().size(), kWidestHeader));
  }
  std::string text;
  for (std::size_t i = 0; i < types.size(); ++i)
    text +=
        fmt::format("{:<{}}  {:<{}} {}\n", headers[i], width, WordOf(types[i].type), kTypeWidth, WhyInWords(types[i]));
  return runtime::output::EscapeForTerminal(text, utf8, runtime::output::LineEnds::Keep);
}

std::string TypesAsJson(const std::vector<TypeDecision>& types) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const TypeDecision& decision : types) {
    nlohmann::ordered_json ruledOut = nlohmann::ordered_json::array();
    for (const TypeStep& step : decision.steps) {
      nlohmann::ordered_json entry;
      if (step.type == FieldType::Inferred)
        entry["type"] = nullptr;
      else
        entry["type"] = WordOf(step.type);
      if (!step.source.empty()) entry["file"] = step.source;
      entry["row"] = step.row;
      entry["cell"] = step.cell;
      ruledOut.push_back(std::move(entry));
    }
    list.push_back({{"column", decision.header},
                    {"type", WordOf(decision.type)},
                    {"from", WordOf(decision.origin)},
                    {"rows", decision.rows},
                    {"blank", decision.blankCells},
                    {"ruledOut", std::move(ruledOut)}});
  }
  constexpr int kIndent = 2;
  return list.dump(kIndent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace app
