#include "titles/destination.h"

#include <cerrno>
#include <system_error>

#include "titles/replace_file.h"
#include "source/user_message.h"

namespace quillory {

void Destination::require_known() const {
  if (!path && fd < 0) {
    fail("no output folder is known: set HOME (or XDG_DATA_HOME to an absolute path) so that "
         "titles can be written to its Ferncroft folder");
  }
}

void deliver(const Destination& to, const std::function<bool(int fd)>& write) {
  to.require_known();
  if (to.fd >= 0) {
    errno = 0;
    if (!write(to.fd)) {
      throw std::system_error(errno != 0 ? errno : EIO, std::generic_category(),
                              "quillory: cannot write the titles to standard output");
    }
    return;
  }
  replace_file(*to.path, write);
}

}  // namespace quillory
