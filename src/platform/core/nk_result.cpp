#include <platform/nk_result.h>

extern "C" const char* NkResultText(int code) {
    switch (code) {
        case NK_EOK:
            return "Success";
        case NK_TRANSPORT_TIMEOUT:
            return "Transport timeout";
        case NK_EGENERIC:
            return "Unspecified platform failure";
        case NK_EINVAL:
            return "Invalid argument";
        case NK_EBADHANDLE:
            return "Invalid handle";
        case NK_EACCESS:
            return "Access denied";
        case NK_ENOMEM:
            return "Out of resources";
        case NK_EFAIL:
            return "Operation failed";
        case NK_ENOTFOUND:
            return "Not found";
        case NK_ETIMEOUT:
            return "Timeout";
        case NK_ENOENDPOINT:
            return "No such endpoint";
        case NK_EBADMSG:
            return "Malformed message";
        case NK_EMISMATCH:
            return "Response does not match the request";
        case NK_ETOOBIG:
            return "Message too large";
        case NK_ECLOSED:
            return "Channel closed";
        case NK_EBUSY:
            return "Name in use";
        default:
            return "Unknown platform result";
    }
}
