#include "runtime/data/dictionary/extras.h"

#include <algorithm>
#include <string>

namespace runtime::data {

void KeepExtras(const JsonPlace& object, std::initializer_list<std::string_view> understood,
                std::vector<ExtraProperty>& extras) {
  for (const auto& [name, value] : object.Members())
    if (std::find(understood.begin(), understood.end(), name) == understood.end())
      extras.push_back({name, value.Written()});
}

void KeepDdiExtras(const JsonPlace& codebook, std::vector<ExtraProperty>& extras) {
  const auto ddi = codebook.Find("ddi");
  if (!ddi) return;
  for (const auto& [name, value] : ddi->Members())
    extras.push_back({name.rfind("ddi:", 0) == 0 ? name : "ddi:" + name, value.Written()});
}

}  // namespace runtime::data
