#include "runtime/output/render/renderer.h"

#include <algorithm>

#include "runtime/output/render/csv.h"
#include "runtime/output/render/html/html.h"
#include "runtime/output/render/json.h"
#include "runtime/output/render/markdown.h"
#include "runtime/output/render/text.h"
#include "runtime/output/render/xlsx/xlsx.h"

namespace runtime::output {
namespace {

char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EndsWith(std::string_view name, std::string_view ending) {
  if (name.size() <= ending.size()) return false;
  name.remove_prefix(name.size() - ending.size());
  return std::equal(name.begin(), name.end(), ending.begin(),
                    [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

}  // namespace

const std::vector<ReportFormat>& ReportFormats() {
  static const std::vector<ReportFormat> formats = {
      {"text", ".txt", NewTextRenderer},
      {"html", ".html", NewHtmlRenderer, false, true},
      {"json", ".json", NewJsonRenderer},
      {"jsonl", ".jsonl", NewJsonLinesRenderer},
      {"md", ".md", NewMarkdownRenderer},
      {"csv", ".csv", NewCsvRenderer},
      {"xlsx", ".xlsx", NewXlsxRenderer, true, true},
  };
  return formats;
}

const ReportFormat* FindReportFormat(std::string_view name) {
  for (const ReportFormat& format : ReportFormats())
    if (format.name == name) return &format;
  return nullptr;
}

const ReportFormat* ReportFormatOfFile(std::string_view fileName) {
  for (const ReportFormat& format : ReportFormats())
    if (EndsWith(fileName, format.ending)) return &format;
  return nullptr;
}

}  // namespace runtime::output
