#pragma once

// The component dispatcher over a table of generated interface servers: a request goes to the
// first entry whose id is the request's iid minus the dispatcher's riid. Requests of no entry are
// answered with the stale response buffer and end the dispatcher thread for good (only the log
// line tells). Thread: as BaseComponentDispatcher; the table is fixed at construction.

#include <common/hos_entity/base_component_dispatcher.h>
#include <diagnostics/check.h>
#include <ipc_runtime/i_dispatcher.h>
#include <platform/hos_entity/interface_dispatcher.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace hos::entity {

template <typename Request, typename Response, unsigned A, unsigned B>
class ComponentCodeGenDispatcher final : public BaseComponentDispatcher<Request, Response, A, B> {
public:
    // Throws hca::CheckFailedException "InterfaceDispatchers is empty" for an empty table, and as
    // the base for an invalid riid or handle.
    ComponentCodeGenDispatcher(std::vector<InterfaceDispatcher> interfaceDispatchers, std::uint16_t riid,
                               std::uint32_t handle, std::uint32_t recvTimeoutMs)
        : BaseComponentDispatcher<Request, Response, A, B>(riid, handle, recvTimeoutMs),
          m_interfaceDispatchers(std::move(interfaceDispatchers)) {
        HCA_CHECK(!m_interfaceDispatchers.empty()) << "InterfaceDispatchers is empty";
    }

    // The table goes first and the base's Stop joins the thread only afterwards, so the thread may
    // still take a request in between. Reading a destroyed table (or calling into a destroyed
    // object) would be a data race, so dispatching ends first: such a request finds no interface,
    // gets the stale reply and ends the loop, as it would with the table gone.
    ~ComponentCodeGenDispatcher() override { this->EndDispatching(); }

    bool DoDispatch(std::uint16_t riid, const nk_message* request, const nk_arena* requestArena,
                    nk_message* response, nk_arena* responseArena) override {
        if (request->iid < riid) {
            return false;
        }
        const auto id = static_cast<std::uint16_t>(request->iid - riid);
        for (const auto& entry : m_interfaceDispatchers) {
            if (entry.id == id) {
                entry.dispatcher->DispatchRequest(riid, request, requestArena, response, responseArena);
                return true;
            }
        }
        return false;
    }

private:
    std::vector<InterfaceDispatcher> m_interfaceDispatchers;
};

}  // namespace hos::entity
