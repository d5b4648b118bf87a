// The data files that a DDI-Codebook describes.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "runtime/data/dictionary/ddi/readddi.h"
#include "runtime/data/dictionary/ddi/xmldocument.h"

namespace runtime::data {

class DdiFiles {
 public:
  /// The `fileDscr` of a `codeBook`, and which of them each of `variables` belongs to: `files` says it, else
  /// `location@fileid`, and a variable that names none of the files belongs to every one.
  DdiFiles(pugi::xml_node codeBook, const std::vector<pugi::xml_node>& variables);

  /// The file that is meant, see ReadDdi; nothing when the document describes none. Throws DataError.
  std::optional<std::size_t> Choose(const XmlDocument& document, const DdiOptions& options,
                                    const std::vector<std::string>& headers, std::vector<Note>& notes) const;
  std::size_t size() const { return fFiles.size(); }
  pugi::xml_node Element(std::size_t file) const { return fFiles[file].element; }
  /// Whether a variable belongs to a file.
  bool Holds(std::size_t file, std::size_t variable) const;

 private:
  struct File {
    pugi::xml_node element;
    std::string id;
    std::vector<std::string> names;  // of fileName and URI
    std::size_t variables = 0;
  };
  std::vector<std::size_t> FilesNamed(const std::string& name) const;
  std::vector<std::size_t> Fits(const std::vector<std::string>& headers) const;
  std::string List() const;

  std::vector<File> fFiles;
  std::vector<std::string> fNames;                         // of the variables
  std::vector<std::vector<std::size_t>> fFilesOfVariable;  // empty: every file
};

}  // namespace runtime::data
