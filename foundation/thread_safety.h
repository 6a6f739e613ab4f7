// Words for which lock guards what, which clang's builds check (-Wthread-safety). Other compilers
// read past them.
#pragma once

#ifdef __clang__
#define KELVARO_THREAD_SAFETY(word) __attribute__((word))
#else
#define KELVARO_THREAD_SAFETY(word)
#endif

#define KELVARO_LOCK_TYPE KELVARO_THREAD_SAFETY(capability("lock"))
#define KELVARO_LOCK_SCOPE KELVARO_THREAD_SAFETY(scoped_lockable)

// Of a member: touched with that lock held.
#define KELVARO_GUARDED_BY(lock) KELVARO_THREAD_SAFETY(guarded_by(lock))

// Of a function: its caller holds the lock.
#define KELVARO_NEEDS(lock) KELVARO_THREAD_SAFETY(requires_capability(lock))

// Of a lock's own functions.
#define KELVARO_TAKES(...) KELVARO_THREAD_SAFETY(acquire_capability(__VA_ARGS__))
#define KELVARO_TRIES(...) KELVARO_THREAD_SAFETY(try_acquire_capability(__VA_ARGS__))
#define KELVARO_GIVES_BACK(...) KELVARO_THREAD_SAFETY(release_capability(__VA_ARGS__))
#define KELVARO_VOUCHES(lock) KELVARO_THREAD_SAFETY(assert_capability(lock))
#define KELVARO_UNCHECKED KELVARO_THREAD_SAFETY(no_thread_safety_analysis)
