#pragma once
// Subscribes an observer to changes of the setting at a path (and, as the service decides, below
// it). Subscribe hands back the subscription's id; the observer is shared with the subscriber until
// Unsubscribe. After Unsubscribe has returned, the observer isn't called again and isn't running.
// Results are codes: negative on failure.

#include <settings_manager/i_settings_update_observer.h>
#include <settings_manager/subscription_id.h>
#include <uvc/path.h>

#include <cstdint>
#include <memory>

namespace settings_manager {

class ISettingsUpdateSubscriber {
public:
    virtual ~ISettingsUpdateSubscriber() = default;
    virtual std::int32_t Subscribe(const uvc::Path& path, std::shared_ptr<ISettingsUpdateObserver> observer,
                                   SubscriptionId& sid) = 0;
    virtual std::int32_t Unsubscribe(SubscriptionId sid) = 0;
};

}  // namespace settings_manager
