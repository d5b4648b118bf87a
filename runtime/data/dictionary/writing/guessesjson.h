// Guesses as a dictionary file keeps them.
#pragma once

#include <string>
#include <vector>

namespace runtime::data {

/// Something that a draft of a dictionary supposes and a person has to confirm.
struct Guess {
  std::string what;
  std::string why;  // the evidence
};

/// The value of the property `codebook.draft`: a list of objects with `what` and `why`.
std::string GuessesJson(const std::vector<Guess>& guesses);

}  // namespace runtime::data
