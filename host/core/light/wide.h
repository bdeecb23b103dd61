#pragma once

/// Before a function whose loops run over the rays of a packet: compiled twice, for processors with
/// AVX2 and for any other, and chosen when the library is loaded. Both give the same bits, since
/// neither contracts multiplications and additions. Sanitizers cannot follow such a choice.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QV_WIDE [[gnu::target_clones("avx2", "default")]]
#else
#define QV_WIDE
#endif
