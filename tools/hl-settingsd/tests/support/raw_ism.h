// NkISM requests exactly as a test builds them, through the generated client, for what the settings
// client never sends: odd modes and masks, unknown exchange ids, node lists that break the tree rules,
// oversized paths, and frames that fit no description at all.
#pragma once

#include <interfaces/hl/settings_manager/nk_ism.h>
#include <settings_manager/ipc/proxy.h>
#include <settings_manager/raw_item.h>
#include <settings_manager/setting.h>

#include <cstdint>
#include <string>
#include <vector>

namespace hl_settingsd::testing {

using RawItems = std::vector<settings_manager::impl::RawItem>;

// The raw items of a tree at the path text.
RawItems Items(const std::string& pathText, const settings_manager::Setting& setting);

class RawIsm {
public:
    explicit RawIsm(const char* service);

    struct Answer {
        std::uint64_t id = 0;
        std::int32_t rc = 0;
    };
    // Write with the path text (put in whole, whatever its length) and the items as the first chunk.
    Answer Write(const std::string& pathText, std::uint8_t mode, std::uint64_t ncount, const RawItems& items);
    std::int32_t WriteNext(std::uint64_t id, const RawItems& items, bool last);
    std::int32_t Cancel(std::uint64_t id);
    // Read with a mask; the nodes of the first chunk are appended to items.
    Answer Read(const std::string& pathText, std::uint8_t mask, RawItems& items, std::uint64_t& ncount);
    // ReadNext; the nodes are appended to items (when given), last tells whether they were the last.
    std::int32_t ReadNext(std::uint64_t id, RawItems* items = nullptr, bool* last = nullptr);

    // Sends one frame with the given riid, mid, message size (fields zero) and arena bytes over a
    // channel of its own; returns the response's size word, or 0 when the call failed.
    static std::uint32_t SendFrame(const char* service, std::uint16_t riidOffset, std::uint16_t mid,
                                   std::uint32_t size, const std::vector<unsigned char>& arena);

private:
    hos::ipc::Proxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM> m_ism;
};

}  // namespace hl_settingsd::testing
