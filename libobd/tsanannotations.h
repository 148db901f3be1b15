#ifndef OBD_TSANANNOTATIONS_H
#define OBD_TSANANNOTATIONS_H

// Debian's Qt is not built with ThreadSanitizer, so a QMutex locked or a
// QWaitCondition woken inside the library is invisible to it. These
// annotations tell it about our own wrappers; they vanish in other builds.

#if defined(__SANITIZE_THREAD__)
#define OBD_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define OBD_TSAN 1
#endif
#endif

#ifdef OBD_TSAN
#include <sanitizer/tsan_interface.h>
#define OBD_TSAN_MUTEX_CREATE(m) __tsan_mutex_create((m), 0)
#define OBD_TSAN_MUTEX_DESTROY(m) __tsan_mutex_destroy((m), 0)
#define OBD_TSAN_PRE_LOCK(m, f) __tsan_mutex_pre_lock((m), (f))
#define OBD_TSAN_POST_LOCK(m, f) __tsan_mutex_post_lock((m), (f), 0)
#define OBD_TSAN_PRE_UNLOCK(m) __tsan_mutex_pre_unlock((m), 0)
#define OBD_TSAN_POST_UNLOCK(m) __tsan_mutex_post_unlock((m), 0)
#define OBD_TSAN_TRY_LOCK __tsan_mutex_try_lock
#define OBD_TSAN_TRY_LOCK_FAILED __tsan_mutex_try_lock_failed
// A hand-off through Qt's event queue: release before posting, acquire in
// the receiver.
#define OBD_TSAN_RELEASE(a) __tsan_release((void*)(a))
#define OBD_TSAN_ACQUIRE(a) __tsan_acquire((void*)(a))
#else
#define OBD_TSAN_MUTEX_CREATE(m) ((void)0)
#define OBD_TSAN_MUTEX_DESTROY(m) ((void)0)
#define OBD_TSAN_PRE_LOCK(m, f) ((void)0)
#define OBD_TSAN_POST_LOCK(m, f) ((void)0)
#define OBD_TSAN_PRE_UNLOCK(m) ((void)0)
#define OBD_TSAN_POST_UNLOCK(m) ((void)0)
#define OBD_TSAN_TRY_LOCK 0
#define OBD_TSAN_TRY_LOCK_FAILED 0
#define OBD_TSAN_RELEASE(a) ((void)0)
#define OBD_TSAN_ACQUIRE(a) ((void)0)
#endif

#endif
