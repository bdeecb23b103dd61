#pragma once

namespace qv_test {

/// From now on `count` allocations of this thread succeed and the next one fails; every one
/// succeeds again after it. Negative: none fails. Works in a program that is built with this file's
/// source, which stands in for the global operators new and delete of the whole process.
void fail_allocation_after(long count);

/// True while the failure that was asked for has not come yet.
bool is_failure_pending();

}  // namespace qv_test
