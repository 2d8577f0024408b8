#pragma once

// TAMZO_SANITIZED: the tests run under a sanitizer that replaces the allocator and keeps memory,
// stack and descriptors for itself, so that none of these can be taken away.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TAMZO_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TAMZO_SANITIZED
#endif
#endif
