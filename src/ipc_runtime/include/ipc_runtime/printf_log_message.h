#pragma once

#include <ipc_runtime/i_log_message.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <tuple>
#include <utility>

namespace hosipc_detail::api_v1 {

// A printf-style log text, formatted only when asked for. Text() formats once and caches the result.
// Holds the arguments as given (references stay references), so it must not outlive them.
// Not thread-safe; meant to live on the stack of one log call.
template <typename... Args>
class PrintfLogMessage final : public hosipc::api_v1::ILogMessage {
public:
    static constexpr const char* kFormatFailedText = "failed to format a log message";
    static constexpr const char* kAllocationFailedText = "failed to allocate memory for log string";

    template <typename... CallArgs>
    explicit PrintfLogMessage(const char* format, CallArgs&&... args)
        : m_format(format), m_args(std::forward<CallArgs>(args)...) {}

    PrintfLogMessage(const PrintfLogMessage&) = delete;
    PrintfLogMessage& operator=(const PrintfLogMessage&) = delete;

    const char* Text() override {
        if (m_text) {
            return m_text.get();
        }
        const unsigned long size = FormattedSize() + 1;
        m_text.reset(new (std::nothrow) char[size]);
        if (!m_text) {
            return kAllocationFailedText;
        }
        return Text(m_text.get(), size);
    }

    char* Text(char* buffer, unsigned long size) override {
        if (buffer == nullptr || size == 0) {
            return buffer;
        }
        if (Format(buffer, size) < 0) {
            // Truncating the fallback text into a short buffer is the intent here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wstringop-truncation"
            std::strncpy(buffer, kFormatFailedText, size);
#pragma GCC diagnostic pop
            buffer[size - 1] = '\0';
        }
        return buffer;
    }

    unsigned long FormattedSize() override {
        const int result = Format(nullptr, 0);
        return result < 0 ? 0 : static_cast<unsigned long>(result);
    }

private:
    int Format(char* buffer, unsigned long size) {
        return std::apply(
            [&](const auto&... args) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-truncation"
                return std::snprintf(buffer, size, m_format, args...);
#pragma GCC diagnostic pop
            },
            m_args);
    }

    const char* m_format;
    std::tuple<Args...> m_args;
    std::unique_ptr<char[]> m_text;
};

}  // namespace hosipc_detail::api_v1
