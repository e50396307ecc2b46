#pragma once

#include <cstdlib>
#include <memory>

namespace tickwise {

struct FreeMalloced
{
    void operator()(void *memory) const { std::free(memory); }
};

/// Owns what a C library allocated with malloc, such as a reply of xcb.
template<class T>
using MallocPointer = std::unique_ptr<T, FreeMalloced>;

} // namespace tickwise
