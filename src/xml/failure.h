#pragma once
// The one way the operations report input they cannot work with: an exception whose message
// is meant for the user, in the form every host shows as it stands.

#include <stdexcept>
#include <string>

namespace quillory {

[[noreturn]] inline void fail(const std::string& message) {
  throw std::runtime_error("quillory: " + message);
}

}  // namespace quillory
