#ifndef OBD_TSANANNOTATIONS_H
#define OBD_TSANANNOTATIONS_H

// Debian's Qt is not built with ThreadSanitizer: QMutex annotates itself in
// its inline code, but what Qt's library does with a mutex (a wait
// condition releasing and re-taking it) or with its event queue is invisible.
// These annotations describe such hand-offs where our code relies on them;
// they vanish in other builds.

#if defined(__SANITIZE_THREAD__)
#define OBD_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define OBD_TSAN 1
#endif
#endif

#ifdef OBD_TSAN
#include <sanitizer/tsan_interface.h>
#define OBD_TSAN_PRE_LOCK(m, f) __tsan_mutex_pre_lock((m), (f))
#define OBD_TSAN_POST_LOCK(m, f) __tsan_mutex_post_lock((m), (f), 0)
#define OBD_TSAN_PRE_UNLOCK(m) __tsan_mutex_pre_unlock((m), 0)
#define OBD_TSAN_POST_UNLOCK(m) __tsan_mutex_post_unlock((m), 0)
// A hand-off through Qt's event queue: release before posting, acquire in
// the receiver.
#define OBD_TSAN_RELEASE(a) __tsan_release((void*)(a))
#define OBD_TSAN_ACQUIRE(a) __tsan_acquire((void*)(a))
#else
#define OBD_TSAN_PRE_LOCK(m, f) ((void)0)
#define OBD_TSAN_POST_LOCK(m, f) ((void)0)
#define OBD_TSAN_PRE_UNLOCK(m) ((void)0)
#define OBD_TSAN_POST_UNLOCK(m) ((void)0)
#define OBD_TSAN_RELEASE(a) ((void)0)
#define OBD_TSAN_ACQUIRE(a) ((void)0)
#endif

#endif
