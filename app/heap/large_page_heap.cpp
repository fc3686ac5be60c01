#include <mimalloc.h>

namespace {

// Set before main() so that every segment the core allocates is advised for huge pages; what
// the libraries allocated while loading stays on small pages, which costs nothing measurable.
const bool large_pages = [] {
  mi_option_enable(mi_option_large_os_pages);
  return true;
}();

}  // namespace
