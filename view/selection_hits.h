#pragma once

#include <cstdint>

// Chooses the picked name from the hit records that OpenGL's selection mode
// wrote: of the records that carry a name, the one with the greatest maximum
// depth (the hit reaching farthest from the camera); on equal depths the
// earlier record. Records are read by their own name counts, records without
// a name (lines drawn before the first body) are skipped, and nothing past
// `hits` records or `bufferWords` words is read. Returns 0 when no named
// record is complete, and for a negative hit count (buffer overflow).
uint32_t farthestNamedHit(const uint32_t* buffer, int bufferWords, int hits);
