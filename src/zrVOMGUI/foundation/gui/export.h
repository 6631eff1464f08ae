#pragma once

/// Marks what the shared library zrGUI shows; everything else stays hidden in it.
#if defined(_WIN32)
#if defined(zrGUI_EXPORTS)
#define ZRGUI_EXPORT __declspec(dllexport)
#else
#define ZRGUI_EXPORT __declspec(dllimport)
#endif
#else
#define ZRGUI_EXPORT __attribute__((visibility("default")))
#endif
