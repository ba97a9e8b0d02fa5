/* The current task and its component tree.
 *
 * The component tree declares the process's endpoints: each endpoint's number is the riid that a
 * connect handshake answers for any of its names (full name, short name, interface type, or the
 * interface type followed by "." and the short name). The tree is copied; the caller's data need
 * not outlive the call. Thread-safe.
 */
#ifndef HL_PLATFORM_HOS_TASK_H
#define HL_PLATFORM_HOS_TASK_H

#include <stddef.h>

#include <platform/nk_result.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct HosTask HosTask;

typedef struct HosEndpointDesc {
    unsigned int number; /* the riid; below 0xFFFF */
    const char* fullName;
    const char* shortName;
    const char* interfaceType;
} HosEndpointDesc;

typedef struct HosServiceComponentDesc {
    const char* fullName;
    const char* shortName;
    const char* type;
    const unsigned int* endpointNumbers;
    size_t endpointCount;
} HosServiceComponentDesc;

typedef struct HosComponentTree {
    const char* typeName;
    const HosEndpointDesc* endpoints;
    size_t endpointCount;
    const HosServiceComponentDesc* services;
    size_t serviceCount;
} HosComponentTree;

/* The current process's task. Never null. */
HosTask* HosTaskGetSelf(void);
/* Declares the tree. NK_EINVAL for a null task or tree, a null name, or a duplicate number. */
int HosTaskSetComponentTree(HosTask* task, const HosComponentTree* tree);
/* Readies a channel from `client` to `server` under `name`. Only the task itself can be both.
 * NK_EINVAL for another task or an invalid name; NK_ENOENDPOINT when no tree is set. */
int HosTaskConnectToService(HosTask* client, HosTask* server, const char* name);

#ifdef __cplusplus
}
#endif

#endif
