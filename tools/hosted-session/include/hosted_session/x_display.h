// A private X server for a session without a display: Xvfb (one 1280x1024x24 screen, no TCP) on the
// first free display number, which it reports itself.
//
// Thread: one thread. The object owns the server: the destructor ends it.
#pragma once

#include <hosted_session/child_process.h>

#include <memory>
#include <string>

namespace hl::hosted_session {

class XDisplay {
public:
    // Starts Xvfb and waits up to 20 s for its display number; null with `error` when it does not
    // come up. Its own messages go to `logPath`.
    static std::unique_ptr<XDisplay> StartXvfb(const std::string& logPath, std::string& error);
    ~XDisplay();
    XDisplay(const XDisplay&) = delete;
    XDisplay& operator=(const XDisplay&) = delete;

    // The display's name for DISPLAY (":1").
    const std::string& Name() const { return m_name; }

private:
    XDisplay(std::unique_ptr<ChildProcess> server, std::string name);

    std::unique_ptr<ChildProcess> m_server;
    std::string m_name;
};

}  // namespace hl::hosted_session
