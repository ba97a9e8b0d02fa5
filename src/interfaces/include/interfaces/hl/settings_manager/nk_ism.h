#pragma once

// IDL interface hl.settings_manager.NkISM, served by every settings service: whole setting trees read
// and written in chunked exchanges, and single-node attribute and delete requests. The abstract
// class, its one description, and the proxy and stub made from it.
//
// Path texts (at most 512 bytes, no terminating zero) travel in the request arena. Read, ReadNext,
// Write and WriteNext carry node lists (hl_settings_manager_Types_NkNode records and the bytes they
// point at, types.h): the caller lays out the request arena of Write and WriteNext itself (ArenaIn),
// and receives the response arena of Read and ReadNext into its own buffer (ArenaOut), reading the
// node list at `nodes` from it. rc is the service's result code, negative on failure.

#include <interfaces/hl/settings_manager/types.h>
#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/idl/make_proxy.h>
#include <ipc_runtime/idl/proxy_base.h>
#include <ipc_runtime/idl/stub.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace hosipc::idl::stdcpp_v1::hl::settings_manager {

class NkISM {
public:
    using Bytes = std::vector<unsigned char>;
    // Eight nodes of maximal size (8744 bytes each), and 512 more for the request's own path.
    static constexpr std::uint32_t kNodesArena = 69952;
    static constexpr std::uint32_t kWriteArena = 70464;
    static constexpr std::uint32_t kPathArena = 512;

    virtual ~NkISM() = default;
    // Opens a read exchange: ncount nodes in all, the first chunk's list, the exchange's id.
    virtual void Read(const Bytes& path, std::uint8_t readMask, std::uint64_t& ncount, nk_ptr_t& nodes,
                      std::uint64_t& id, std::int32_t& rc, nk_arena& arena) = 0;
    // Opens a write exchange of ncount nodes with the first chunk.
    virtual void Write(const nk_arena& arena, nk_ptr_t path, std::uint8_t mode, std::uint64_t ncount,
                       nk_ptr_t nodes, std::uint64_t& id, std::int32_t& rc) = 0;
    virtual void ReadNext(std::uint64_t id, nk_ptr_t& nodes, std::uint8_t& last, std::int32_t& rc,
                          nk_arena& arena) = 0;
    virtual void WriteNext(const nk_arena& arena, std::uint64_t id, nk_ptr_t nodes, std::uint8_t last,
                           std::int32_t& rc) = 0;
    virtual void Cancel(std::uint64_t id, std::int32_t& rc) = 0;
    virtual void GetAttrib(const Bytes& path, std::uint8_t& attr, std::int32_t& rc) = 0;
    virtual void SetAttrib(const Bytes& path, std::uint8_t attr, std::int32_t& rc) = 0;
    virtual void Delete(const Bytes& path, std::int32_t& rc) = 0;
};

}  // namespace hosipc::idl::stdcpp_v1::hl::settings_manager

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM> {
    using Interface = hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM;
    static constexpr std::string_view kFailurePrefix = "hl_settings_manager_NkISM_";
    using Path = Named<"path", SequenceArg<24, Interface::kPathArena>>;
    using Rc24 = Response<32, Named<"rc", ValueArg<std::int32_t, 24>>>;
    using Id24 = Named<"id", ValueArg<std::uint64_t, 24>>;

    using Read =
        Method<"Read", 0, &Interface::Read,
               Request<40, Interface::kPathArena, Path, Named<"readMask", ValueArg<std::uint8_t, 32>>>,
               Response<56, Named<"ncount", ValueArg<std::uint64_t, 24>>, Named<"nodes", ValueArg<nk_ptr_t, 32>>,
                        Named<"id", ValueArg<std::uint64_t, 40>>, Named<"rc", ValueArg<std::int32_t, 48>>,
                        Named<"arena", ArenaOut<Interface::kNodesArena>>>>;
    using Write =
        Method<"Write", 1, &Interface::Write,
               Request<56, Interface::kWriteArena, Named<"arena", ArenaIn<Interface::kWriteArena>>,
                       Named<"path", ValueArg<nk_ptr_t, 24>>, Named<"mode", ValueArg<std::uint8_t, 32>>,
                       Named<"ncount", ValueArg<std::uint64_t, 40>>, Named<"nodes", ValueArg<nk_ptr_t, 48>>>,
               Response<40, Id24, Named<"rc", ValueArg<std::int32_t, 32>>>>;
    using ReadNext = Method<"ReadNext", 2, &Interface::ReadNext, Request<32, 0, Id24>,
                            Response<40, Named<"nodes", ValueArg<nk_ptr_t, 24>>, Named<"last", ValueArg<std::uint8_t, 32>>,
                                     Named<"rc", ValueArg<std::int32_t, 36>>,
                                     Named<"arena", ArenaOut<Interface::kNodesArena>>>>;
    using WriteNext =
        Method<"WriteNext", 3, &Interface::WriteNext,
               Request<48, Interface::kNodesArena, Named<"arena", ArenaIn<Interface::kNodesArena>>, Id24,
                       Named<"nodes", ValueArg<nk_ptr_t, 32>>, Named<"last", ValueArg<std::uint8_t, 40>>>,
               Rc24>;
    using Cancel = Method<"Cancel", 4, &Interface::Cancel, Request<32, 0, Id24>, Rc24>;
    using GetAttrib = Method<"GetAttrib", 5, &Interface::GetAttrib, Request<32, Interface::kPathArena, Path>,
                             Response<32, Named<"attr", ValueArg<std::uint8_t, 24>>, Named<"rc", ValueArg<std::int32_t, 28>>>>;
    using SetAttrib = Method<"SetAttrib", 6, &Interface::SetAttrib,
                             Request<40, Interface::kPathArena, Path, Named<"attr", ValueArg<std::uint8_t, 32>>>, Rc24>;
    using Delete = Method<"Delete", 7, &Interface::Delete, Request<32, Interface::kPathArena, Path>, Rc24>;
    using Methods = MethodList<Read, Write, ReadNext, WriteNext, Cancel, GetAttrib, SetAttrib, Delete>;
};

template <>
class Proxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM> final
    : public ProxyBase<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM> {
public:
    using ProxyBase::ProxyBase;

    void Read(const Bytes& path, std::uint8_t readMask, std::uint64_t& ncount, nk_ptr_t& nodes,
              std::uint64_t& id, std::int32_t& rc, nk_arena& arena) override {
        Invoke<Description::Read>(path, readMask, ncount, nodes, id, rc, arena);
    }
    void Write(const nk_arena& arena, nk_ptr_t path, std::uint8_t mode, std::uint64_t ncount, nk_ptr_t nodes,
               std::uint64_t& id, std::int32_t& rc) override {
        Invoke<Description::Write>(arena, path, mode, ncount, nodes, id, rc);
    }
    void ReadNext(std::uint64_t id, nk_ptr_t& nodes, std::uint8_t& last, std::int32_t& rc,
                  nk_arena& arena) override {
        Invoke<Description::ReadNext>(id, nodes, last, rc, arena);
    }
    void WriteNext(const nk_arena& arena, std::uint64_t id, nk_ptr_t nodes, std::uint8_t last,
                   std::int32_t& rc) override {
        Invoke<Description::WriteNext>(arena, id, nodes, last, rc);
    }
    void Cancel(std::uint64_t id, std::int32_t& rc) override { Invoke<Description::Cancel>(id, rc); }
    void GetAttrib(const Bytes& path, std::uint8_t& attr, std::int32_t& rc) override {
        Invoke<Description::GetAttrib>(path, attr, rc);
    }
    void SetAttrib(const Bytes& path, std::uint8_t attr, std::int32_t& rc) override {
        Invoke<Description::SetAttrib>(path, attr, rc);
    }
    void Delete(const Bytes& path, std::int32_t& rc) override { Invoke<Description::Delete>(path, rc); }
};

std::unique_ptr<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM, api_v1::IpcDeleter> MakeProxyImpl(
    const hosipc::api_v1::IConnector& connector, const api_v1::SharedResourceProvider& resources,
    ProxyBait<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM>* bait);

}  // namespace hosipc_detail::idl_traits
