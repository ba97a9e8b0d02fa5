// The process's task: its component tree, from which the connect handshake answers a name with
// the riid of the endpoint that bears it.
//
// A name matches an endpoint by its full name, its short name, its interface type, or the
// interface type followed by "." and the short name; the first endpoint in tree order wins.
// Thread: every operation locks; safe from any thread.
#pragma once

#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <platform/hos_task.h>

namespace hos::platform {

class Task {
public:
    struct Endpoint {
        unsigned int number = 0;
        std::string fullName;
        std::string shortName;
        std::string interfaceType;
    };

    static Task& Self();

    // Copies the tree. NK_EINVAL for a null tree, a missing name or a repeated number.
    int SetComponentTree(const HosComponentTree* tree);
    // Records `name` as a connection of the task to itself. NK_EINVAL for an invalid name;
    // NK_ENOENDPOINT when no tree has been set.
    int ConnectToSelf(std::string_view name);
    // The riid for `name`, or NK_ENOENDPOINT.
    int Resolve(std::string_view name) const;
    std::string TypeName() const;

    // Forgets the tree and the connections; for tests that build several trees in one process.
    void ResetForTesting();

private:
    Task() = default;

    mutable std::mutex m_mutex;
    std::optional<std::string> m_typeName;
    std::vector<Endpoint> m_endpoints;
    std::set<std::string, std::less<>> m_connections;
};

}  // namespace hos::platform
