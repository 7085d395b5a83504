#pragma once

/// PHOTARIUM_EXPORT marks what the shared library shows; the rest is hidden.
#if defined(PHOTARIUM_STATIC) || !defined(_WIN32)
#if defined(__GNUC__)
#define PHOTARIUM_EXPORT __attribute__((visibility("default")))
#else
#define PHOTARIUM_EXPORT
#endif
#elif defined(PHOTARIUM_BUILDING)
#define PHOTARIUM_EXPORT __declspec(dllexport)
#else
#define PHOTARIUM_EXPORT __declspec(dllimport)
#endif
