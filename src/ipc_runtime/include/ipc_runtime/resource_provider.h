#pragma once

#include <ipc_runtime/application_settings.h>
#include <ipc_runtime/i_ipc_allocator.h>
#include <ipc_runtime/message_capacity.h>

#include <memory>
#include <mutex>

namespace hosipc_detail::api_v1 {

// The shared things of generated proxies and stubs: the proxy allocator, the logger, the exception
// converters and the server loop's error handler. None of them is null after construction.
// Read-only after construction, so proxies on different threads share it without a lock.
class ResourceProvider {
public:
    ResourceProvider(const MessageCapacity& capacity, unsigned int reserved,
                     const hosipc::api_v1::ApplicationSettings& settings);

    ResourceProvider(const ResourceProvider&) = delete;
    ResourceProvider& operator=(const ResourceProvider&) = delete;

    // Copies each setting; a null one is replaced by the runtime's default. Runs once, from the constructor.
    void ApplySettings(const hosipc::api_v1::ApplicationSettings& settings);

    const std::shared_ptr<IIpcAllocator>& GetAllocator() const { return m_allocator; }
    const MessageCapacity& GetCapacity() const { return m_capacity; }
    unsigned int GetReserved() const { return m_reserved; }
    const std::shared_ptr<hosipc::api_v1::IRetcodeExceptionConverter>& GetRetcodeConverter() const {
        return m_retcodeConverter;
    }
    const std::shared_ptr<hosipc::api_v1::IStringExceptionConverter>& GetStringConverter() const {
        return m_stringConverter;
    }
    const std::shared_ptr<hosipc::api_v1::ILogger>& GetLogger() const { return m_logger; }
    const std::shared_ptr<hosipc::api_v1::IEventLoopErrorHandler>& GetEventLoopErrorHandler() const {
        return m_eventLoopErrorHandler;
    }

private:
    std::shared_ptr<IIpcAllocator> m_allocator;
    MessageCapacity m_capacity;
    unsigned int m_reserved;
    std::shared_ptr<hosipc::api_v1::IRetcodeExceptionConverter> m_retcodeConverter;
    std::shared_ptr<hosipc::api_v1::IStringExceptionConverter> m_stringConverter;
    std::shared_ptr<hosipc::api_v1::ILogger> m_logger;
    std::shared_ptr<hosipc::api_v1::IEventLoopErrorHandler> m_eventLoopErrorHandler;
    // Part of the provider's layout; no code of the runtime takes it.
    std::mutex m_mutex;
};

}  // namespace hosipc_detail::api_v1
