#pragma once
// Told of a change of a subscribed setting. Called on the settings callback thread of the service's
// connection, never with a lock of the client held. upd is the kind of update, as the service sends
// it; the client doesn't interpret it. The result, if any, is ignored. An exception thrown here isn't
// caught and ends the process. Must not unsubscribe its own subscription from inside OnUpdate.

#include <uvc/path.h>

#include <cstdint>

namespace settings_manager {

class ISettingsUpdateObserver {
public:
    virtual ~ISettingsUpdateObserver() = default;
    virtual void OnUpdate(const uvc::Path& path, std::uint8_t upd) = 0;
};

}  // namespace settings_manager
