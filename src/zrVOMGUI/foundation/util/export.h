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
