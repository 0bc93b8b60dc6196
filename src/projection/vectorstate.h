#pragma once

namespace projection
{

/// Clears the upper halves of the vector registers, which hold nothing that C++ knows of. The toolkit's fills leave
/// something there; on some processors every call into the mathematical library then costs a tenth of a
/// microsecond more, because it mixes two generations of vector code. Does nothing where there are no such halves.
void clearUpperHalves();

} // namespace projection
