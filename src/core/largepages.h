#pragma once

#include <cstddef>

/// Asks the system for large pages where they fit wholly into memory that will all be written and that nothing
/// has touched yet: it is handed out in fewer and larger pieces then. Does nothing where the system knows none or
/// refuses.
void preferLargePages(void *memory, std::size_t bytes);
