// DDI-Codebook, versions 1.2 to 2.6, as a dictionary.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"

namespace runtime::data {

struct DdiOptions {
  std::optional<std::string> resource;  // the ID or the name of one of the document's files
  std::optional<std::string> dataPath;  // the data that the dictionary is for; absent, or "-": no name to go by
  /// The headers of the data, asked for when the document describes several files; empty: they cannot be known.
  std::function<std::vector<std::string>()> headers;
};

/// Reads the variables of one file of the document: the one that `resource` names, else the one whose name is that of
/// the data, else the one whose variables fit the headers of the data best, else the only one. What becomes of which
/// element is told in docs/reference/dictionary.md and ddiwords.h.
///
/// A weight and the members of sets that `headers`, when asked for, do not hold are left out with a note. Nothing but
/// the file itself is opened. Throws DataError: the file cannot be read, is no XML or has a document type declaration,
/// is no DDI-Codebook, or does not say which of its files is meant.
TableDescriptor ReadDdi(const std::string& path, const DdiOptions& options, std::vector<Note>& notes);

/// The same of a text in UTF-8 that describes at most one file. What there is to tell is not told.
TableDescriptor ReadDdiElements(const std::string& text);

/// Whether a text begins like an XML document.
bool LooksLikeXml(std::string_view text);

}  // namespace runtime::data
