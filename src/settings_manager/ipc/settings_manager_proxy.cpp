#include <settings_manager/ipc/settings_manager_proxy.h>

#include "ipc/call_report.h"

#include <settings_manager/node_arena.h>
#include <settings_manager/path_to_str.h>
#include <settings_manager/serialize.h>
#include <uvc/process_exception.h>

#include <diagnostics/log.h>
#include <diagnostics/result_code.h>
#include <diagnostics/tracer.h>

#include <platform/hos_random.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <vector>

namespace settings_manager::ipc {

namespace {

using hos::logger::LogLevel;
using hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM;
using impl::CallNk;
using impl::ReportCallFailure;
using RawItems = hos::ipc::arena::impl::RawItems;

constexpr std::uint32_t kNoTimeout = 0xFFFFFFFFu;

trace::Tracer::Postfix ResultPostfix(const std::int32_t& result) {
    return [&result](std::string& scratch) -> std::string_view {
        scratch = fmt::format(": result = {}", fdn::hcax::ResultCodeText(result));
        return scratch;
    };
}

std::vector<unsigned char> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

// A zero-filled arena of size bytes, owned by the operation that made it.
class OwnedArena {
public:
    explicit OwnedArena(std::size_t size) : m_bytes(size) { Reset(); }
    void Reset() { m_arena = nk_arena{m_bytes.data(), m_bytes.data(), m_bytes.data() + m_bytes.size()}; }
    void Clear() {
        std::fill(m_bytes.begin(), m_bytes.end(), static_cast<unsigned char>(0));
        Reset();
    }
    nk_arena& Get() { return m_arena; }

private:
    std::vector<unsigned char> m_bytes;
    nk_arena m_arena{};
};

// Writes the next chunk of at most eight items, stopping before one that doesn't fit: what did fit
// goes out, and the rest follows in the next chunk. False when not even one item fits.
bool WriteChunk(nk_arena& arena, RawItems::const_iterator& next, RawItems::const_iterator end,
                nk_ptr_t& nodes) {
    const auto chunkEnd = next + std::min<std::ptrdiff_t>(SettingsManagerProxy::kNodesPerChunk, end - next);
    nodes = hos::ipc::arena::impl::Write(arena, next, chunkEnd);
    return !hos::ipc::arena::IsInvalid(nodes);
}

void Cancel(NkISM& proxy, std::uint64_t id, trace::Tracer& tracer) {
    std::int32_t rc = 0;
    const int nk = CallNk([&] { proxy.Cancel(id, rc); });
    tracer.LogImpl(LogLevel::Warning, ": {}(#{:16X}): nk = {}, hca = {}", "Cancel", id, nk,
                   fdn::hcax::ResultCodeText(rc));
}

// The check of a Next response: a failure cancels the exchange, then is reported.
std::int32_t Check(std::string_view method, int nk, std::int32_t rc, trace::Tracer& tracer, NkISM* proxy,
                   std::uint64_t id) {
    if (nk == 0 && rc >= 0) {
        return rc;
    }
    if (proxy != nullptr) {
        Cancel(*proxy, id, tracer);
    }
    return ReportCallFailure(tracer, method, nk, rc);
}

// The path text in a 512-byte arena, as the path-only requests carry it; false when it is too long.
bool PathFits(const std::string& text) {
    std::array<unsigned char, NkISM::kPathArena> room{};
    nk_arena arena{room.data(), room.data(), room.data() + room.size()};
    hos::ipc::arena::conv::Status status;
    hos::ipc::arena::conv::Put(arena, {reinterpret_cast<const unsigned char*>(text.data()), text.size()},
                               NkISM::kPathArena, status);
    return status.Ok();
}

}  // namespace

std::string SettingsManagerProxy::MakeTag() {
    std::uint32_t random = 0;
    if (HosRandomGenerate(&random, sizeof(random)) != 0) {
        throw std::runtime_error("HosRandomGenerate() fail");
    }
    return fmt::format("[SM_P] {:04X} ", random % 0xFFFFu);
}

SettingsManagerProxy::SettingsManagerProxy(const SettingsManagerConfig& config)
    : m_tag(MakeTag()), m_callback(&SettingsManagerCallback::Instance()) {
    HL_LOG(LogLevel::Debug, "{}{}: {}<{}>", m_tag, "SettingsManagerProxy",
           config.connection ? config.connection : "", config.nkIsmInterface ? config.nkIsmInterface : "");
    m_connection.Init(config.connection, config.nkIsmInterface, kNoTimeout, kNoTimeout);
    m_context = m_callback->RegCallback(m_tag, config);
}

SettingsManagerProxy::SettingsManagerProxy(const SettingsManagerCmConfig& config)
    : m_tag(MakeTag()), m_callback(&SettingsManagerCallback::Instance()) {
    HL_LOG(LogLevel::Debug, "{}{}: {}[{}] ({} ms)", m_tag, "SettingsManagerProxy",
           config.serviceName ? config.serviceName : "", "NkISM",
           config.timeoutMs == kNoTimeout ? 0 : config.timeoutMs);
    m_connection.Init(hos::ipc::Target{config.serviceName, "NkISM"}, true, config.timeoutMs, kNoTimeout,
                      kNoTimeout);
    m_context = m_callback->RegCallback(m_tag, config);
}

SettingsManagerProxy::~SettingsManagerProxy() {
    HL_LOG(LogLevel::Debug, "{}{}", m_tag, "~SettingsManagerProxy");
    m_callback->UnregCallback(m_tag, m_context);
}

template <typename T>
std::int32_t SettingsManagerProxy::GetIface(std::shared_ptr<T>& iface) {
    try {
        iface = std::static_pointer_cast<T>(shared_from_this());
        return 0;
    } catch (const std::exception& error) {
        // A proxy that no shared_ptr owns (made on the stack, say) has no interface to give out.
        HL_LOG(LogLevel::Error, "{} Could not get interface: {}", m_tag, error.what());
        return hca::result_code::kInterfaceNotSupported;
    }
}

std::int32_t SettingsManagerProxy::GetSettingsCreator(std::shared_ptr<ISettingsCreator>& creator) {
    return GetIface(creator);
}
std::int32_t SettingsManagerProxy::GetSettingsGetter(std::shared_ptr<ISettingsGetter>& getter) {
    return GetIface(getter);
}
std::int32_t SettingsManagerProxy::GetSettingsValueSetter(std::shared_ptr<ISettingsValueSetter>& setter) {
    return GetIface(setter);
}
std::int32_t SettingsManagerProxy::GetSettingsSetter(std::shared_ptr<ISettingsSetter>& setter) {
    return GetIface(setter);
}
std::int32_t SettingsManagerProxy::GetSettingsDeleter(std::shared_ptr<ISettingsDeleter>& deleter) {
    return GetIface(deleter);
}
std::int32_t SettingsManagerProxy::GetSettingsUpdateSubscriber(
    std::shared_ptr<ISettingsUpdateSubscriber>& subscriber) {
    return GetIface(subscriber);
}

std::int32_t SettingsManagerProxy::CreateSetting(const uvc::Path& path, const Setting& setting) {
    return WriteSetting(kModeCreate, path, setting, "CreateSetting", LogLevel::Debug);
}

std::int32_t SettingsManagerProxy::SetSetting(const uvc::Path& path, const Setting& setting) {
    return WriteSetting(kModeSetSetting, path, setting, "SetSetting", LogLevel::Trace);
}

std::int32_t SettingsManagerProxy::SetValue(const uvc::Path& path, const uvc::TValue<Setting>& value) {
    try {
        const Setting setting(value, Attributes{});
        return WriteSetting(kModeSetValue, path, setting, "SetValue", LogLevel::Trace);
    } catch (...) {
        const uvc::Result pair = uvc::ProcessException();
        HL_LOG(LogLevel::Error, "{} {}({}): {}", m_tag, "SetValue", path, pair);
        return pair.first;
    }
}

std::int32_t SettingsManagerProxy::WriteSetting(std::uint8_t mode, const uvc::Path& path,
                                                const Setting& setting, std::string_view method,
                                                LogLevel level) const {
    const std::string text = PathToStr(path);
    std::int32_t result = 0;
    trace::Tracer tracer(m_tag, method, level, ResultPostfix(result), "{}", text);

    RawItems items;
    const uvc::Result serialized = Serialize(path, setting, items);
    if (serialized.first < 0) {
        tracer.RaiseLevel(LogLevel::Warning);
        trace::Tracer::PutImpl(tracer.Result(), "Serialize = {}", serialized);
        return result = serialized.first;
    }

    auto next = std::cbegin(items);
    const auto end = std::cend(items);
    std::uint64_t id = 0;
    {
        OwnedArena arena(NkISM::kWriteArena);
        hos::ipc::arena::conv::Status status;
        const nk_ptr_t pathRef = hos::ipc::arena::conv::Put(
            arena.Get(), {reinterpret_cast<const unsigned char*>(text.data()), text.size()},
            NkISM::kPathArena, status);
        nk_ptr_t nodes{};
        if (!status || !WriteChunk(arena.Get(), next, end, nodes)) {
            tracer.RaiseLevel(LogLevel::Error);
            trace::Tracer::PutImpl(tracer.Result(), ": Write request arena fail");
            return result = impl::kArenaFailed;
        }
        std::int32_t rc = 0;
        const int nk =
            CallNk([&] { m_connection->Write(arena.Get(), pathRef, mode, items.size(), nodes, id, rc); });
        if (nk != 0 || rc < 0) {
            return result = ReportCallFailure(tracer, "Write", nk, rc);
        }
        result = rc;
    }
    if (next == end) {
        return result;
    }

    trace::Tracer::PutImpl(tracer.Result(), "#{:16X}, ncount = {}", id, items.size());
    OwnedArena arena(NkISM::kNodesArena);
    while (next != end) {
        // The cursor goes back to the start; the bytes of the previous chunk stay.
        arena.Reset();
        nk_ptr_t nodes{};
        if (!WriteChunk(arena.Get(), next, end, nodes)) {
            Cancel(*m_connection, id, tracer);
            tracer.RaiseLevel(LogLevel::Error);
            trace::Tracer::PutImpl(tracer.Result(), ": WriteNext request arena fail");
            tracer.RaiseLevel(LogLevel::Warning);
            return result = impl::kArenaFailed;
        }
        const std::uint8_t last = next == end ? 1 : 0;
        std::int32_t rc = 0;
        const int nk = CallNk([&] { m_connection->WriteNext(arena.Get(), id, nodes, last, rc); });
        result = Check("WriteNext", nk, rc, tracer, &*m_connection, id);
        if (result < 0) {
            tracer.RaiseLevel(LogLevel::Warning);
            return result;
        }
    }
    return result;
}

std::int32_t SettingsManagerProxy::GetSetting(const uvc::Path& path, Setting& setting) const {
    const std::string text = PathToStr(path);
    std::int32_t result = 0;
    trace::Tracer tracer(m_tag, "GetSetting", LogLevel::Debug, ResultPostfix(result), "{}", text);
    if (!PathFits(text)) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), ": Read request arena fail");
        return result = impl::kArenaFailed;
    }

    RawItems items;
    std::uint64_t ncount = 0;
    std::uint64_t id = 0;
    {
        OwnedArena response(NkISM::kNodesArena);
        nk_ptr_t nodes{};
        std::int32_t rc = 0;
        const int nk = CallNk(
            [&] { m_connection->Read(Bytes(text), kReadMask, ncount, nodes, id, rc, response.Get()); });
        if (nk != 0 || rc < 0) {
            return result = ReportCallFailure(tracer, "Read", nk, rc);
        }
        // Reserved from what the service says, within what the exchange can bring.
        items.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(ncount, 1u << 16)));
        if (!hos::ipc::arena::impl::Read(response.Get(), nodes, items)) {
            tracer.RaiseLevel(LogLevel::Error);
            trace::Tracer::PutImpl(tracer.Result(), ": Read response arena fail");
            return result = impl::kArenaFailed;
        }
    }

    if (items.size() < ncount) {
        trace::Tracer::PutImpl(tracer.Result(), "#{:16X}, ncount = {}", id, ncount);
        OwnedArena response(NkISM::kNodesArena);
        for (;;) {
            nk_ptr_t nodes{};
            std::uint8_t last = 0;
            std::int32_t rc = 0;
            const int nk = CallNk([&] { m_connection->ReadNext(id, nodes, last, rc, response.Get()); });
            const std::int32_t checked = Check("ReadNext", nk, rc, tracer, &*m_connection, id);
            if (checked < 0) {
                tracer.RaiseLevel(LogLevel::Warning);
                return result = checked;
            }
            if (!hos::ipc::arena::impl::Read(response.Get(), nodes, items)) {
                Cancel(*m_connection, id, tracer);
                tracer.RaiseLevel(LogLevel::Error);
                trace::Tracer::PutImpl(tracer.Result(), ": ReadNext response arena fail");
                return result = impl::kArenaFailed;
            }
            if (last == 1) {
                break;
            }
            response.Clear();
        }
    }

    if (items.size() != ncount) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), " -> wrong RawSetting size: fact/plan = {}/{} ", items.size(),
                               ncount);
        return result = impl::kWrongData;
    }
    uvc::Path readPath;
    Setting read;
    const uvc::Result deserialized = Deserialize(items, readPath, read);
    if (deserialized.first < 0) {
        tracer.RaiseLevel(LogLevel::Warning);
        trace::Tracer::PutImpl(tracer.Result(), " -> Deserialize = {}", deserialized);
        return result = deserialized.first;
    }
    if (!(readPath == path)) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), " -> unequal deserialized path = {} ", readPath);
        return result = impl::kWrongData;
    }
    std::swap(setting.attributes, read.attributes);
    static_cast<Setting::Value&>(setting) = std::move(static_cast<Setting::Value&>(read));
    return result = deserialized.first;
}

std::int32_t SettingsManagerProxy::GetAttribute(const uvc::Path& path, Attributes& attributes) const {
    const std::string text = PathToStr(path);
    std::int32_t result = 0;
    trace::Tracer tracer(m_tag, "GetAttribute", LogLevel::Trace, ResultPostfix(result), "{}", text);
    if (!PathFits(text)) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), ": GetAttrib request arena fail");
        return result = impl::kArenaFailed;
    }
    std::uint8_t attr = 0;
    std::int32_t rc = 0;
    const int nk = CallNk([&] { m_connection->GetAttrib(Bytes(text), attr, rc); });
    if (nk != 0 || rc < 0) {
        return result = ReportCallFailure(tracer, "GetAttrib", nk, rc);
    }
    attributes.flag = attr != 0;
    return result = rc;
}

std::int32_t SettingsManagerProxy::SetAttribute(const uvc::Path& path, const Attributes& attributes) {
    const std::string text = PathToStr(path);
    std::int32_t result = 0;
    trace::Tracer tracer(m_tag, "SetAttribute", LogLevel::Debug, ResultPostfix(result), "{}", text);
    if (!PathFits(text)) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), ": SetAttrib request arena fail");
        return result = impl::kArenaFailed;
    }
    std::int32_t rc = 0;
    const int nk =
        CallNk([&] { m_connection->SetAttrib(Bytes(text), static_cast<std::uint8_t>(attributes.flag), rc); });
    if (nk != 0 || rc < 0) {
        return result = ReportCallFailure(tracer, "SetAttrib", nk, rc);
    }
    return result = rc;
}

std::int32_t SettingsManagerProxy::DeleteSetting(const uvc::Path& path) {
    const std::string text = PathToStr(path);
    std::int32_t result = 0;
    trace::Tracer tracer(m_tag, "DeleteSetting", LogLevel::Debug, ResultPostfix(result), "{}", text);
    if (!PathFits(text)) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), ": Delete request arena fail");
        return result = impl::kArenaFailed;
    }
    std::int32_t rc = 0;
    const int nk = CallNk([&] { m_connection->Delete(Bytes(text), rc); });
    if (nk != 0 || rc < 0) {
        return result = ReportCallFailure(tracer, "Delete", nk, rc);
    }
    return result = rc;
}

std::int32_t SettingsManagerProxy::Subscribe(const uvc::Path& path,
                                             std::shared_ptr<ISettingsUpdateObserver> observer,
                                             SubscriptionId& sid) {
    return m_callback->Subscribe(m_tag, m_context, path, std::move(observer), sid);
}

std::int32_t SettingsManagerProxy::Unsubscribe(SubscriptionId sid) {
    return m_callback->Unsubscribe(m_tag, m_context, sid);
}

}  // namespace settings_manager::ipc
