#pragma once

// TARN_API marks what the shared library exports; everything else is hidden.
// A static build (TARN_STATIC) needs no marking.
#if defined(TARN_STATIC)
#define TARN_API
#elif defined(_WIN32)
#if defined(TARN_BUILDING)
#define TARN_API __declspec(dllexport)
#else
#define TARN_API __declspec(dllimport)
#endif
#else
#define TARN_API __attribute__((visibility("default")))
#endif
