// What the manager's services report to the supervisor. Called on the manager's server thread;
// an implementation synchronises itself.
#pragma once

#include <cstdint>
#include <string>

namespace hl_appmgr {

class ILifecycleSink {
public:
    virtual ~ILifecycleSink() = default;
    virtual void OnReadyToInitialize(const std::string& app) = 0;
    virtual void OnReadyToShowUI(const std::string& app) = 0;
    virtual void OnStateChanged(const std::string& app, std::int64_t state) = 0;
    virtual void OnFinishWithInternalError(const std::string& app, const std::string& error,
                                           const std::string& details) = 0;
    virtual void OnPing(const std::string& app) = 0;
    // The manager's end of a new update object of the application (the other end goes to the
    // application). The sink owns the handle from now on.
    virtual void OnUpdateHandle(const std::string& app, unsigned int managerEnd) = 0;
    // The value of a command; false when no such command was ever set.
    virtual bool LookUpCommand(const std::string& name, std::int64_t& value) = 0;
};

}  // namespace hl_appmgr
