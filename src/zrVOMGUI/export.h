#pragma once

/// Marks what the shared library zrVOMGUI shows; everything else stays hidden in it.
#if defined(_WIN32)
#if defined(zrVOMGUI_EXPORTS)
#define ZRVOMGUI_EXPORT __declspec(dllexport)
#else
#define ZRVOMGUI_EXPORT __declspec(dllimport)
#endif
#else
#define ZRVOMGUI_EXPORT __attribute__((visibility("default")))
#endif
