// The hosts' heap keeps the C++ rule that a failed allocation throws std::bad_alloc: the hosts
// turn that into a message and keep the previous output, where an abort would lose both.
// It holds for mimalloc and for libc's heap, which a build without mimalloc uses.

#include <gtest/gtest.h>

#include <new>

namespace {

TEST(Heap, AllocationPastTheAddressSpaceThrowsInsteadOfAborting) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "sanitizer builds keep the sanitizer's allocator, which stops this itself";
#endif
  volatile std::size_t petabyte = std::size_t{1} << 50;
  EXPECT_THROW(::operator delete(::operator new(petabyte)), std::bad_alloc);
}

}  // namespace
