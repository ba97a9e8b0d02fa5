#pragma once
// Result codes: a signed 32-bit integer. Negative means failure; bits 30..16 are the facility
// (0 the runtime's own codes below, 1 platform errors, 6 a raw system error number), bits 15..0 the
// code within the facility. 0 is success, 1 the non-failing "False".

#include <cstdint>
#include <string>
#include <string_view>

namespace hca::result_code {

// Every code of facility 0 that has a text.
enum RtlErrorCode : std::int32_t {
    kNoError = 0x00000000,
    kFalse = 0x00000001,
    kInterfaceNotSupported = static_cast<std::int32_t>(0x80000001u),
    kUnexpected = static_cast<std::int32_t>(0x80000040u),
    kOutOfMemory = static_cast<std::int32_t>(0x80000041u),
    kNotSupported = static_cast<std::int32_t>(0x80000042u),
    kNotImplemented = static_cast<std::int32_t>(0x80000043u),
    kBufferTooSmall = static_cast<std::int32_t>(0x80000044u),
    kAccessDenied = static_cast<std::int32_t>(0x80000045u),
    kInvalidArgument = static_cast<std::int32_t>(0x80000046u),
    kBadCast = static_cast<std::int32_t>(0x80000047u),
    kNotMatched = static_cast<std::int32_t>(0x8000004Au),
    kUnspecifiedError = static_cast<std::int32_t>(0x8000004Bu),
    kNotFound = static_cast<std::int32_t>(0x8000004Cu),
    kFound = static_cast<std::int32_t>(0x8000004Du),
    kLocked = static_cast<std::int32_t>(0x8000004Fu),
    kNotLocked = static_cast<std::int32_t>(0x80000050u),
    kOperationCancelled = static_cast<std::int32_t>(0x80000051u),
    kMethodNotFound = static_cast<std::int32_t>(0x80000057u),
    kStackIsEmpty = static_cast<std::int32_t>(0x80000058u),
    kMediaError = static_cast<std::int32_t>(0x80000059u),
    kInvalidSignature = static_cast<std::int32_t>(0x8000005Au),
    kInvalidVersion = static_cast<std::int32_t>(0x8000005Bu),
    kInvalidSize = static_cast<std::int32_t>(0x8000005Cu),
    kInvalidType = static_cast<std::int32_t>(0x8000005Du),
    kOutOfRange = static_cast<std::int32_t>(0x8000005Eu),
    kOutOfSpace = static_cast<std::int32_t>(0x80000062u),
    kNotReady = static_cast<std::int32_t>(0x80000063u),
    kLessThan = static_cast<std::int32_t>(0x80000064u),
    kMoreThan = static_cast<std::int32_t>(0x80000065u),
    kProhibited = static_cast<std::int32_t>(0x80000066u),
    kAlreadyDone = static_cast<std::int32_t>(0x80000067u),
    kNeedReboot = static_cast<std::int32_t>(0x80000068u),
    kBasesCorrupted = static_cast<std::int32_t>(0x80000069u),
    kInvalidState = static_cast<std::int32_t>(0x8000006Au),
    kNotInitialized = static_cast<std::int32_t>(0x8000006Bu),
    kInsufficientResources = static_cast<std::int32_t>(0x8000006Cu),
    kInvalidResult = static_cast<std::int32_t>(0x80000071u),
    kUnknownException = static_cast<std::int32_t>(0x80000072u),
    kMetaInformationNotFound = static_cast<std::int32_t>(0x80000076u),
    kNumericalTypeOverflow = static_cast<std::int32_t>(0x80000077u),
    kFileIsTooBig = static_cast<std::int32_t>(0x80000078u),
    kTraceLevelOk = static_cast<std::int32_t>(0x80000079u),
    kTraceLevelProhibited = static_cast<std::int32_t>(0x8000007Au),
    kClassNotFound = static_cast<std::int32_t>(0x80000100u),
    kSettingsAreRequired = static_cast<std::int32_t>(0x80000101u),
    kUnexpectedSettings = static_cast<std::int32_t>(0x80000102u),
    kWrongSettingsType = static_cast<std::int32_t>(0x80000103u),
    kWrongSettingsRevision = static_cast<std::int32_t>(0x80000104u),
    kSettingsNotFound = static_cast<std::int32_t>(0x80000105u),
    kObjectIsUntrusted = static_cast<std::int32_t>(0x80000106u),
    kNoCurrentException = static_cast<std::int32_t>(0x80000150u),
    kExceptionHasNoResultCode = static_cast<std::int32_t>(0x80000151u),
    kExceptionWithSuccessfulResultCode = static_cast<std::int32_t>(0x80000152u),
    kPropertyNotFound = static_cast<std::int32_t>(0x80000180u),
    kOperationTimeout = static_cast<std::int32_t>(0x80000221u),
    kInvalidSymbol = static_cast<std::int32_t>(0x80000300u),
    kNonDecSymbol = static_cast<std::int32_t>(0x80000301u),
    kNonHexSymbol = static_cast<std::int32_t>(0x80000302u),
    kNonBase64Symbol = static_cast<std::int32_t>(0x80000303u),
    kSyntaxError = static_cast<std::int32_t>(0x80000310u),
    kGuidSyntaxError = static_cast<std::int32_t>(0x80000311u),
    kOidSyntaxError = static_cast<std::int32_t>(0x80000312u),
    kDateTimeSyntaxError = static_cast<std::int32_t>(0x80000313u),
};

// The facility-1 codes that have a text.
enum PlatformErrorCode : std::int32_t {
    kUnspecifiedPlatformError = static_cast<std::int32_t>(0x80010100u),
    kInvalidHandle = static_cast<std::int32_t>(0x80010101u),
    kFileNotFound = static_cast<std::int32_t>(0x80010102u),
    kPathNotFound = static_cast<std::int32_t>(0x80010103u),
    kSharingViolation = static_cast<std::int32_t>(0x80010104u),
    kAlreadyExists = static_cast<std::int32_t>(0x80010105u),
    kWaitAbandoned = static_cast<std::int32_t>(0x80010106u),
    kSymbolNotFound = static_cast<std::int32_t>(0x80010107u),
    kSxsIsIncorrect = static_cast<std::int32_t>(0x80010108u),
    kInvalidPathName = static_cast<std::int32_t>(0x80010109u),
    kCannotOpenAnAnonymousLevelSecurityToken = static_cast<std::int32_t>(0x80010110u),
    kPasswordIsInvalid = static_cast<std::int32_t>(0x80010111u),
    kModuleNotFound = static_cast<std::int32_t>(0x80010112u),
    kSystemImageBadSignature = static_cast<std::int32_t>(0x80010113u),
    kCloudFileRequestAborted = static_cast<std::int32_t>(0x80010114u),
    kMemoryMappingFailed = static_cast<std::int32_t>(0x80010115u),
    kNetworkError = static_cast<std::int32_t>(0x80010116u),
    kSystemImageBadFormat = static_cast<std::int32_t>(0x80010117u),
};

// Facility of a code: bits 30..16.
constexpr unsigned Facility(std::int32_t code) {
    return (static_cast<std::uint32_t>(code) >> 16) & 0x7FFFu;
}
constexpr bool Failed(std::int32_t code) {
    return code < 0;
}

inline constexpr std::int32_t kFacilityRuntime = 0;
inline constexpr std::int32_t kFacilityPlatform = 1;
inline constexpr std::int32_t kFacilitySystemError = 6;

}  // namespace hca::result_code

namespace hca {

inline constexpr std::string_view kUnknownResultCodeText = "Unknown result code";

// The facility-0 text of code; "Unknown result code" for a code without an entry. Doesn't look at the
// facility: only the whole value is compared with the table.
std::string_view rtl_result_code_message(int code);

// The facility-1 text of code, keyed by the whole value; "Unknown result code" for anything else.
std::string_view platform_result_code_message(int code);

// The text of a code by its facility: 0 the runtime table, 1 the platform table, else unknown.
std::string_view result_code_message(int code);

namespace posix {
// Maps a platform error number (the platform's own numbering) to a result code.
int ResultCodeFromSystemError(unsigned int error);
}  // namespace posix

}  // namespace hca

namespace hcax {
// "Invalid argument = 0x80000046": the text, " = 0x" and the code as an unsigned number in lower-case
// hexadecimal of at least 2 digits ("No error = 0x00").
std::string ResultCodeText(int code);
}  // namespace hcax

namespace fdn::hcax {
// The same as ::hcax::ResultCodeText, for the foundation library's users.
std::string ResultCodeText(int code);
}  // namespace fdn::hcax
