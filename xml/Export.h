#pragma once

/// Marks what hosts may link to; everything else stays hidden in a shared library.
#if defined(_WIN32)
#define TAMZO_EXPORT
#else
#define TAMZO_EXPORT __attribute__((visibility("default")))
#endif
