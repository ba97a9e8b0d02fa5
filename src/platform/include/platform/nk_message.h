/* The message, arena and arena reference of the platform's typed IPC.
 *
 * A message is a 24-byte header, then `handle count` handle descriptors of 16 bytes each, then the
 * fixed fields of the method. Integers are little-endian. Variable data travels in an arena beside
 * the message and is referred to by `nk_ptr_t` values (offset from the arena's start, size).
 *
 *   offset 0   u16  iid        interface id (riid of the endpoint), echoed in the response
 *   offset 2   u16  mid        method id, echoed in the response
 *   offset 4   u32  size word  bits 0-22: size of the whole message in bytes, header included
 *                              bits 23-30: number of handle descriptors
 *                              bit 31: set in a response whose server failed
 *   offset 8   16 bytes        owned by the platform's transport; callers leave them alone
 *   offset 24  16 bytes per handle descriptor; the low 24 bits of the first u32 are the handle
 *
 * Plain C, usable from C and C++. No function here allocates or blocks.
 */
#ifndef HL_PLATFORM_NK_MESSAGE_H
#define HL_PLATFORM_NK_MESSAGE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define NK_MESSAGE_HEADER_SIZE 24u
#define NK_HANDLE_DESC_SIZE 16u
#define NK_MESSAGE_SIZE_MASK 0x007FFFFFu
#define NK_MESSAGE_HANDLES_SHIFT 23u
#define NK_MESSAGE_HANDLES_MASK 0xFFu
#define NK_MESSAGE_FAILED_FLAG 0x80000000u
/* The size word of a response whose server failed: the flag and a bare header. */
#define NK_SERVER_FAILURE_WORD 0x80000018u

/* The invalid handle, and its 24-bit form inside a handle descriptor. */
#define NK_INVALID_HANDLE 0xFFFFFFFFu
#define NK_HANDLE_DESC_INVALID 0x00FFFFFFu
#define NK_HANDLE_DESC_HANDLE_MASK 0x00FFFFFFu
/* An iid that a response is not compared against, and the invalid riid. */
#define NK_IID_ANY 0xFFFFu
#define NK_INVALID_RIID 0xFFFFu
/* A timeout in milliseconds that never runs out. */
#define NK_TIMEOUT_INFINITE 0xFFFFFFFFu

typedef struct nk_message {
    uint16_t iid;
    uint16_t mid;
    uint32_t sizeFlags;
    uint8_t platform[16];
} nk_message;

typedef struct nk_handle_desc {
    uint32_t handle; /* low 24 bits: the handle; the upper 8 bits travel unchanged */
    uint32_t reserved[3];
} nk_handle_desc;

/* Reference to a block inside an arena. */
typedef struct nk_ptr_t {
    uint32_t offset;
    uint32_t size;
} nk_ptr_t;

/* A caller-owned memory block: start, the next free byte, and one past the last byte.
 * Three null pointers make an empty arena. */
typedef struct nk_arena {
    unsigned char* start;
    unsigned char* cursor;
    unsigned char* end;
} nk_arena;

static inline uint32_t nk_size_word(uint32_t size, uint32_t handleCount) {
    return (size & NK_MESSAGE_SIZE_MASK) |
           ((handleCount & NK_MESSAGE_HANDLES_MASK) << NK_MESSAGE_HANDLES_SHIFT);
}

static inline uint32_t nk_message_size(const nk_message* message) {
    return message->sizeFlags & NK_MESSAGE_SIZE_MASK;
}

static inline uint32_t nk_message_handle_count(const nk_message* message) {
    return (message->sizeFlags >> NK_MESSAGE_HANDLES_SHIFT) & NK_MESSAGE_HANDLES_MASK;
}

static inline int nk_message_failed(const nk_message* message) {
    return (message->sizeFlags & NK_MESSAGE_FAILED_FLAG) != 0;
}

/* The index-th handle descriptor, which the caller knows to lie inside the message. */
static inline nk_handle_desc* nk_message_handle_desc(nk_message* message, uint32_t index) {
    return (nk_handle_desc*)((unsigned char*)message + NK_MESSAGE_HEADER_SIZE +
                             (size_t)index * NK_HANDLE_DESC_SIZE);
}

static inline const nk_handle_desc* nk_message_handle_desc_const(const nk_message* message, uint32_t index) {
    return (const nk_handle_desc*)((const unsigned char*)message + NK_MESSAGE_HEADER_SIZE +
                                   (size_t)index * NK_HANDLE_DESC_SIZE);
}

static inline uint32_t nk_handle_desc_get(const nk_handle_desc* desc) {
    uint32_t handle = desc->handle & NK_HANDLE_DESC_HANDLE_MASK;
    return handle == NK_HANDLE_DESC_INVALID ? NK_INVALID_HANDLE : handle;
}

static inline void nk_handle_desc_set(nk_handle_desc* desc, uint32_t handle) {
    desc->handle = (desc->handle & ~NK_HANDLE_DESC_HANDLE_MASK) | (handle & NK_HANDLE_DESC_HANDLE_MASK);
}

/* Bytes in use: from start to cursor; 0 for an empty arena. */
static inline size_t nk_arena_used(const nk_arena* arena) {
    return (arena == NULL || arena->start == NULL || arena->cursor < arena->start)
               ? 0u
               : (size_t)(arena->cursor - arena->start);
}

static inline size_t nk_arena_capacity(const nk_arena* arena) {
    return (arena == NULL || arena->start == NULL || arena->end < arena->start)
               ? 0u
               : (size_t)(arena->end - arena->start);
}

static inline void nk_arena_reset(nk_arena* arena) {
    arena->cursor = arena->start;
}

#ifdef __cplusplus
}
static_assert(sizeof(nk_message) == 24, "nk_message header is 24 bytes");
static_assert(sizeof(nk_handle_desc) == 16, "a handle descriptor is 16 bytes");
static_assert(sizeof(nk_ptr_t) == 8, "nk_ptr_t is 8 bytes");
#endif

#endif
