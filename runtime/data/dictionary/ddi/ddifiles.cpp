#include "runtime/data/dictionary/ddi/ddifiles.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/ddi/ddivariable.h"
#include "runtime/data/lowerascii.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

/// The name of a file without folders, ending and case, to compare names by.
std::string Stem(const std::string& path) {
  std::string name = path.substr(path.find_last_of("/\\") + 1);
  const std::size_t period = name.rfind('.');
  if (period != std::string::npos && period > 0 && name.size() - period <= 8) name.resize(period);
  return LowerAscii(std::move(name));
}

std::vector<std::string> FileReferencesOf(pugi::xml_node variable) {
  std::vector<std::string> references = ReferencesOf(variable, "files");
  if (references.empty())
    for (const pugi::xml_node location : ElementsOf(variable, "location"))
      for (std::string& id : ReferencesOf(location, "fileid")) references.push_back(std::move(id));
  return references;
}

}  // namespace

DdiFiles::DdiFiles(pugi::xml_node codeBook, const std::vector<pugi::xml_node>& variables) {
  std::unordered_map<std::string, std::size_t> fileOfId;
  for (const pugi::xml_node element : ElementsOf(codeBook, "fileDscr")) {
    File file{element, AttributeOf(element, "ID"), {}, 0};
    for (const pugi::xml_node text : ElementsOf(element, "fileTxt"))
      for (const pugi::xml_node name : ElementsOf(text, "fileName"))
        if (!LineOf(name).empty()) file.names.push_back(LineOf(name));
    if (!AttributeOf(element, "URI").empty()) file.names.push_back(AttributeOf(element, "URI"));
    fileOfId.emplace(file.id, fFiles.size());
    fFiles.push_back(std::move(file));
  }
  for (const pugi::xml_node variable : variables) {
    fNames.push_back(NameOfDdiVariable(variable));
    std::vector<std::size_t>& files = fFilesOfVariable.emplace_back();
    for (const std::string& id : FileReferencesOf(variable)) {
      const auto found = fileOfId.find(id);
      if (found != fileOfId.end() && std::find(files.begin(), files.end(), found->second) == files.end())
        files.push_back(found->second);
    }
  }
  std::size_t everywhere = 0;
  for (const std::vector<std::size_t>& files : fFilesOfVariable) {
    if (files.empty()) ++everywhere;
    for (const std::size_t file : files) ++fFiles[file].variables;
  }
  for (File& file : fFiles) file.variables += everywhere;
}

bool DdiFiles::Holds(std::size_t file, std::size_t variable) const {
  const std::vector<std::size_t>& files = fFilesOfVariable[variable];
  return fFiles.size() == 1 || files.empty() || std::find(files.begin(), files.end(), file) != files.end();
}

std::vector<std::size_t> DdiFiles::FilesNamed(const std::string& name) const {
  std::vector<std::size_t> found;
  const std::string stem = Stem(name);
  for (std::size_t i = 0; i < fFiles.size(); ++i)
    if (fFiles[i].id == name || std::any_of(fFiles[i].names.begin(), fFiles[i].names.end(),
                                            [&](const std::string& other) { return Stem(other) == stem; }))
      found.push_back(i);
  return found;
}

std::vector<std::size_t> DdiFiles::Fits(const std::vector<std::string>& headers) const {
  const std::unordered_set<std::string> columns(headers.begin(), headers.end());
  std::unordered_set<std::string> everywhere;
  std::vector<std::unordered_set<std::string>> ofFile(fFiles.size());
  for (std::size_t variable = 0; variable < fNames.size(); ++variable) {
    const std::string& name = fNames[variable];
    if (columns.count(name) == 0) continue;
    if (fFilesOfVariable[variable].empty()) everywhere.insert(name);
    for (const std::size_t file : fFilesOfVariable[variable]) ofFile[file].insert(name);
  }
  std::vector<std::size_t> fits;
  for (const std::unordered_set<std::string>& names : ofFile) {
    const auto isCounted = [&](const std::string& name) { return everywhere.count(name) > 0; };
    const auto twice = static_cast<std::size_t>(std::count_if(names.begin(), names.end(), isCounted));
    fits.push_back(names.size() + everywhere.size() - twice);
  }
  return fits;
}

std::string DdiFiles::List() const {
  constexpr std::size_t kMostListed = 20;
  std::vector<std::string> entries;
  for (const File& file : fFiles) {
    if (entries.size() == kMostListed) {
      entries.push_back(fmt::format("and {} more", fFiles.size() - kMostListed));
      break;
    }
    entries.push_back(fmt::format("{} {} ({} variables)", file.id.empty() ? "(no ID)" : QuotedCell(file.id),
                                  QuotedCell(file.names.empty() ? std::string() : file.names.front()), file.variables));
  }
  return fmt::format("{}", fmt::join(entries, ", "));
}

std::optional<std::size_t> DdiFiles::Choose(const XmlDocument& document, const DdiOptions& options,
                                            const std::vector<std::string>& headers, std::vector<Note>& notes) const {
  if (options.resource) {
    const std::vector<std::size_t> named = FilesNamed(*options.resource);
    if (named.size() == 1) return named.front();
    throw DataError(fFiles.empty()
                        ? fmt::format("{}: the document describes no files, so there is no {}; leave out --resource",
                                      document.path(), QuotedCell(*options.resource))
                        : fmt::format("{}: {} file of the document is called {}; its files are: {}", document.path(),
                                      named.empty() ? "no" : "more than one", QuotedCell(*options.resource), List()));
  }
  if (fFiles.empty()) return std::nullopt;
  if (fFiles.size() == 1) return 0;

  const std::vector<std::size_t> fits = Fits(headers);
  const std::size_t most = *std::max_element(fits.begin(), fits.end());
  const bool hasName = options.dataPath && *options.dataPath != "-";
  if (hasName) {
    const std::vector<std::size_t> named = FilesNamed(*options.dataPath);
    // Names are copied from study to study; one whose variables are all absent while another's are there is wrong.
    if (named.size() == 1 && (fits[named.front()] > 0 || most == 0)) return named.front();
  }
  if (most > 0 && std::count(fits.begin(), fits.end(), most) == 1) {
    const auto best = static_cast<std::size_t>(std::find(fits.begin(), fits.end(), most) - fits.begin());
    notes.push_back(
        {false,
         fmt::format("{}: of the files of the document {} fits the data best ({} of its {} variables "
                     "are columns), and is taken",
                     document.Where(fFiles[best].element), QuotedCell(fFiles[best].id), most, fFiles[best].variables)});
    return best;
  }
  throw DataError(fmt::format(
      "{}: the document describes {} files, and {}; choose one with --resource ID: {}", document.path(), fFiles.size(),
      headers.empty() ? "nothing says which one is meant" : "none of them fits the data better than the others",
      List()));
}

}  // namespace runtime::data
