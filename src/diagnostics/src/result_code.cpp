#include <diagnostics/result_code.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace hca {
namespace {

struct CodeText {
    std::uint32_t code;
    std::string_view text;
};

// Sorted by code, for the binary search below.
constexpr std::array kRuntimeTexts = {
    CodeText{0x00000000, "No error"},
    CodeText{0x00000001, "False"},
    CodeText{0x80000001, "Interface not supported"},
    CodeText{0x80000040, "Unexpected"},
    CodeText{0x80000041, "Out of memory"},
    CodeText{0x80000042, "Not supported"},
    CodeText{0x80000043, "Not implemented"},
    CodeText{0x80000044, "Buffer too small"},
    CodeText{0x80000045, "Access denied"},
    CodeText{0x80000046, "Invalid argument"},
    CodeText{0x80000047, "Bad cast"},
    CodeText{0x8000004A, "Not matched"},
    CodeText{0x8000004B, "Unspecified error"},
    CodeText{0x8000004C, "Not found"},
    CodeText{0x8000004D, "Found"},
    CodeText{0x8000004F, "Locked"},
    CodeText{0x80000050, "Not locked"},
    CodeText{0x80000051, "Operation cancelled"},
    CodeText{0x80000057, "Method not found"},
    CodeText{0x80000058, "Stack is empty"},
    CodeText{0x80000059, "Media error"},
    CodeText{0x8000005A, "Invalid signature"},
    CodeText{0x8000005B, "Invalid version"},
    CodeText{0x8000005C, "Invalid size"},
    CodeText{0x8000005D, "Invalid type"},
    CodeText{0x8000005E, "Out of range"},
    CodeText{0x80000062, "Out of space"},
    CodeText{0x80000063, "Not ready"},
    CodeText{0x80000064, "Less than"},
    CodeText{0x80000065, "More than"},
    CodeText{0x80000066, "Prohibited"},
    CodeText{0x80000067, "Already done"},
    CodeText{0x80000068, "Need reboot"},
    CodeText{0x80000069, "Bases corrupted"},
    CodeText{0x8000006A, "Invalid state"},
    CodeText{0x8000006B, "Not initialized"},
    CodeText{0x8000006C, "Insufficient resources"},
    CodeText{0x80000071, "Invalid result"},
    CodeText{0x80000072, "Unknown exception"},
    CodeText{0x80000076, "Meta information not found"},
    CodeText{0x80000077, "Numerical type overflow"},
    CodeText{0x80000078, "File is too big"},
    CodeText{0x80000079, "Trace level ok"},
    CodeText{0x8000007A, "Trace level prohibited"},
    CodeText{0x80000100, "Class not found"},
    CodeText{0x80000101, "Settings are required"},
    CodeText{0x80000102, "Unexpected settings"},
    CodeText{0x80000103, "Wrong settings type"},
    CodeText{0x80000104, "Wrong settings revision"},
    CodeText{0x80000105, "Settings not found"},
    CodeText{0x80000106, "Object is untrusted"},
    CodeText{0x80000150, "No current exception"},
    CodeText{0x80000151, "Exception has no result code"},
    CodeText{0x80000152, "Exception with successful result code"},
    CodeText{0x80000180, "Property not found"},
    CodeText{0x80000221, "Operation timeout"},
    CodeText{0x80000300, "Invalid symbol"},
    CodeText{0x80000301, "Non dec symbol"},
    CodeText{0x80000302, "Non hex symbol"},
    CodeText{0x80000303, "Non base64 symbol"},
    CodeText{0x80000310, "Syntax error"},
    CodeText{0x80000311, "GUID syntax error"},
    CodeText{0x80000312, "OID syntax error"},
    CodeText{0x80000313, "DateTime syntax error"},
};

// 0x8001010A to 0x8001010F have no text and fall to the unknown text.
constexpr std::array kPlatformTexts = {
    CodeText{0x80010100, "Unspecified platform error"},
    CodeText{0x80010101, "Invalid handle"},
    CodeText{0x80010102, "File not found"},
    CodeText{0x80010103, "Path not found"},
    CodeText{0x80010104, "Sharing violation"},
    CodeText{0x80010105, "Already exists"},
    CodeText{0x80010106, "Wait abandoned"},
    CodeText{0x80010107, "Symbol not found"},
    CodeText{0x80010108, "Sxs is incorrect"},
    CodeText{0x80010109, "Invalid path name"},
    CodeText{0x80010110, "Cannot open an anonymous level security token"},
    CodeText{0x80010111, "Password is invalid"},
    CodeText{0x80010112, "Module not found"},
    CodeText{0x80010113, "System image bad signature"},
    CodeText{0x80010114, "Cloud file request aborted"},
    CodeText{0x80010115, "Memory mapping failed"},
    CodeText{0x80010116, "Network error"},
    CodeText{0x80010117, "System image bad format"},
};

template <std::size_t N>
constexpr bool IsSorted(const std::array<CodeText, N>& table) {
    for (std::size_t i = 1; i < N; ++i) {
        if (table[i - 1].code >= table[i].code) {
            return false;
        }
    }
    return true;
}
static_assert(IsSorted(kRuntimeTexts));
static_assert(IsSorted(kPlatformTexts));

template <std::size_t N>
std::string_view Lookup(const std::array<CodeText, N>& table, int code) {
    const auto key = static_cast<std::uint32_t>(code);
    const auto it =
        std::lower_bound(table.begin(), table.end(), key,
                         [](const CodeText& entry, std::uint32_t value) { return entry.code < value; });
    if (it != table.end() && it->code == key) {
        return it->text;
    }
    return kUnknownResultCodeText;
}

}  // namespace

std::string_view rtl_result_code_message(int code) {
    return Lookup(kRuntimeTexts, code);
}

std::string_view platform_result_code_message(int code) {
    return Lookup(kPlatformTexts, code);
}

std::string_view result_code_message(int code) {
    switch (result_code::Facility(code)) {
        case result_code::kFacilityRuntime:
            return rtl_result_code_message(code);
        case result_code::kFacilityPlatform:
            return platform_result_code_message(code);
        default:
            return kUnknownResultCodeText;
    }
}

namespace posix {

int ResultCodeFromSystemError(unsigned int error) {
    using namespace result_code;
    // The platform's own error numbers, which differ from Linux's from ELOOP on.
    static constexpr std::pair<unsigned int, int> kMapping[] = {
        {0, kNoError},               // none
        {1, kAccessDenied},          // EPERM
        {2, kFileNotFound},          // ENOENT
        {5, kMediaError},            // EIO
        {8, kSystemImageBadFormat},  // ENOEXEC
        {9, kInvalidHandle},         // EBADF
        {12, kOutOfMemory},          // ENOMEM
        {13, kAccessDenied},         // EACCES
        {16, kLocked},               // EBUSY
        {17, kAlreadyExists},        // EEXIST
        {20, kPathNotFound},         // ENOTDIR
        {22, kInvalidArgument},      // EINVAL
        {26, kLocked},               // ETXTBSY
        {27, kFileIsTooBig},         // EFBIG
        {28, kOutOfSpace},           // ENOSPC
        {62, kInvalidState},         // ELOOP
        {63, kInvalidSize},          // ENAMETOOLONG
        {84, kBufferTooSmall},       // EOVERFLOW
    };
    for (const auto& [number, code] : kMapping) {
        if (number == error) {
            return code;
        }
    }
    if (error < 0x10000u) {
        return static_cast<int>(0x80060000u | error);
    }
    return kUnspecifiedPlatformError;
}

}  // namespace posix
}  // namespace hca

namespace hcax {

std::string ResultCodeText(int code) {
    char number[16];
    std::snprintf(number, sizeof(number), "%02x", static_cast<unsigned int>(code));
    std::string_view text = hca::result_code_message(code);
    if (text.empty()) {
        text = hca::kUnknownResultCodeText;
    }
    std::string result;
    result.reserve(text.size() + 16);
    result.append(text).append(" = 0x").append(number);
    return result;
}

}  // namespace hcax

namespace fdn::hcax {

std::string ResultCodeText(int code) {
    return ::hcax::ResultCodeText(code);
}

}  // namespace fdn::hcax
