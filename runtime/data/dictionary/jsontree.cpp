#include "runtime/data/dictionary/jsontree.h"

#include <unordered_map>
#include <utility>
#include <vector>

namespace runtime::data {
namespace {

/// What the parser says, without its own prefix and place.
std::string ParserWords(std::string_view whole) {
  const std::size_t syntax = whole.find("syntax error ");
  if (syntax != std::string_view::npos) return std::string(whole.substr(syntax));
  const std::size_t prefix = whole.find("] ");
  return std::string(prefix == std::string_view::npos ? whole : whole.substr(prefix + 2));
}

/// Takes what the parser meets. The library's own builder looks every key up in a list, which an object of a hundred
/// thousand keys does not bear.
class TreeBuilder : public nlohmann::json_sax<Json> {
 public:
  explicit TreeBuilder(JsonTree& tree) : fTree(tree) {}

  bool null() override { return Put(nullptr); }
  bool boolean(bool value) override { return Put(value); }
  bool number_integer(number_integer_t value) override { return Put(value); }
  bool number_unsigned(number_unsigned_t value) override { return Put(value); }
  bool number_float(number_float_t value, const string_t&) override { return Put(value); }
  bool string(string_t& value) override { return Put(std::move(value)); }
  bool binary(binary_t&) override { return false; }
  bool start_object(std::size_t) override { return Open(Json::object()); }
  bool start_array(std::size_t) override { return Open(Json::array()); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }
  bool key(string_t& key) override {
    fOpen.back().key = std::move(key);
    return true;
  }
  bool parse_error(std::size_t position, const std::string&, const Json::exception& error) override {
    fTree.problem = ParserWords(error.what());
    fTree.problemAt = position > 0 ? position - 1 : 0;
    return false;
  }

 private:
  static constexpr std::size_t kFewMembers = 16;

  /// A list or object that has begun and not ended.
  struct Container {
    Json* value;
    std::string key;                                     // of the member that comes next
    std::unordered_map<std::string, std::size_t> byKey;  // once there are more than a few
  };

  template <class Value>
  bool Put(Value&& value) {
    Slot() = std::forward<Value>(value);
    return true;
  }

  bool Open(Json container) {
    Json& slot = Slot();
    slot = std::move(container);
    fOpen.push_back({&slot, {}, {}});
    return true;
  }

  bool Close() {
    fOpen.pop_back();
    return true;
  }

  /// Where the next value stands.
  Json& Slot() {
    if (fOpen.empty()) return fTree.root;
    Container& container = fOpen.back();
    if (container.value->is_array()) {
      auto& entries = container.value->get_ref<Json::array_t&>();
      return entries.emplace_back();
    }
    Json::object_t::Container& members = container.value->get_ref<Json::object_t&>();
    if (Json* const earlier = FindEarlier(container, members)) return *earlier;
    members.emplace_back(container.key, Json());
    return members.back().second;
  }

  Json* FindEarlier(Container& container, Json::object_t::Container& members) {
    if (members.size() < kFewMembers) {
      for (auto& [key, value] : members)
        if (key == container.key) return &Repeated(value);
      return nullptr;
    }
    if (container.byKey.empty())
      for (std::size_t i = 0; i < members.size(); ++i) container.byKey.emplace(members[i].first, i);
    const auto [place, isNew] = container.byKey.emplace(container.key, members.size());
    return isNew ? nullptr : &Repeated(members[place->second].second);
  }

  Json& Repeated(Json& earlier) {
    if (fTree.repeatedKeys++ > 0) return earlier;
    for (const Container& container : fOpen)
      fTree.firstRepeatedKey +=
          container.value->is_array() ? "/" + std::to_string(container.value->size() - 1) : PointerStep(container.key);
    return earlier;
  }

  JsonTree& fTree;
  std::vector<Container> fOpen;
};

}  // namespace

JsonTree BuildJsonTree(std::string_view text) {
  JsonTree tree;
  TreeBuilder builder(tree);
  Json::sax_parse(text, &builder);
  return tree;
}

std::string PointerStep(std::string_view key) {
  std::string step = "/";
  for (const char byte : key) {
    if (byte == '~')
      step += "~0";
    else if (byte == '/')
      step += "~1";
    else
      step += byte;
  }
  return step;
}

}  // namespace runtime::data
