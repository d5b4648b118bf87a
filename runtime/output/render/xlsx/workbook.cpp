#include "runtime/output/render/xlsx/workbook.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <system_error>

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>
#include <xlsxwriter.h>

#include "runtime/output/render/characters.h"
#include "runtime/output/render/renderer.h"
#include "runtime/output/render/xlsx/celltext.h"

namespace runtime::output {
namespace {

constexpr std::time_t kCreated = 315532800;  // 1980-01-01, as the library dates the parts: same report, same bytes
constexpr std::uint32_t kHeadColor = 0xE8EEF4;
constexpr std::uint32_t kLineColor = 0x9AA8B5;
constexpr std::uint32_t kLinkColor = 0x0B57A4;
constexpr double kTitleSize = 14.0;

[[noreturn]] void Fail(std::string_view reason) {
  throw RenderError(fmt::format("The workbook could not be made: {}.", reason));
}

[[noreturn]] void FailOfSystem(int error) { Fail(std::generic_category().message(error)); }

/// A sheet's name has 31 characters at most, none of []:*?/\, and no apostrophe at its ends.
std::string SheetName(std::string_view wanted, std::string_view number) {
  constexpr std::size_t kMostCharacters = 31;
  std::string name;
  std::size_t characters = number.size();
  for (std::size_t at = 0; at < wanted.size() && characters < kMostCharacters; ++characters) {
    const std::size_t begin = at;
    bool valid = true;
    const char32_t character = NextCharacter(wanted, at, valid);
    const bool forbidden = std::u32string_view(U"[]:*?/\\'").find(character) != std::u32string_view::npos;
    if (!valid || forbidden || IsControl(character))
      name += '_';
    else
      name.append(wanted, begin, at - begin);
  }
  return name.append(number);
}

}  // namespace

void CheckWorkbook(int code) {
  if (code != LXW_NO_ERROR) Fail(lxw_strerror(static_cast<lxw_error>(code)));
}

std::string CellPlace::Name() const {
  std::array<char, LXW_MAX_CELL_NAME_LENGTH> name{};
  lxw_rowcol_to_cell(name.data(), row, column);
  return name.data();
}

std::string CellPlace::Link() const { return fmt::format("internal:'{}'!{}", sheet, Name()); }

Workbook::Workbook(std::string_view cutMark) : fCutMark(cutMark) {
  fDescriptor = ::memfd_create("codebook.xlsx", MFD_CLOEXEC);
  if (fDescriptor < 0) FailOfSystem(errno);
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;  // rows go to a file as they come
  fWorkbook = workbook_new_opt(fmt::format("/proc/self/fd/{}", fDescriptor).c_str(), &options);
  if (fWorkbook == nullptr) {
    ::close(fDescriptor);
    Fail("there is not enough memory");
  }
}

Workbook::~Workbook() {
  if (fWorkbook != nullptr) lxw_workbook_free(fWorkbook);
  if (fDescriptor >= 0) ::close(fDescriptor);
}

lxw_worksheet* Workbook::AddSheet(std::string_view name, std::string& nameTaken) {
  nameTaken = SheetName(name, "");
  for (int i = 2; workbook_get_worksheet_by_name(fWorkbook, nameTaken.c_str()) != nullptr; ++i)
    nameTaken = SheetName(name, fmt::format(" {}", i));
  CheckWorkbook(workbook_validate_sheet_name(fWorkbook, nameTaken.c_str()));
  lxw_worksheet* const sheet = workbook_add_worksheet(fWorkbook, nameTaken.c_str());
  if (sheet == nullptr) Fail("a sheet could not be added");
  return sheet;
}

lxw_format* Workbook::Look(const CellLook& look) {
  lxw_format*& format = fLooks[look];
  if (format != nullptr) return format;
  format = workbook_add_format(fWorkbook);
  if (format == nullptr) Fail("there is not enough memory");
  format_set_align(format, LXW_ALIGN_VERTICAL_TOP);
  if (!look.numberFormat.empty()) format_set_num_format(format, look.numberFormat.c_str());
  if (look.isLink) {
    format_set_font_color(format, kLinkColor);
    format_set_underline(format, LXW_UNDERLINE_SINGLE);
  }
  if (look.face != CellLook::Face::Plain) format_set_bold(format);
  switch (look.face) {
    case CellLook::Face::Title:
      format_set_font_size(format, kTitleSize);
      return format;
    case CellLook::Face::Head:
      format_set_bg_color(format, kHeadColor);
      format_set_bottom(format, LXW_BORDER_THIN);
      format_set_bottom_color(format, kLineColor);
      break;
    case CellLook::Face::Plain:
    case CellLook::Face::Strong:
      break;
  }
  if (look.numberFormat.empty()) format_set_text_wrap(format);
  return format;
}

std::string Workbook::Fit(std::string_view text, const CellPlace& place) {
  CellText cell = FitIntoCell(text, fCutMark);
  if (cell.cutFrom > 0) fCuts.push_back({place, cell.cutFrom});
  return std::move(cell.text);
}

void Workbook::SetTitle(const std::string& title) {
  std::string text = title;
  lxw_doc_properties properties{};
  properties.title = text.data();
  properties.created = kCreated;
  CheckWorkbook(workbook_set_properties(fWorkbook, &properties));
}

void Workbook::WriteTo(std::ostream& out) {
  fFiles.Check();
  lxw_workbook* const workbook = std::exchange(fWorkbook, nullptr);  // closing frees it, come what may
  const lxw_error code = workbook_close(workbook);
  fFiles.Check();
  CheckWorkbook(code);
  std::array<char, 1 << 16> bytes{};
  for (off_t at = 0;;) {
    const ssize_t got = ::pread(fDescriptor, bytes.data(), bytes.size(), at);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FailOfSystem(errno);
    if (got == 0) return;
    out.write(bytes.data(), got);
    at += got;
  }
}

}  // namespace runtime::output
