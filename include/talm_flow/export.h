#pragma once

/// @file
/// What of the library programs can use. Everything else of the shared library is hidden in it.

/// Marks what the shared library offers. It means the same to those who link the static library, so nobody defines
/// anything. On Windows programs link the static library; what the shared one offers there stands in a list of its own.
#if defined(__GNUC__) && !defined(_WIN32)
#define TALM_FLOW_API __attribute__((visibility("default")))
#else
#define TALM_FLOW_API
#endif
