/**
 * @file
 * The platform trace: where the library reports every failure.
 */
#ifndef QRYLIB_PLATFORM_TRACE_H
#define QRYLIB_PLATFORM_TRACE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Writes one line, formatted as printf does. There are three formats:
 *
 *   "%s():[Return]:(%d) (0x%08lX)\n"   function, line, code as unsigned long
 *   "%s():[Enter]:(%d) \n"             function, line
 *   "%s():[Return]:(%d) \n"            function, line
 *
 * Called from any thread. It must not fail and must not call back into the library. The argument strings are
 * valid only during the call.
 *
 * @param destination  0
 * @param module       258
 * @param level        2
 * @param format       one of the three
 */
void pfwGENTrcPrintf(uint32_t destination, uint32_t module, uint32_t level, const char *format, ...)
    __attribute__((format(printf, 4, 5)));

#ifdef __cplusplus
}
#endif

#endif
