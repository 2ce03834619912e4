// Work on the rows of an image, shared out among the processor's cores.
#pragma once

#include <cstdint>
#include <functional>

namespace imaging::operations {

// Calls work(first, last) for bands of rows that together are [0, rows), each row once, and returns
// when all are done. `pixelsPerRow` tells how much work a row is: what is quickly done stays on the
// calling thread. Bands run on threads of their own, started for this call, while the caller takes
// bands like all others. So it may be called from anywhere, from a worker or from within `work`,
// without waiting for a place in a pool; where no thread can be started the caller does it all.
//
// `work` must not throw, and must bear being called from several threads at once.
void forRowBands(int rows, std::int64_t pixelsPerRow,
                 const std::function<void(int first, int last)>& work);

} // namespace imaging::operations
