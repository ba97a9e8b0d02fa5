// A component's request dispatcher as the IPC facade holds it: something that can be started and
// stopped. Implementations run their own thread; Start and Stop may be called from any thread.
#pragma once

#include <cstdint>

namespace hos::entity {

class IComponentDispatcher {
public:
    virtual ~IComponentDispatcher() = default;
    // Both return a result code: 0, or a negative code (for instance when already started/stopped).
    virtual std::int32_t Start() = 0;
    virtual std::int32_t Stop() = 0;
};

}  // namespace hos::entity
