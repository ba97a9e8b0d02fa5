// The listening socket of a server channel: `servers/<name>` in the runtime directory.
//
// `Bind` takes the name: it replaces the socket file of a server that has died, but leaves a live
// server's name and a file that is not a socket of our own user alone. `Accept` takes every client
// waiting in the backlog and checks its credentials: a peer of another uid than the allowed one is
// refused with a log line, yet handed on marked `refused`, so that its first frame can be answered
// before it goes. `Close` removes the socket file if it is still ours (another server may have
// taken the name over since) and closes the socket.
//
// Ownership: owned by its server channel; the accepted sockets pass to the caller.
// Thread: `Accept` on one thread at a time (the channel's pump); `Close` once that thread has
// ended. `Fd` and `Name` from any thread.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "core/unique_fd.h"

namespace hos::platform {

class ServerListener {
public:
    struct Peer {
        UniqueFd fd;
        bool refused = false;  // of another uid than the allowed one
        uid_t uid = 0;
        pid_t pid = 0;
    };

    // Binds and listens on the socket of `name`. Null with `rc` set on failure (logged).
    static std::unique_ptr<ServerListener> Bind(const std::string& name, uid_t allowedUid, int& rc);
    ~ServerListener();

    ServerListener(const ServerListener&) = delete;
    ServerListener& operator=(const ServerListener&) = delete;

    // Accepts the clients waiting now; never blocks.
    std::vector<Peer> Accept();
    void Close();
    int Fd() const { return m_fd.Get(); }
    const std::string& Name() const { return m_name; }

private:
    ServerListener(std::string name, std::string path, ino_t inode, uid_t allowedUid, UniqueFd fd);

    const std::string m_name;
    const std::string m_path;
    const ino_t m_inode;  // of the socket file we made, to know it is still ours
    const uid_t m_allowedUid;
    UniqueFd m_fd;
};

}  // namespace hos::platform
