// SPDX-License-Identifier: MIT
#pragma once

// What a mutex guards, in words that Clang checks (-Wthread-safety); other compilers skip them.
//
//   Mutex m_mutex;
//   int m_frames VORN_GUARDED_BY(m_mutex);           // touched with the mutex held only
//   void takeFrame() VORN_REQUIRES(m_mutex);         // called with the mutex held
//   void stop() VORN_EXCLUDES(m_mutex);              // called without it: it takes it itself

#if defined(__clang__)
#define VORN_THREAD_ANNOTATION(annotation) __attribute__((annotation))
#else
#define VORN_THREAD_ANNOTATION(annotation)
#endif

#define VORN_CAPABILITY(name) VORN_THREAD_ANNOTATION(capability(name))
#define VORN_SCOPED_CAPABILITY VORN_THREAD_ANNOTATION(scoped_lockable)
#define VORN_GUARDED_BY(mutex) VORN_THREAD_ANNOTATION(guarded_by(mutex))
#define VORN_REQUIRES(...) VORN_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define VORN_EXCLUDES(...) VORN_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define VORN_ACQUIRE(...) VORN_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define VORN_RELEASE(...) VORN_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
