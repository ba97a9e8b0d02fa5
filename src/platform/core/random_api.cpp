#include <platform/hos_random.h>

#include <sys/random.h>

#include <cerrno>

extern "C" int HosRandomGenerate(void* buffer, size_t size) {
    if (buffer == nullptr && size > 0) {
        return NK_EINVAL;
    }
    auto* bytes = static_cast<unsigned char*>(buffer);
    size_t filled = 0;
    while (filled < size) {
        const ssize_t got = ::getrandom(bytes + filled, size - filled, 0);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return NK_EFAIL;
        }
        filled += static_cast<size_t>(got);
    }
    return NK_EOK;
}
