#pragma once

#include <cstddef>
#include <functional>

namespace qv {

/// Calls `work` with each number below `count`, from `threads` threads at once (0: one for each
/// processor), of which the caller's is one. A thread takes the next number when it is done with
/// the one before, so that long and short pieces of work even out.
///
/// Once a call returned false or threw, no further number is handed out. Returns when all threads
/// are done: false when a call returned false; throws what the first call that threw had thrown.
bool qv_in_parallel(std::size_t count, unsigned int threads,
                    const std::function<bool(std::size_t)>& work);

}  // namespace qv
