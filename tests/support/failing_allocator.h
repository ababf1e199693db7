// Global operator new and delete for one test binary, counting the blocks
// alive and failing on request with std::bad_alloc, as a full heap would.
// Lets a test show that an allocation failure anywhere inside a call
// propagates and leaves nothing allocated behind.
#ifndef PAVONA_TESTS_SUPPORT_FAILING_ALLOCATOR_H_
#define PAVONA_TESTS_SUPPORT_FAILING_ALLOCATOR_H_

#include <cstddef>
#include <cstdint>

namespace pavona::testing {

// Blocks from operator new not yet returned to operator delete.
int64_t liveAllocations();

// From now on, the `nth` allocation (1 for the next one) fails, and so does
// every request larger than `maxBytes`; 0 turns either rule off.
void failAllocations(int64_t nth, size_t maxBytes);

// Turns both rules off while in scope.
class FailingAllocations {
 public:
  FailingAllocations(int64_t nth, size_t maxBytes) {
    failAllocations(nth, maxBytes);
  }
  ~FailingAllocations() { failAllocations(0, 0); }
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
};

}  // namespace pavona::testing

#endif  // PAVONA_TESTS_SUPPORT_FAILING_ALLOCATOR_H_
