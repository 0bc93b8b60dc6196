#pragma once

#include <cstdint>

/// Asks the system for large pages where they fit wholly into memory that will all be written and that nothing
/// has touched yet: it is handed out in fewer and larger pieces then. Does nothing where the system knows none or
/// refuses.
/// @param begin  address of the first byte
/// @param end    address behind the last one
void preferLargePages(std::uintptr_t begin, std::uintptr_t end);
