#include <diagnostics/exception.h>

#include <diagnostics/result_code.h>
#include <diagnostics/text_cast.h>

#include <cstdio>
#include <new>

namespace hca {

exception::exception(const char* file, std::uint32_t line) noexcept : m_file(file), m_line(line) {}

exception::exception(const char* file, std::uint32_t line, std::string_view message)
    : m_file(file), m_line(line), m_ctx(new ctx) {
    try {
        m_ctx->message.assign(message);
    } catch (...) {
        delete m_ctx;
        throw;
    }
}

exception::exception(const exception& other) noexcept
    : std::exception(other), m_file(other.m_file), m_line(other.m_line), m_ctx(other.m_ctx) {
    if (m_ctx != nullptr) {
        m_ctx->refCount.fetch_add(1, std::memory_order_relaxed);
    }
}

exception& exception::operator=(const exception& other) noexcept {
    if (this != &other) {
        if (other.m_ctx != nullptr) {
            other.m_ctx->refCount.fetch_add(1, std::memory_order_relaxed);
        }
        Release();
        m_file = other.m_file;
        m_line = other.m_line;
        m_ctx = other.m_ctx;
    }
    return *this;
}

exception::~exception() {
    Release();
}

void exception::Release() noexcept {
    if (m_ctx != nullptr && m_ctx->refCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete m_ctx;
    }
    m_ctx = nullptr;
}

const char* exception::what() const noexcept {
    return m_ctx != nullptr ? m_ctx->message.c_str() : "Unknown exception";
}

[[gnu::noinline]] void exception::CaptureStack(std::size_t skip) {
    if (m_ctx == nullptr) {
        return;
    }
    // One more frame: this function itself.
    m_ctx->callStack.frames = CaptureCallStack(skip + 1);
}

void exception::SetResultCode(int code) {
    if (m_ctx != nullptr) {
        m_ctx->properties.Set(kResultPropertyName, kResultPropertyTypeId, kIntTag, code);
    }
}

int get_result_code(const exception& e) {
    const exception::ctx* context = e.Context();
    if (context == nullptr) {
        return result_code::kExceptionHasNoResultCode;
    }
    const property_bag& properties = context->properties;
    if (const property* p = properties.Find(kResultPropertyName); p != nullptr && p->Tag() == kIntTag) {
        if (const auto value = p->Value<int>()) {
            return *value;
        }
    }
    if (const property* p = properties.Find(kOsResultPropertyName);
        p != nullptr && p->Tag() == kUnsignedIntTag) {
        if (const auto value = p->Value<unsigned int>()) {
            return posix::ResultCodeFromSystemError(*value);
        }
    }
    if (const property* p = properties.Find(kOsModuleResultPropertyName);
        p != nullptr && p->Tag() == kByteTag) {
        if (const auto value = p->Value<unsigned char>()) {
            return posix::ResultCodeFromSystemError(*value == 0 ? 0u : static_cast<unsigned int>(-2));
        }
    }
    return result_code::kExceptionHasNoResultCode;
}

Exception::text_t Exception::Text() const {
    return m_text;
}

Exception::text_t Exception::DisplayText() const {
    try {
        text_t result = text::Cast<std::u16string>(std::string_view(what()));
        result += u" - ";
        result += Text();
        result += u". At ";
        result += text::Cast<std::u16string>(std::string_view(File() != nullptr ? File() : ""));
        result += u"(";
        char line[64];
        std::snprintf(line, sizeof(line), "%d", static_cast<int>(Line()));
        result += text::Cast<std::u16string>(std::string_view(line));
        result += u") ";
        return result;
    } catch (const std::bad_alloc&) {
        return text_t();
    }
}

}  // namespace hca
