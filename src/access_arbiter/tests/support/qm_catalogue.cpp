#include "support/qm_catalogue.h"

#include <QtEndian>

#include <cstring>

namespace access_arbiter::testing {
namespace {

constexpr unsigned char kMagic[16] = {0x3C, 0xB8, 0x64, 0x18, 0xCA, 0xEF, 0x9C, 0x95,
                                      0xCD, 0x21, 0x1C, 0xBF, 0x60, 0xA1, 0xBD, 0xDD};
constexpr unsigned char kLanguageBlock = 0xA7;
constexpr unsigned char kMessagesBlock = 0x69;

enum MessageTag : unsigned char {
    kEnd = 1,
    kSourceText16 = 2,
    kTranslation = 3,
    kContext16 = 4,
    kObsolete1 = 5,
    kSourceText = 6,
    kContext = 7,
    kComment = 8,
};

class Reader {
public:
    Reader(const char* data, qsizetype size) : m_data(data), m_size(size) {}

    bool AtEnd() const { return m_pos >= m_size; }
    std::optional<unsigned char> Byte() {
        if (m_pos + 1 > m_size) {
            return std::nullopt;
        }
        return static_cast<unsigned char>(m_data[m_pos++]);
    }
    std::optional<quint32> Word() {
        if (m_pos + 4 > m_size) {
            return std::nullopt;
        }
        const quint32 value = qFromBigEndian<quint32>(m_data + m_pos);
        m_pos += 4;
        return value;
    }
    std::optional<QByteArray> Bytes(quint32 length) {
        if (length > static_cast<quint32>(m_size - m_pos)) {
            return std::nullopt;
        }
        QByteArray bytes(m_data + m_pos, length);
        m_pos += length;
        return bytes;
    }

private:
    const char* m_data;
    qsizetype m_size;
    qsizetype m_pos = 0;
};

QString FromUtf16BigEndian(const QByteArray& bytes) {
    QString text;
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
        text.append(QChar(static_cast<char16_t>((static_cast<unsigned char>(bytes[i]) << 8) |
                                                static_cast<unsigned char>(bytes[i + 1]))));
    }
    return text;
}

bool ParseMessages(const QByteArray& block, std::vector<QmMessage>& messages) {
    Reader reader(block.constData(), block.size());
    QmMessage current;
    while (!reader.AtEnd()) {
        const auto tag = reader.Byte();
        if (!tag) {
            return false;
        }
        if (*tag == kEnd) {
            messages.push_back(current);
            current = {};
            continue;
        }
        const auto length = reader.Word();
        if (!length) {
            return false;
        }
        if (*tag == kTranslation && *length == 0xFFFFFFFFu) {
            continue;
        }
        const auto payload = reader.Bytes(*length);
        if (!payload) {
            return false;
        }
        switch (*tag) {
        case kTranslation:
            current.translation = FromUtf16BigEndian(*payload);
            break;
        case kSourceText:
            current.source = *payload;
            break;
        case kContext:
            current.context = *payload;
            break;
        case kSourceText16:
        case kContext16:
        case kObsolete1:
        case kComment:
            break;
        default:
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<QmCatalogue> ParseQmCatalogue(const QByteArray& data) {
    if (data.size() < 16 || std::memcmp(data.constData(), kMagic, sizeof(kMagic)) != 0) {
        return std::nullopt;
    }
    Reader reader(data.constData() + 16, data.size() - 16);
    QmCatalogue catalogue;
    while (!reader.AtEnd()) {
        const auto tag = reader.Byte();
        const auto length = reader.Word();
        if (!tag || !length) {
            return std::nullopt;
        }
        const auto block = reader.Bytes(*length);
        if (!block) {
            return std::nullopt;
        }
        if (*tag == kLanguageBlock) {
            catalogue.language = *block;
        } else if (*tag == kMessagesBlock && !ParseMessages(*block, catalogue.messages)) {
            return std::nullopt;
        }
    }
    return catalogue;
}

}  // namespace access_arbiter::testing
