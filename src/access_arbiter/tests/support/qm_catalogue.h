#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace access_arbiter::testing {

// What a compiled Qt message catalogue holds, read from its binary form, so that tests can list
// every message (QTranslator can only look messages up).
struct QmMessage {
    QByteArray context;
    QByteArray source;
    QString translation;
};

struct QmCatalogue {
    QByteArray language;
    std::vector<QmMessage> messages;
};

// Empty when the data is not a well-formed catalogue.
std::optional<QmCatalogue> ParseQmCatalogue(const QByteArray& data);

}  // namespace access_arbiter::testing
