#include "Catalogue.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QTranslator>

#include <gtest/gtest.h>

namespace {

const QDir sources(QStringLiteral(SOURCE_ROOT "/translation"));

class CatalogueOf : public testing::TestWithParam<const char*> {
protected:
    const QString baseName = QStringLiteral("sbusdriver_") + QString::fromLatin1(GetParam());
    const Catalogue catalogue = readCatalogue(sources.filePath(baseName + QStringLiteral(".ts")));
};

std::string named(const CatalogueKey& key) {
    return (key.first + QStringLiteral(": ") + key.second).toStdString();
}

QSet<QString> addressesIn(const QString& text) {
    QSet<QString> addresses;
    static const QRegularExpression address(QStringLiteral("\\b[A-Z]\\d+\\b"));
    for (auto matches = address.globalMatch(text); matches.hasNext();)
        addresses.insert(matches.next().captured());
    return addresses;
}

} // namespace

TEST(Catalogues, AreThoseOfGermanFrenchAndItalian) {
    EXPECT_EQ(sources.entryList({QStringLiteral("*.ts")}, QDir::Files, QDir::Name),
              (QStringList{QStringLiteral("sbusdriver_de.ts"), QStringLiteral("sbusdriver_fr.ts"),
                           QStringLiteral("sbusdriver_it.ts")}));
}

TEST_P(CatalogueOf, HasEveryTextOfTheSources) {
    const Catalogue texts = textsInTheSources();
    ASSERT_TRUE(texts.contains({QStringLiteral("SBusDriver"), QStringLiteral("SAIA S-BUS")}));
    ASSERT_TRUE(texts.contains({QStringLiteral("SaiaSerialDeviceOption"), QStringLiteral("(msec)")}));
    for (auto text = texts.cbegin(); text != texts.cend(); ++text)
        EXPECT_TRUE(catalogue.contains(text.key()))
            << named(text.key()) << "\nis missing; the build target update_translations enters it";
}

TEST_P(CatalogueOf, HasTheNamesOfRequests) {
    for (const char* const name : {"Analog Write List", "Time Sync Command"})
        EXPECT_TRUE(catalogue.contains({QStringLiteral("CRtu"), QString::fromLatin1(name)})) << name;
}

TEST_P(CatalogueOf, HasEveryEntryFinished) {
    ASSERT_FALSE(catalogue.isEmpty());
    for (auto entry = catalogue.cbegin(); entry != catalogue.cend(); ++entry) {
        EXPECT_EQ(entry->state.toStdString(), "") << named(entry.key());
        EXPECT_FALSE(entry->translation.trimmed().isEmpty()) << named(entry.key());
    }
}

TEST_P(CatalogueOf, KeepsTheLinesAndAddressesOfHelpTexts) {
    int helpTexts = 0;
    for (auto entry = catalogue.cbegin(); entry != catalogue.cend(); ++entry) {
        const QString source = entry.key().second;
        if (!source.contains(QLatin1Char('\n')))
            continue;
        ++helpTexts;
        EXPECT_EQ(entry->translation.count(QLatin1Char('\n')), source.count(QLatin1Char('\n')))
            << named(entry.key());
        EXPECT_TRUE(entry->translation.endsWith(QLatin1Char('\n'))) << named(entry.key());
        EXPECT_EQ(addressesIn(entry->translation), addressesIn(source)) << named(entry.key());
    }
    EXPECT_EQ(helpTexts, 4);
}

// The engine takes pending requests of one RTU with the same name for the same request.
TEST_P(CatalogueOf, GivesNoTwoRequestsTheSameName) {
    QSet<QString> names{QStringLiteral("Status Write"), QStringLiteral("analog poll"),
                        QStringLiteral("status poll"), QStringLiteral("Integrity poll")};
    for (auto entry = catalogue.cbegin(); entry != catalogue.cend(); ++entry) {
        if (entry.key().first != QStringLiteral("CRtu"))
            continue;
        EXPECT_FALSE(names.contains(entry->translation)) << named(entry.key());
        names.insert(entry->translation);
    }
}

TEST_P(CatalogueOf, LiesCompiledBesideThePrograms) {
    QTranslator translator;
    ASSERT_TRUE(translator.load(baseName, QStringLiteral(COMPILED_TRANSLATIONS)));
    for (auto entry = catalogue.cbegin(); entry != catalogue.cend(); ++entry)
        EXPECT_EQ(
            translator
                .translate(entry.key().first.toUtf8().constData(), entry.key().second.toUtf8().constData())
                .toStdString(),
            entry->translation.toStdString())
            << named(entry.key());
}

INSTANTIATE_TEST_SUITE_P(Language, CatalogueOf, testing::Values("de", "fr", "it"),
                         [](const auto& language) { return std::string(language.param); });
