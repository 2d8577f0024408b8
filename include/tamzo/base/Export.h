#pragma once

/// TAMZO_EXPORT marks what a shared library shows to hosts, TAMZO_HIDDEN the private functions of a
/// class that is shown. Everything else stays hidden in it, and a static library, which becomes
/// part of somebody's binary, exports nothing there.
#if defined(TAMZO_SHARED) && !defined(_WIN32)
#define TAMZO_EXPORT __attribute__((visibility("default")))
#define TAMZO_HIDDEN __attribute__((visibility("hidden")))
#else
#define TAMZO_EXPORT
#define TAMZO_HIDDEN
#endif

/// Marks a view, reference or iterator into the object that it is asked of: where the compiler can
/// tell that the object is gone before it (clang), that is a warning.
#if defined(__has_cpp_attribute)
#if __has_cpp_attribute(clang::lifetimebound)
#define TAMZO_LIFETIMEBOUND [[clang::lifetimebound]]
#endif
#endif
#ifndef TAMZO_LIFETIMEBOUND
#define TAMZO_LIFETIMEBOUND
#endif
