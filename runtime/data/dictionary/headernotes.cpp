#include "runtime/data/dictionary/headernotes.h"

#include <cstddef>
#include <string_view>
#include <unordered_set>

#include <fmt/format.h>

#include "runtime/data/foldedname.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

constexpr std::size_t kColumnsNamed = 5;

/// The first few entries of a list, and how many more there are.
class ShortList {
 public:
  void Add(const std::string& entry) {
    if (++fCount <= kColumnsNamed) fText += (fText.empty() ? "" : ", ") + entry;
  }
  std::size_t count() const { return fCount; }
  std::string text() const {
    return fCount <= kColumnsNamed ? fText : fmt::format("{} and {} more", fText, fCount - kColumnsNamed);
  }

 private:
  std::size_t fCount = 0;
  std::string fText;
};

}  // namespace

void TellChangedHeaders(const std::vector<std::string>& headers, const std::vector<std::string>& names,
                        const std::string& where, std::vector<Note>& notes) {
  ShortList empty;
  ShortList repeated;
  std::unordered_set<std::string> seen;
  for (std::size_t i = 0; i < headers.size(); ++i) {
    if (headers[i].empty())
      empty.Add(fmt::format("column {} is {}", i + 1, names[i]));
    else if (!seen.insert(FoldName(headers[i])).second)
      repeated.Add(fmt::format("{} in column {} is {}", QuotedCell(headers[i]), i + 1, names[i]));
  }
  if (empty.count() > 0)
    notes.push_back(
        {false,
         fmt::format("{}: {} no header and got a name from its place: {}; name them in the file", where,
                     empty.count() == 1 ? "1 column has" : fmt::format("{} columns have", empty.count()), empty.text()),
         NoteTopic::Names});
  if (repeated.count() > 0)
    notes.push_back(
        {false,
         fmt::format("{}: {} the header of an earlier column and got a number: {}; name each "
                     "column once in the file",
                     where, repeated.count() == 1 ? "1 column has" : fmt::format("{} columns have", repeated.count()),
                     repeated.text()),
         NoteTopic::Names});
}

}  // namespace runtime::data
