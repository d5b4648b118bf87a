// A workbook in the making: its sheets, the looks of its cells, and what was cut.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "runtime/output/render/xlsx/temporaryfiles.h"

struct lxw_workbook;
struct lxw_worksheet;
struct lxw_format;

namespace runtime::output {

/// How a cell looks.
struct CellLook {
  enum class Face : std::uint8_t { Plain, Strong, Head, Title };

  Face face = Face::Plain;
  bool isLink = false;
  std::string numberFormat;  // empty: a text

  bool operator<(const CellLook& other) const {
    return std::tie(face, isLink, numberFormat) < std::tie(other.face, other.isLink, other.numberFormat);
  }
};

/// Where a cell stands. Rows and columns from 0.
struct CellPlace {
  std::string sheet;
  std::uint32_t row = 0;
  std::uint16_t column = 0;

  /// "B12".
  std::string Name() const;
  /// What a link to the cell is: "internal:'Tables'!B12".
  std::string Link() const;
};

struct CutText {
  CellPlace place;
  std::size_t characters = 0;  // of the whole text
};

/// Rows of each sheet must be filled from the first to the last one; the sheets may take turns. What goes wrong in the
/// library throws RenderError.
class Workbook {
 public:
  /// `cutMark` stands at the end of texts that are longer than a cell can hold.
  explicit Workbook(std::string_view cutMark);
  ~Workbook();
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;

  /// A further sheet; the name is brought into the form that the names of sheets must have, and told apart from those
  /// that there are by a number.
  lxw_worksheet* AddSheet(std::string_view name, std::string& nameTaken);
  /// The workbook's own look of that kind.
  lxw_format* Look(const CellLook& look);
  /// The text as a cell holds it; a cut is noted.
  std::string Fit(std::string_view text, const CellPlace& place);
  const std::vector<CutText>& cuts() const { return fCuts; }
  void SetTitle(const std::string& title);

  /// Nothing may be added afterwards.
  void WriteTo(std::ostream& out);

 private:
  std::string fCutMark;
  TemporaryFiles fFiles;
  int fDescriptor = -1;  // of the packed workbook, in memory
  lxw_workbook* fWorkbook = nullptr;
  std::map<CellLook, lxw_format*> fLooks;
  std::vector<CutText> fCuts;
};

/// Throws RenderError when the code, an lxw_error, tells of one.
void CheckWorkbook(int code);

}  // namespace runtime::output
