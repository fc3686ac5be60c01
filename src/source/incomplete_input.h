#pragma once
// Input that tolerant reading takes with a stated assumption, where strict reading stops.

#include <stdexcept>
#include <string>
#include <vector>

#include "source/user_message.h"

namespace quillory {

// Input that breaks a rule of the format which tolerant reading replaces by a stated
// assumption. Hosts tell the user that switching tolerant reading on takes it.
class IncompleteInput : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Where the input breaks such a rule: strict reading stops with `error`; tolerant reading
// notes `assumption` in `made` and goes on as the assumption says.
inline void assume_or_fail(bool tolerant, std::vector<std::string>& made,
                           const std::string& error, std::string assumption) {
  if (!tolerant) throw IncompleteInput("quillory: " + error);
  made.push_back(std::move(assumption));
}

}  // namespace quillory
