// Finding and reading the dictionary of a data file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"

namespace runtime::data {

/// Whether a path given as data names a data package (its name ends with .json).
bool NamesDataPackage(const std::string& path);

/// The dictionary that lies beside a data file: a `datapackage.json` that lists the file, else NAME.schema.json, else
/// NAME.ddi.xml. Throws DataError when there is a datapackage.json that cannot be read.
std::optional<std::string> FindDictionary(const std::string& dataPath);

struct DictionaryRequest {
  std::string path;                     // the dictionary file
  std::optional<std::string> resource;  // of a data package, or the file of a DDI-Codebook
  std::optional<std::string> dataPath;  // the data file that the dictionary is for, "-" for standard input; absent: the
                                        // package names it
  // A folder with copies of the schemas and dialects that descriptors name by address.
  std::optional<std::string> schemas = std::nullopt;
  std::optional<std::vector<std::string>> headers = std::nullopt;  // of the data, where they are known already
};

/// Reads a Data Package, a Table Schema, a DDI-Codebook or a REDCap data dictionary. Of a package, the resource is the
/// one asked for, else the one that lists the data file, else the only one; of a DDI-Codebook likewise, see ReadDdi.
/// `dataPaths` of the result is filled when `dataPath` is absent; the files exist and lie in the package's folder.
/// Throws DataError.
TableDescriptor ReadDictionary(const DictionaryRequest& request, std::vector<Note>& notes);

/// The same for a Data Package or Table Schema as text, of which `request.path` names the place. Nothing for JSON that
/// is neither. Throws DataError.
std::optional<TableDescriptor> ReadDictionaryText(const std::string& text, const DictionaryRequest& request,
                                                  std::vector<Note>& notes);

}  // namespace runtime::data
