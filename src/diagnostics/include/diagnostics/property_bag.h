#pragma once
// The named values an exception carries. Names hold at most 31 bytes; each value lives on the heap
// with a type tag. Only int values are added in this program ("hca.result"); the other tags are read
// so that exceptions from other libraries keep working. Not synchronised.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>
#include <vector>

namespace hca {

inline constexpr std::string_view kResultPropertyName = "hca.result";
inline constexpr std::uint32_t kResultPropertyTypeId = 0x2B193A6F;
inline constexpr std::uint32_t kIntTag = 0x14;
inline constexpr std::string_view kOsResultPropertyName = "os.result";
inline constexpr std::uint32_t kUnsignedIntTag = 0x15;
inline constexpr std::string_view kOsModuleResultPropertyName = "os.module_result";
inline constexpr std::uint32_t kByteTag = 7;

class property {
public:
    static constexpr std::size_t kMaxNameLength = 31;

    // A name longer than 31 bytes is cut to 31.
    property(std::string_view name, std::uint32_t typeId);

    std::string_view Name() const { return std::string_view(m_name.data(), m_nameLength); }
    std::uint32_t TypeId() const { return m_typeId; }
    std::uint32_t Tag() const { return m_tag; }
    bool HasValue() const { return m_value != nullptr; }

    template <typename T>
    void SetValue(std::uint32_t tag, const T& value) {
        static_assert(std::is_trivially_copyable_v<T>);
        auto storage = std::make_unique<unsigned char[]>(sizeof(T));
        std::memcpy(storage.get(), &value, sizeof(T));
        m_tag = tag;
        m_value = std::move(storage);
        m_valueSize = sizeof(T);
    }
    // The tag without a value.
    void ClearValue(std::uint32_t tag);

    // The value read as T; empty when there is no value or it is smaller than T.
    template <typename T>
    std::optional<T> Value() const {
        static_assert(std::is_trivially_copyable_v<T>);
        if (!m_value || m_valueSize < sizeof(T)) {
            return std::nullopt;
        }
        T result;
        std::memcpy(&result, m_value.get(), sizeof(T));
        return result;
    }

private:
    std::array<char, kMaxNameLength + 1> m_name{};
    std::size_t m_nameLength = 0;
    std::uint32_t m_typeId;
    std::uint32_t m_tag = 0;
    std::unique_ptr<unsigned char[]> m_value;
    std::size_t m_valueSize = 0;
};

class property_bag {
public:
    // A property of the same name (bytes and length) gets the new value and tag, the old value is
    // destroyed; otherwise a new property is appended.
    template <typename T>
    void Set(std::string_view name, std::uint32_t typeId, std::uint32_t tag, const T& value) {
        FindOrAppend(name, typeId).SetValue(tag, value);
    }
    void SetWithoutValue(std::string_view name, std::uint32_t typeId, std::uint32_t tag);

    const property* Find(std::string_view name) const;
    const std::vector<property>& Properties() const { return m_properties; }

private:
    property& FindOrAppend(std::string_view name, std::uint32_t typeId);

    std::vector<property> m_properties;
};

}  // namespace hca
