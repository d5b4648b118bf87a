// The data dictionary of a REDCap project: a CSV file, a row a field.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"

namespace runtime::data {

/// Whether a file's header is that of such a dictionary, as it is downloaded or as the programming interface gives it.
/// False also for what is no CSV.
bool IsRedcapDictionary(const std::string& path);

/// Reads one. A checkbox field becomes its columns NAME___CODE and a dichotomy set of them; members that `headers` (of
/// the data, null or empty: not known) do not hold are left out with a note, and the state of a form, FORM_complete, is
/// described when they hold it. Throws DataError: the file cannot be read, or a row has no field name.
TableDescriptor ReadRedcap(const std::string& path, const std::function<std::vector<std::string>()>& headers,
                           std::vector<Note>& notes);

}  // namespace runtime::data
