#pragma once

// Numeric commands the application manager holds for this application, and the listeners told when
// one changes. GetCommand never throws: a failed request ends the process. Register and unregister
// from any thread, but never from inside a callback of the same object (that deadlocks).

#include <cstdint>
#include <functional>
#include <string_view>

namespace app_manager {

// Ids start at 1 and are never reused.
using CallbackId = std::uint64_t;

class IApplicationCommands {
public:
    virtual ~IApplicationCommands() = default;
    virtual std::int32_t GetCommand(std::string_view name, long& value) noexcept = 0;
};

class ICommandChangedSubscriber {
public:
    virtual ~ICommandChangedSubscriber() = default;
    // Throws hca::CheckFailedException "callback is nullptr" for an empty function.
    virtual CallbackId RegisterCallback(std::function<void()> callback) = 0;
    virtual void UnregisterCallback(CallbackId id) = 0;
};

}  // namespace app_manager
