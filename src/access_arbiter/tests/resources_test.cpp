#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>

#include <set>

namespace {

using Messages = std::set<std::pair<QString, QString>>;  // (context, source)

QString ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The messages the embedded document asks for.
Messages DocumentMessages() {
    static const QRegularExpression call(
        QStringLiteral(R"re(qsTranslate\(\s*"([^"]*)"\s*,\s*"([^"]*)"\s*\))re"));
    Messages messages;
    for (auto it = call.globalMatch(ReadAll(QStringLiteral(":/qml/access_arbiter_view"))); it.hasNext();) {
        const auto match = it.next();
        messages.emplace(match.captured(1), match.captured(2));
    }
    return messages;
}

// The messages of a catalogue's source, each with a finished, non-empty translation.
Messages CatalogueMessages(const QString& language) {
    QXmlStreamReader xml(
        ReadAll(QStringLiteral(HL_SOURCE_DIR "/src/access_arbiter/ui/translations/access_arbiter_%1.ts")
                    .arg(language)));
    Messages messages;
    QString context, source;
    while (xml.readNext() != QXmlStreamReader::Invalid && !xml.atEnd()) {
        if (xml.isStartElement() && xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("source")) {
            source = xml.readElementText();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("translation")) {
            EXPECT_TRUE(xml.attributes().value(QLatin1String("type")).isEmpty()) << source.toStdString();
            EXPECT_FALSE(xml.readElementText().isEmpty()) << source.toStdString();
            messages.emplace(context, source);
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return messages;
}

TEST(Catalogues, EachCatalogueTranslatesExactlyTheMessagesOfTheDocument) {
    const Messages document = DocumentMessages();
    EXPECT_EQ(document.size(), 4U);
    for (const char* language : {"en", "es", "pt", "ru"}) {
        SCOPED_TRACE(language);
        EXPECT_EQ(CatalogueMessages(QLatin1String(language)), document);
        QTranslator embedded;
        ASSERT_TRUE(embedded.load(
            QStringLiteral(":/translations/access_arbiter_%1.qm").arg(QLatin1String(language))));
        for (const auto& [context, source] : document) {
            EXPECT_FALSE(embedded.translate(context.toUtf8(), source.toUtf8()).isEmpty())
                << source.toStdString();
        }
    }
}

}  // namespace
