#pragma once

/// Marks what the shared library zrVOM shows; everything else stays hidden in it.
#if defined(_WIN32)
#if defined(zrVOM_EXPORTS)
#define ZRVOM_EXPORT __declspec(dllexport)
#else
#define ZRVOM_EXPORT __declspec(dllimport)
#endif
#else
#define ZRVOM_EXPORT __attribute__((visibility("default")))
#endif
