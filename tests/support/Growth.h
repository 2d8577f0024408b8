#pragma once

#include <cstddef>
#include <functional>

namespace tamzo::testing {

/// True when sixteen times as much work takes about sixteen times as long, as it does where nothing
/// is quadratic. `prepare(size)` returns the work to be timed for an input of that size.
///
/// Counts the processor time of this thread alone, the best of several tries, and allows for six
/// times what is expected: neither a busy machine nor a sanitizer makes it fail, while time that
/// grows with the square passes the bound nearly three times over.
bool growsLinearly(std::size_t size,
                   const std::function<std::function<void()>(std::size_t)>& prepare);

/// Seconds of processor time that this thread has used so far.
double threadSeconds();

}  // namespace tamzo::testing
