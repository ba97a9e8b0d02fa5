#pragma once
// fmt support for QString: the text is converted with toUtf8 and then formatted as a string view,
// so "{:>10}" and the like work as for a plain string.

#include <QByteArray>
#include <QString>

#include <fmt/format.h>

template <>
struct fmt::formatter<QString> : fmt::formatter<fmt::string_view> {
    template <typename FormatContext>
    auto format(const QString& text, FormatContext& context) const {
        const QByteArray utf8 = text.toUtf8();
        return fmt::formatter<fmt::string_view>::format(
            fmt::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())), context);
    }
};
