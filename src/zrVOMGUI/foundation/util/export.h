#pragma once

/// Marks what the shared library zrUtil shows; everything else stays hidden in it.
#if defined(_WIN32)
#if defined(zrUtil_EXPORTS)
#define ZRUTIL_EXPORT __declspec(dllexport)
#else
#define ZRUTIL_EXPORT __declspec(dllimport)
#endif
#else
#define ZRUTIL_EXPORT __attribute__((visibility("default")))
#endif

/// Marks a private function, or an inner class, of a class that its library shows: it stays hidden,
/// since only the library uses it. What inline code and templates of a header use can't be hidden.
#if defined(_WIN32)
#define ZR_LOCAL
#else
#define ZR_LOCAL __attribute__((visibility("hidden")))
#endif
