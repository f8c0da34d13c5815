// Who guards what, written down where a compiler that can check it does so. Other compilers see nothing.
#pragma once

#ifdef __clang__
#define QRYLIB_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define QRYLIB_THREAD_SAFETY(attribute)
#endif

// On a type: something that is held. On another: what holds it while it lives.
#define QRYLIB_CAPABILITY QRYLIB_THREAD_SAFETY(capability("mutex"))
#define QRYLIB_SCOPED_CAPABILITY QRYLIB_THREAD_SAFETY(scoped_lockable)

// On a variable: touched only while `mutex` is held.
#define QRYLIB_GUARDED_BY(mutex) QRYLIB_THREAD_SAFETY(guarded_by(mutex))

// On a function: called only while `mutex` is held; takes it; gives it back.
#define QRYLIB_REQUIRES(mutex) QRYLIB_THREAD_SAFETY(requires_capability(mutex))
#define QRYLIB_ACQUIRE(mutex) QRYLIB_THREAD_SAFETY(acquire_capability(mutex))
#define QRYLIB_RELEASE() QRYLIB_THREAD_SAFETY(release_capability())
