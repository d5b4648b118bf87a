#include "runtime/data/dictionary/writing/guessesjson.h"

#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

std::string GuessesJson(const std::vector<Guess>& guesses) {
  Json list = Json::array();
  for (const Guess& guess : guesses) {
    Json entry = Json::object();
    entry["what"] = guess.what;
    entry["why"] = guess.why;
    list.push_back(std::move(entry));
  }
  return list.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace runtime::data
