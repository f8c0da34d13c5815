// Which sanitizer this is built with, in one place: compilers tell it in two ways.
#pragma once

#if defined(__has_feature)
#define QRYHOST_HAS_FEATURE(name) __has_feature(name)
#else
#define QRYHOST_HAS_FEATURE(name) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || QRYHOST_HAS_FEATURE(address_sanitizer)
#define QRYHOST_UNDER_ADDRESS_SANITIZER 1
#else
#define QRYHOST_UNDER_ADDRESS_SANITIZER 0
#endif

#if defined(__SANITIZE_THREAD__) || QRYHOST_HAS_FEATURE(thread_sanitizer)
#define QRYHOST_UNDER_THREAD_SANITIZER 1
#else
#define QRYHOST_UNDER_THREAD_SANITIZER 0
#endif
