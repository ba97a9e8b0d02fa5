#include <hosted_session/x_display.h>

#include <poll.h>
#include <unistd.h>

namespace hl::hosted_session {

namespace {
using namespace std::chrono_literals;
}  // namespace

std::unique_ptr<XDisplay> XDisplay::StartXvfb(const std::string& logPath, std::string& error) {
    int ends[2];
    if (pipe(ends) != 0) {
        error = "can't make a pipe for Xvfb";
        return nullptr;
    }
    auto server = std::make_unique<ChildProcess>(
        std::vector<std::string>{"Xvfb", "-displayfd", "3", "-screen", "0", "1280x1024x24", "-nolisten", "tcp"},
        SpawnOptions{logPath, ends[1], true});
    close(ends[1]);
    // Xvfb writes its display number and a newline once it serves.
    std::string number;
    pollfd entry{ends[0], POLLIN, 0};
    char c = 0;
    while (server->Started() && poll(&entry, 1, 20000) > 0 && read(ends[0], &c, 1) == 1 && c != '\n') {
        number += c;
    }
    close(ends[0]);
    if (number.empty()) {
        error = server->Started() ? "Xvfb did not report a display (see " + logPath + ")" : server->Error();
        return nullptr;
    }
    return std::unique_ptr<XDisplay>(new XDisplay(std::move(server), ":" + number));
}

XDisplay::XDisplay(std::unique_ptr<ChildProcess> server, std::string name)
    : m_server(std::move(server)), m_name(std::move(name)) {}

XDisplay::~XDisplay() {
    m_server->Stop(5s);
}

}  // namespace hl::hosted_session
