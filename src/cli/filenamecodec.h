#pragma once

/// Makes every file name that the system has survive the way through the toolkit's texts and back, whatever the
/// locale: as UTF-8, and each byte that is none as a half of a surrogate pair of its own, U+DC80 .. U+DCFF. Call
/// it once, before anything turns a name into a text.
void useFileNameCodec();
