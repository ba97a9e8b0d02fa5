#include <ipc_runtime/resource_provider.h>

#include <ipc_runtime/default_allocator.h>
#include <ipc_runtime/default_event_loop_error_handler.h>
#include <ipc_runtime/default_logger.h>
#include <ipc_runtime/default_retcode_exception_converter.h>
#include <ipc_runtime/default_string_exception_converter.h>

namespace hosipc_detail::api_v1 {

namespace {

template <typename Default, typename Interface>
void CopyOrDefault(std::shared_ptr<Interface>& field, const std::shared_ptr<Interface>& setting) {
    field = setting;
    if (!field) {
        field = std::make_shared<Default>();
    }
}

}  // namespace

ResourceProvider::ResourceProvider(const MessageCapacity& capacity, unsigned int reserved,
                                   const hosipc::api_v1::ApplicationSettings& settings)
    : m_allocator(std::make_shared<DefaultAllocator>()), m_capacity(capacity), m_reserved(reserved) {
    ApplySettings(settings);
}

void ResourceProvider::ApplySettings(const hosipc::api_v1::ApplicationSettings& settings) {
    CopyOrDefault<DefaultRetcodeExceptionConverter>(m_retcodeConverter, settings.retcodeConverter);
    CopyOrDefault<DefaultStringExceptionConverter>(m_stringConverter, settings.stringConverter);
    CopyOrDefault<DefaultLogger>(m_logger, settings.logger);
    CopyOrDefault<hosipc::api_v1::DefaultEventLoopErrorHandler>(m_eventLoopErrorHandler,
                                                                settings.eventLoopErrorHandler);
}

}  // namespace hosipc_detail::api_v1
