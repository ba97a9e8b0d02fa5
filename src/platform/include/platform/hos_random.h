/* Random bytes from the kernel's random source. Thread-safe. */
#ifndef HL_PLATFORM_HOS_RANDOM_H
#define HL_PLATFORM_HOS_RANDOM_H

#include <stddef.h>

#include <platform/nk_result.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Fills `size` bytes of `buffer`. Returns 0, or NK_EINVAL / NK_EFAIL. */
int HosRandomGenerate(void* buffer, size_t size);

#ifdef __cplusplus
}
#endif

#endif
