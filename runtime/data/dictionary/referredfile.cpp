#include "runtime/data/dictionary/referredfile.h"

#include <fmt/format.h>

#include "runtime/data/dictionary/datapath.h"

namespace runtime::data {
namespace {

/// Without scheme, query and fragment.
std::string BareAddress(const std::string& url) {
  const std::size_t begin = url.find("://") + 3;
  return url.substr(begin, url.find_first_of("?#", begin) - begin);
}

std::string LocalCopy(const JsonPlace& place, const PackageContext& context) {
  const std::string& url = place.Text();
  const std::string address = BareAddress(url);
  const std::size_t slash = address.rfind('/');
  const std::string name = slash == std::string::npos ? std::string() : address.substr(slash + 1);
  if (context.schemas)
    for (const std::string& under : {address, name})
      if (auto copy = FindInFolder(*context.schemas, under)) return *copy;
  for (const std::string& under : {name, "schemas/" + name})
    if (auto copy = FindInFolder(context.folder, under)) return *copy;
  if (name.empty() || name == "..")
    place.Fail(
        fmt::format("\"{}\" is on the network, and nothing is fetched; save it beside the descriptor and name "
                    "the local file",
                    url));
  place.Fail(
      fmt::format("\"{}\" is on the network, and nothing is fetched; save it beside the descriptor as \"{}\" or "
                  "\"{}\", or in a folder that --schemas names",
                  url, name, "schemas/" + name));
}

std::string PathOf(const JsonPlace& place, const PackageContext& context) {
  if (!IsUrl(place.Text())) return PathInFolder(context.folder, place);
  std::string copy = LocalCopy(place, context);
  context.notes.push_back({false, fmt::format("{}: \"{}\" was not fetched; its local copy \"{}\" was read",
                                              place.Where(), place.Text(), copy)});
  return copy;
}

}  // namespace

ReferredFile::ReferredFile(const JsonPlace& place, const PackageContext& context)
    : fFile(PathOf(place, context)), fTree(ReadJsonFile(fFile, &context.notes)) {
  if (!fTree.is_object()) place.Fail(fmt::format("the file \"{}\" holds no JSON object", fFile));
}

}  // namespace runtime::data
