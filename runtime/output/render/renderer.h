// What turns a report into a file format.
#pragma once

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/output/model/report.h"

namespace runtime::output {

class Catalog;

/// What the place that the report goes to can show. Formats that are files pay no heed to it.
struct RenderOptions {
  int width = 80;      // columns; at least 20 are used
  bool utf8 = true;    // else ASCII only
  bool color = false;  // a terminal that understands colours
  /// What translates the renderers' own words; null: English. Fixed texts of the report are translated already. Must
  /// outlive the renderer.
  const Catalog* catalog = nullptr;
};

/// A format cannot hold or make what the report asks for; what() says why.
class RenderError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Writes a report in one format. Same report and options, same bytes. Renderers only read the report, and one renderer
/// may be used for several reports.
class Renderer {
 public:
  Renderer() = default;
  virtual ~Renderer() = default;
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  /// Whether all was written is told by the stream's state. Formats that are made by a library throw RenderError.
  virtual void Render(const Report& report, std::ostream& out) const = 0;
};

/// One format that reports can be written in.
struct ReportFormat {
  std::string_view name;    // as --format takes it
  std::string_view ending;  // of file names, with its period
  std::unique_ptr<Renderer> (*newRenderer)(const RenderOptions& options);
  bool isBinary = false;       // not for terminals
  bool wantsSketches = false;  // draws what the procedures' sketches hold
};

/// All formats, `text` first.
const std::vector<ReportFormat>& ReportFormats();
/// Null when there is no format of that name.
const ReportFormat* FindReportFormat(std::string_view name);
/// The format that a file name's ending (without regard to the case of ASCII letters) stands for; null when there is
/// none.
const ReportFormat* ReportFormatOfFile(std::string_view fileName);

}  // namespace runtime::output
