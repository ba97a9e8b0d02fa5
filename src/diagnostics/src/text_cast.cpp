#include <diagnostics/text_cast.h>

#include <diagnostics/result_code.h>

#include <climits>
#include <cstring>
#include <cwchar>
#include <new>
#include <stdexcept>
#include <typeinfo>

namespace hca::text {
namespace {

using result_code::kInvalidArgument;
using result_code::kNoError;
using result_code::kOutOfMemory;

bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Calls visit(code point) for each code point of source: pairs joined, lone surrogates as they are.
template <typename Visit>
int ForEachCodePoint(std::u16string_view source, Visit&& visit) {
    for (std::size_t i = 0; i < source.size(); ++i) {
        char32_t point = source[i];
        if (IsHighSurrogate(point) && i + 1 < source.size() && IsLowSurrogate(source[i + 1])) {
            point = 0x10000 + ((point - 0xD800) << 10) + (source[i + 1] - 0xDC00);
            ++i;
        }
        if (const int rc = visit(point); rc != kNoError) {
            return rc;
        }
    }
    return kNoError;
}

// Bytes of one code point through wcrtomb with a zeroed state; 0 bytes means rejected.
std::size_t EncodePoint(char32_t point, char* buffer) {
    std::mbstate_t state{};
    const std::size_t written = std::wcrtomb(buffer, static_cast<wchar_t>(point), &state);
    return written == static_cast<std::size_t>(-1) ? 0 : written;
}

template <typename Resize>
int ResizeOnce(Resize&& resize) {
    try {
        resize();
    } catch (const std::bad_alloc&) {
        return kOutOfMemory;
    } catch (const std::length_error&) {
        return kOutOfMemory;
    }
    return kNoError;
}

template <typename Points>
int PointsToUtf16(Points&& forEachPoint, std::u16string& out) {
    std::size_t units = 0;
    int rc = forEachPoint([&units](char32_t point) {
        if (point > 0x10FFFF) {
            return static_cast<int>(kInvalidArgument);
        }
        units += point >= 0x10000 ? 2 : 1;
        return static_cast<int>(kNoError);
    });
    if (rc != kNoError) {
        return rc;
    }
    if (rc = ResizeOnce([&] { out.resize(units); }); rc != kNoError) {
        return rc;
    }
    std::size_t pos = 0;
    return forEachPoint([&out, &pos](char32_t point) {
        if (point >= 0x10000) {
            point -= 0x10000;
            out[pos++] = static_cast<char16_t>(0xD800 + (point >> 10));
            out[pos++] = static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        } else {
            out[pos++] = static_cast<char16_t>(point);
        }
        return static_cast<int>(kNoError);
    });
}

void ThrowFor(int rc) {
    if (rc == kOutOfMemory) {
        throw std::bad_alloc();
    }
    throw std::bad_cast();
}

}  // namespace

int Utf16ToBytes(std::u16string_view source, std::string& out) {
    std::size_t bytes = 0;
    int rc = ForEachCodePoint(source, [&bytes](char32_t point) {
        char buffer[MB_LEN_MAX];
        const std::size_t n = EncodePoint(point, buffer);
        if (n == 0) {
            return static_cast<int>(kInvalidArgument);
        }
        bytes += n;
        return static_cast<int>(kNoError);
    });
    if (rc != kNoError) {
        return rc;
    }
    if (rc = ResizeOnce([&] { out.resize(bytes); }); rc != kNoError) {
        return rc;
    }
    std::size_t pos = 0;
    return ForEachCodePoint(source, [&out, &pos](char32_t point) {
        char buffer[MB_LEN_MAX];
        const std::size_t n = EncodePoint(point, buffer);
        if (n == 0 || pos + n > out.size()) {
            return static_cast<int>(kInvalidArgument);
        }
        std::memcpy(out.data() + pos, buffer, n);
        pos += n;
        return static_cast<int>(kNoError);
    });
}

int BytesToUtf16(std::string_view source, std::u16string& out) {
    const auto forEachPoint = [source](auto&& visit) {
        std::size_t i = 0;
        while (i < source.size()) {
            std::mbstate_t state{};
            wchar_t wide = 0;
            const std::size_t n = std::mbrtowc(&wide, source.data() + i, source.size() - i, &state);
            if (n == static_cast<std::size_t>(-1) || n == static_cast<std::size_t>(-2)) {
                return static_cast<int>(kInvalidArgument);
            }
            // A zero byte decodes to the zero character and consumes one byte.
            i += n == 0 ? 1 : n;
            if (const int rc = visit(static_cast<char32_t>(wide)); rc != kNoError) {
                return rc;
            }
        }
        return static_cast<int>(kNoError);
    };
    return PointsToUtf16(forEachPoint, out);
}

int WideToUtf16(std::wstring_view source, std::u16string& out) {
    const auto forEachPoint = [source](auto&& visit) {
        for (const wchar_t wide : source) {
            if (const int rc = visit(static_cast<char32_t>(wide)); rc != kNoError) {
                return rc;
            }
        }
        return static_cast<int>(kNoError);
    };
    return PointsToUtf16(forEachPoint, out);
}

namespace {

// Runs one of the conversions above into a fresh string and turns its failure code into the exception.
template <typename Out, typename In>
Out ConvertOrThrow(In source, int (*convert)(In, Out&)) {
    Out out;
    if (const int rc = convert(source, out); rc != kNoError) {
        ThrowFor(rc);
    }
    return out;
}

}  // namespace

template <>
std::string Cast<std::string>(std::u16string_view source) {
    return ConvertOrThrow(source, &Utf16ToBytes);
}

template <>
std::u16string Cast<std::u16string>(std::string_view source) {
    return ConvertOrThrow(source, &BytesToUtf16);
}

template <>
std::u16string Cast<std::u16string>(std::wstring_view source) {
    return ConvertOrThrow(source, &WideToUtf16);
}

}  // namespace hca::text
