// What the manager's services report to the supervisor, each call with the pid of the process that
// made it (from the peer credentials of its connection; -1 when unknown). A call whose pid is not
// that of the application of the name is refused (false) and logged.
// Called on the manager's server thread; an implementation synchronises itself.
#pragma once

#include <cstdint>
#include <string>

namespace hl_appmgr {

class ILifecycleSink {
public:
    virtual ~ILifecycleSink() = default;
    virtual bool OnReadyToInitialize(const std::string& app, long pid) = 0;
    virtual bool OnReadyToShowUI(const std::string& app, long pid) = 0;
    virtual bool OnStateChanged(const std::string& app, long pid, std::int64_t state) = 0;
    virtual bool OnFinishWithInternalError(const std::string& app, long pid, const std::string& error,
                                           const std::string& details) = 0;
    virtual bool OnPing(const std::string& app, long pid) = 0;
    // The manager's end of a new update object of the application (the other end goes to the
    // application). On true the sink owns the handle from now on; on false the caller keeps it.
    virtual bool OnUpdateHandle(const std::string& app, long pid, unsigned int managerEnd) = 0;
    // The value of a command; false when no such command was ever set.
    virtual bool LookUpCommand(const std::string& name, std::int64_t& value) = 0;
};

}  // namespace hl_appmgr
