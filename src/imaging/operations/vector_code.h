// Loops in the widest vector code that the processor has, chosen at run time.
//
// A loop is a callable without arguments whose call operator, and all that it calls for each pixel,
// is marked TXS_INLINE_LOOP: it is compiled once for any processor of its kind and, where that
// pays, once more for those with wider registers. Both do the same arithmetic, so both give the
// same pixels: fused multiply-adds, which round differently, are left out of the wider code.
//
// On x86-64 any processor has vectors of 16 bytes, but many have AVX2: 32 bytes, minima and
// products of 32-bit integers, and loads from eight places at once. Elsewhere (ARM has all that it
// has from the start) there is one version.
#pragma once

#if defined(__GNUC__) && defined(__x86_64__)
#define TXS_WIDE_CODE __attribute__((target("avx2")))
#else
#define TXS_WIDE_CODE
#endif

#if defined(__GNUC__)
#define TXS_INLINE_LOOP __attribute__((always_inline))
#else
#define TXS_INLINE_LOOP
#endif

namespace imaging::operations {

enum class VectorCode { Plain, Widest };

// Which code all loops of the program run from now on; Widest at the start. For tests and
// measurements.
void useVectorCode(VectorCode code);

// Whether loops run in the wider code now.
bool runsWideCode();

template <typename Loop>
void runPlainCode(const Loop& loop) {
    loop();
}

template <typename Loop>
TXS_WIDE_CODE void runWideCode(const Loop& loop) {
    loop();
}

template <typename Loop>
void runVectorised(const Loop& loop) {
    if (runsWideCode()) {
        runWideCode(loop);
    } else {
        runPlainCode(loop);
    }
}

} // namespace imaging::operations
