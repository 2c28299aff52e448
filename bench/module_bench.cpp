#include "bench.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

// Freed memory stays with the process. Whether the allocator gives it back depends on the rows that
// ran before, and the page faults that follow would drown what the rows with large inputs compare.
void KeepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 1 << 25);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
#endif
}

}  // namespace

void bench::AddRows() {
  KeepFreedMemory();
  AddCodecRows();
  AddTextRows();
  AddEncodingRows();
}
