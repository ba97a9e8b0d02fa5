#include "support/raw_ism.h"

#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/node_arena.h>
#include <settings_manager/serialize.h>
#include <uvc/path_text.h>

#include <platform/platform.h>

#include <array>

namespace hl_settingsd::testing {

namespace {

using hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM;
namespace arena = hos::ipc::arena;

struct Request {
    std::vector<unsigned char> bytes;
    nk_arena view{};

    explicit Request(std::size_t size) : bytes(size) {
        view = nk_arena{bytes.data(), bytes.data(), bytes.data() + bytes.size()};
    }
    nk_ptr_t Put(const std::string& text) {
        arena::conv::Status status;
        return arena::conv::Put(view, {reinterpret_cast<const unsigned char*>(text.data()), text.size()},
                                static_cast<std::uint32_t>(bytes.size()), status);
    }
    nk_ptr_t Nodes(const RawItems& items) {
        auto first = items.cbegin();
        return arena::impl::Write(view, first, items.cend());
    }
};

}  // namespace

RawItems Items(const std::string& pathText, const settings_manager::Setting& setting) {
    RawItems items;
    const auto path = uvc::FromString(pathText, settings_manager::meta::GetIdSpecification()).first;
    settings_manager::Serialize(path, setting, items);
    return items;
}

RawIsm::RawIsm(const char* service) {
    m_ism.Init(hos::ipc::Target{service, "NkISM"}, true, 10000, 0xFFFFFFFFu, 10000);
}

RawIsm::Answer RawIsm::Write(const std::string& pathText, std::uint8_t mode, std::uint64_t ncount,
                             const RawItems& items) {
    Request request(NkISM::kWriteArena);
    const nk_ptr_t path = request.Put(pathText);
    const nk_ptr_t nodes = request.Nodes(items);
    Answer answer;
    answer.rc = 1;
    m_ism->Write(request.view, path, mode, ncount, nodes, answer.id, answer.rc);
    return answer;
}

std::int32_t RawIsm::WriteNext(std::uint64_t id, const RawItems& items, bool last) {
    Request request(NkISM::kNodesArena);
    const nk_ptr_t nodes = request.Nodes(items);
    std::int32_t rc = 1;
    m_ism->WriteNext(request.view, id, nodes, last ? 1 : 0, rc);
    return rc;
}

std::int32_t RawIsm::Cancel(std::uint64_t id) {
    std::int32_t rc = 1;
    m_ism->Cancel(id, rc);
    return rc;
}

RawIsm::Answer RawIsm::Read(const std::string& pathText, std::uint8_t mask, RawItems& items,
                            std::uint64_t& ncount) {
    std::vector<unsigned char> responseBytes(NkISM::kNodesArena);
    nk_arena response{responseBytes.data(), responseBytes.data(),
                      responseBytes.data() + responseBytes.size()};
    nk_ptr_t nodes{};
    Answer answer;
    answer.rc = 1;
    m_ism->Read(NkISM::Bytes(pathText.begin(), pathText.end()), mask, ncount, nodes, answer.id, answer.rc,
                response);
    if (answer.rc == 0) {
        arena::impl::Read(response, nodes, items);
    }
    return answer;
}

std::int32_t RawIsm::ReadNext(std::uint64_t id, RawItems* items, bool* last) {
    std::vector<unsigned char> responseBytes(NkISM::kNodesArena);
    nk_arena response{responseBytes.data(), responseBytes.data(),
                      responseBytes.data() + responseBytes.size()};
    nk_ptr_t nodes{};
    std::uint8_t lastFlag = 0;
    std::int32_t rc = 1;
    m_ism->ReadNext(id, nodes, lastFlag, rc, response);
    if (rc == 0 && items != nullptr) {
        arena::impl::Read(response, nodes, *items);
    }
    if (last != nullptr) {
        *last = lastFlag != 0;
    }
    return rc;
}

std::uint32_t RawIsm::SendFrame(const char* service, std::uint16_t riidOffset, std::uint16_t mid,
                                std::uint32_t size, const std::vector<unsigned char>& arenaBytes) {
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = 0xFFFF;
    if (KnCmConnect(service, "NkISM", 10000, &handle, &riid) != 0) {
        return 0;
    }
    NkHosTransport transport{};
    NkHosTransport_Init(&transport, handle, nullptr, 0);
    NkHosSetTransportTimeouts(&transport, NK_TIMEOUT_INFINITE, 10000);
    alignas(8) std::array<unsigned char, 256> requestBytes{};
    alignas(8) std::array<unsigned char, 256> responseBytes{};
    auto* request = reinterpret_cast<nk_message*>(requestBytes.data());
    auto* response = reinterpret_cast<nk_message*>(responseBytes.data());
    request->iid = static_cast<std::uint16_t>(riid + riidOffset);
    request->mid = mid;
    request->sizeFlags = nk_size_word(size, 0);
    std::vector<unsigned char> arenaCopy = arenaBytes;
    arenaCopy.resize(std::max<std::size_t>(arenaCopy.size(), 1));
    nk_arena requestArena{arenaCopy.data(), arenaCopy.data() + arenaBytes.size(),
                          arenaCopy.data() + arenaCopy.size()};
    std::vector<unsigned char> responseArenaBytes(NkISM::kNodesArena);
    nk_arena responseArena{responseArenaBytes.data(), responseArenaBytes.data(),
                           responseArenaBytes.data() + responseArenaBytes.size()};
    response->sizeFlags = nk_size_word(static_cast<std::uint32_t>(responseBytes.size()), 0);
    const int rc = transport.ops->call(&transport, request, &requestArena, response, &responseArena);
    KnHandleClose(handle);
    return rc == 0 ? response->sizeFlags : 0;
}

}  // namespace hl_settingsd::testing
