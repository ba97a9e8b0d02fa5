/* Result codes of the platform's calls. 0 is success; every failure is negative as an int.
 * The hosted platform's own codes live in the 0x9000xxxx family; a transport call or receive that
 * runs out of time returns NK_TRANSPORT_TIMEOUT (-11).
 */
#ifndef HL_PLATFORM_NK_RESULT_H
#define HL_PLATFORM_NK_RESULT_H

#ifdef __cplusplus
extern "C" {
#endif

#define NK_EOK 0
#define NK_TRANSPORT_TIMEOUT (-11)
#define NK_EGENERIC ((int)0x90000001u)    /* unspecified platform failure */
#define NK_EINVAL ((int)0x90000002u)      /* invalid argument */
#define NK_EBADHANDLE ((int)0x90000003u)  /* unknown handle, or a handle of the wrong kind */
#define NK_EACCESS ((int)0x90000005u)     /* peer refused: another user */
#define NK_ENOMEM ((int)0x9000000Cu)      /* out of resources */
#define NK_EFAIL ((int)0x9000000Du)       /* operation failed */
#define NK_ENOTFOUND ((int)0x90000013u)   /* server not there yet; notice dropped; nothing subscribed */
#define NK_ETIMEOUT ((int)0x90000014u)    /* connect or notice wait ran out of time */
#define NK_ENOENDPOINT ((int)0x90000015u) /* the server exists but does not offer the name */
#define NK_EBADMSG ((int)0x90000016u)     /* malformed frame */
#define NK_EMISMATCH ((int)0x90000017u)   /* response iid or mid differs from the request */
#define NK_ETOOBIG ((int)0x90000018u)     /* message, handles or arena exceed the receiver's room */
#define NK_ECLOSED ((int)0x90000019u)     /* the peer closed the channel or died */
#define NK_EBUSY ((int)0x9000001Bu)       /* a server name already in use */

/* Text of a result code, "Unknown platform result" for others. Never null. */
const char* NkResultText(int code);

#ifdef __cplusplus
}
#endif

#endif
