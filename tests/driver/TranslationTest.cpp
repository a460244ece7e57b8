#include "LoadedDriver.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTranslator>

namespace {

const QString untranslated = QStringLiteral("SAIA S-BUS");

// A host's folder with a program that shows the driver's name, in a system that speaks Korean.
class Translation : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(host.isValid());
        ASSERT_TRUE(QFile::copy(QStringLiteral(DRIVER_NAME_PRINTER), program));
        ASSERT_TRUE(QDir(host.path()).mkdir(QStringLiteral("translation")));
    }

    // Puts one of the test's translations into the host's folder.
    void provide(const char* source, const char* name) {
        ASSERT_TRUE(QFile::copy(QStringLiteral(TRANSLATION_DIRECTORY "/") + QString::fromLatin1(source),
                                host.filePath(QStringLiteral("translation/") + QString::fromLatin1(name))));
    }

    QString shownName() const {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("LANGUAGE"));
        for (const char* const variable : {"LC_ALL", "LANG"}) // on Windows Qt looks at the second alone
            environment.insert(QString::fromLatin1(variable), QStringLiteral("ko_KR.UTF-8"));
        process.setProcessEnvironment(environment);
        process.start(program, {QStringLiteral(PLUGIN_FILE)});
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }

    const QTemporaryDir host;
    const QString program = host.filePath(QFileInfo(QStringLiteral(DRIVER_NAME_PRINTER)).fileName());
};

class TranslatorObjects : public LoadedDriver {
protected:
    QList<QTranslator*> translators() const {
        return driver->findChildren<QTranslator*>(QString(), Qt::FindDirectChildrenOnly);
    }
};

} // namespace

TEST_F(Translation, IsTakenFromTheFileOfLanguageAndTerritory) {
    provide("language_and_territory.qm", "sbusdriver_ko_KR.qm");
    provide("language.qm", "sbusdriver_ko.qm");
    provide("any.qm", "sbusdriver.qm");
    EXPECT_EQ(shownName(), QStringLiteral("of language and territory"));
}

TEST_F(Translation, FallsBackToTheFileOfTheLanguage) {
    provide("language.qm", "sbusdriver_ko.qm");
    provide("any.qm", "sbusdriver.qm");
    EXPECT_EQ(shownName(), QStringLiteral("of the language"));
}

TEST_F(Translation, FallsBackToTheFileWithoutALanguage) {
    provide("any.qm", "sbusdriver.qm");
    EXPECT_EQ(shownName(), QStringLiteral("of any language"));
}

TEST_F(Translation, IsNotTakenFromTheFileOfTheProgramsOwnLanguage) {
    provide("language.qm", "sbusdriver_de.qm");
    provide("language_and_territory.qm", "sbusdriver_de_DE.qm");
    EXPECT_EQ(shownName(), untranslated);
}

TEST_F(Translation, IsLookedForInTheHostsTranslationFolderAlone) {
    ASSERT_TRUE(QFile::copy(QStringLiteral(TRANSLATION_DIRECTORY "/any.qm"),
                            host.filePath(QStringLiteral("sbusdriver.qm"))));
    EXPECT_EQ(shownName(), untranslated);
}

TEST_F(Translation, OfTheHostsFolderIsLookedForUnderItsWholeNameAlone) {
    provide("any.qm", "driver_ko_KR.qm");
    provide("language.qm", "sbusdriver-ko_KR.qm");
    EXPECT_EQ(shownName(), untranslated);
}

TEST_F(Translation, ThatIsMissingIsSilent) {
    EXPECT_EQ(shownName(), untranslated);
}

TEST_F(TranslatorObjects, AreMadeAnewByEachCallAndBelongToTheDriver) {
    EXPECT_TRUE(translators().isEmpty());
    driver->loadTranslator();
    EXPECT_EQ(translators().size(), 1);
    driver->loadTranslator();
    EXPECT_EQ(translators().size(), 2);
}

TEST_F(TranslatorObjects, AreAllInstalledWhetherTheyLoadedOrNot) {
    driver->loadTranslator();
    driver->loadTranslator();
    for (QTranslator* translator : translators())
        EXPECT_TRUE(QCoreApplication::removeTranslator(translator)) << "was not installed";
}

TEST_F(TranslatorObjects, GoWithTheDriver) {
    driver->loadTranslator();
    const QPointer<QTranslator> translator = translators().value(0);
    ASSERT_FALSE(translator.isNull());
    delete loader.instance();
    EXPECT_TRUE(translator.isNull());
}
