#include "support/qm_catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QResource>

#include <map>
#include <set>
#include <string>

namespace {

using access_arbiter::testing::ParseQmCatalogue;
using access_arbiter::testing::QmCatalogue;

const QString kDocument = QStringLiteral(":/qml/access_arbiter_view");

QByteArray ReadResource(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

// The message keys the document asks for, all in the context "access_arbiter_view".
std::set<QByteArray> DocumentKeys() {
    const QString document = QString::fromUtf8(ReadResource(kDocument));
    static const QRegularExpression call(QStringLiteral(R"re(qsTranslate\(\s*"([^"]*)"\s*,\s*"([^"]*)"\s*\))re"));
    std::set<QByteArray> keys;
    for (auto it = call.globalMatch(document); it.hasNext();) {
        const auto match = it.next();
        EXPECT_EQ(match.captured(1), QStringLiteral("access_arbiter_view"));
        keys.insert(match.captured(2).toUtf8());
    }
    return keys;
}

QmCatalogue LoadCatalogue(const char* language) {
    const auto data = ReadResource(QStringLiteral(":/translations/access_arbiter_%1.qm").arg(QLatin1String(language)));
    const auto catalogue = ParseQmCatalogue(data);
    EXPECT_TRUE(catalogue.has_value()) << language;
    return catalogue.value_or(QmCatalogue{});
}

// The resource trees register themselves before main: nothing in this test initialises them.
TEST(Resources, DocumentIsEmbeddedCompressedUnderItsAliasWithoutExtension) {
    QResource resource(kDocument);
    ASSERT_TRUE(resource.isValid());
    EXPECT_EQ(resource.compressionAlgorithm(), QResource::ZlibCompression);
    EXPECT_TRUE(ReadResource(kDocument).startsWith("import QtQuick\n"));
    EXPECT_EQ(QDir(QStringLiteral(":/qml")).entryList(), QStringList{QStringLiteral("access_arbiter_view")});
}

TEST(Resources, FourCataloguesAreStoredUncompressed) {
    const QStringList expected = {"access_arbiter_en.qm", "access_arbiter_es.qm", "access_arbiter_pt.qm",
                                  "access_arbiter_ru.qm"};
    EXPECT_EQ(QDir(QStringLiteral(":/translations")).entryList(QDir::Files, QDir::Name), expected);
    for (const auto& name : expected) {
        QResource resource(QStringLiteral(":/translations/") + name);
        ASSERT_TRUE(resource.isValid()) << name.toStdString();
        EXPECT_EQ(resource.compressionAlgorithm(), QResource::NoCompression) << name.toStdString();
    }
}

TEST(Catalogues, DocumentAsksForTheFourKeys) {
    EXPECT_EQ(DocumentKeys(), (std::set<QByteArray>{"$Title$", "$Description$", "$Decline$", "$Approve$"}));
}

TEST(Catalogues, EachCatalogueHasExactlyTheDocumentKeysInItsContext) {
    const auto keys = DocumentKeys();
    for (const char* language : {"en", "es", "pt", "ru"}) {
        const auto catalogue = LoadCatalogue(language);
        std::set<QByteArray> sources;
        for (const auto& message : catalogue.messages) {
            EXPECT_EQ(message.context, QByteArray("access_arbiter_view")) << language;
            EXPECT_FALSE(message.translation.isEmpty()) << language << " " << message.source.constData();
            sources.insert(message.source);
        }
        EXPECT_EQ(catalogue.messages.size(), keys.size()) << language;
        EXPECT_EQ(sources, keys) << language;
    }
}

TEST(Catalogues, EachCatalogueCarriesItsOwnLanguageTag) {
    const std::map<std::string, QByteArray> tags = {
        {"en", "en_US"}, {"es", "es_MX"}, {"pt", "pt_BR"}, {"ru", "ru_RU"}};
    for (const auto& [language, tag] : tags) {
        EXPECT_EQ(LoadCatalogue(language.c_str()).language, tag) << language;
    }
}

std::map<QByteArray, QString> Texts(const char* language) {
    std::map<QByteArray, QString> texts;
    for (const auto& message : LoadCatalogue(language).messages) {
        texts[message.source] = message.translation;
    }
    return texts;
}

TEST(Catalogues, SpanishAndPortugueseHoldTheEnglishTexts) {
    const auto english = Texts("en");
    EXPECT_EQ(english.at("$Title$"), QStringLiteral("Connection request"));
    EXPECT_EQ(english.at("$Description$"), QStringLiteral("A user requests access to manage your device"));
    EXPECT_EQ(english.at("$Decline$"), QStringLiteral("Decline"));
    EXPECT_EQ(english.at("$Approve$"), QStringLiteral("Approve"));
    EXPECT_EQ(Texts("es"), english);
    EXPECT_EQ(Texts("pt"), english);
}

TEST(Catalogues, RussianHoldsTheRussianTexts) {
    const auto russian = Texts("ru");
    EXPECT_EQ(russian.at("$Title$"), QStringLiteral("Запрос на подключение"));
    EXPECT_EQ(russian.at("$Description$"),
              QStringLiteral("Пользователь запрашивает доступ на управление вашим устройством"));
    EXPECT_EQ(russian.at("$Decline$"), QStringLiteral("Запретить"));
    EXPECT_EQ(russian.at("$Approve$"), QStringLiteral("Разрешить"));
}

}  // namespace
