#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <gtest/gtest.h>

// The names, the address help texts and the option page under the locales of users, each in a process of its
// own, with the translations that lie beside the programs.

namespace {

using Texts = QMap<QString, QString>;

QJsonObject shownUnder(const char* locale) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("LANGUAGE"));
    for (const char* const variable : {"LC_ALL", "LANG"}) // on Windows Qt looks at the second alone
        environment.insert(QString::fromLatin1(variable), QString::fromLatin1(locale));
    environment.insert(QStringLiteral("QT_FONT_DPI"), QStringLiteral("96"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(PLUGIN_TEXT_PRINTER), {QStringLiteral(PLUGIN_FILE)});
    EXPECT_TRUE(process.waitForFinished(60'000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}

void expectTexts(const QJsonObject& shown, const Texts& expected) {
    for (auto text = expected.cbegin(); text != expected.cend(); ++text)
        EXPECT_EQ(shown.value(text.key()).toString().toStdString(), text->toStdString())
            << text.key().toStdString();
}

void expectPage(const char* locale, const Texts& expected) {
    const QJsonObject page = shownUnder(locale).value(QStringLiteral("page")).toObject();
    EXPECT_EQ(page.size(), expected.size() + 1) << "the texts, and the list of those that are cut off";
    expectTexts(page, expected);
    EXPECT_EQ(page.value(QStringLiteral("cut off")), QJsonValue(QJsonArray())) << locale;
}

void expectDriver(const char* locale, const Texts& expected) {
    const QJsonObject driver = shownUnder(locale).value(QStringLiteral("driver")).toObject();
    EXPECT_EQ(driver.size(), expected.size());
    expectTexts(driver, expected);
}

Texts pageTexts(const QString& title, const QString& station, const QString& protocol,
                const QString& dataMode, const QString& breakMode, const QString& delay,
                const QString& unit) {
    return {{QStringLiteral("title"), title},      {QStringLiteral("label_2"), station},
            {QStringLiteral("label_3"), protocol}, {QStringLiteral("mode 0"), dataMode},
            {QStringLiteral("mode 1"), breakMode}, {QStringLiteral("bl"), delay},
            {QStringLiteral("msec"), unit}};
}

const Texts englishPage =
    pageTexts(QStringLiteral("Protocol"), QStringLiteral("Comm. Board Station No.:"),
              QStringLiteral("S-Bus Protocol :"), QStringLiteral("Data Mode"), QStringLiteral("Break Mode"),
              QStringLiteral("Break Delay Time :"), QStringLiteral("(msec)"));
const Texts germanPage =
    pageTexts(QStringLiteral("Protokoll"), QStringLiteral("Stationsnr. Komm.-Karte:"),
              QStringLiteral("S-Bus-Protokoll:"), QStringLiteral("Data-Modus"), QStringLiteral("Break-Modus"),
              QStringLiteral("Break-Dauer:"), QStringLiteral("(ms)"));
const Texts frenchPage =
    pageTexts(QStringLiteral("Protocole"), QStringLiteral("N° station carte comm.\u00a0:"),
              QStringLiteral("Protocole S-Bus\u00a0:"), QStringLiteral("Mode Data"),
              QStringLiteral("Mode Break"), QStringLiteral("Durée du break\u00a0:"), QStringLiteral("(ms)"));
const Texts italianPage =
    pageTexts(QStringLiteral("Protocollo"), QStringLiteral("N. stazione scheda com.:"),
              QStringLiteral("Protocollo S-Bus:"), QStringLiteral("Modo Data"), QStringLiteral("Modo Break"),
              QStringLiteral("Durata del break:"), QStringLiteral("(ms)"));

Texts driverTexts(const QString& description, const QString& binaryInput, const QString& binaryOutput,
                  const QString& analogOutput, const QString& analogInput) {
    return {{QStringLiteral("name"), QStringLiteral("SAIA S-BUS")},
            {QStringLiteral("description"), description},
            {QStringLiteral("bi"), binaryInput},
            {QStringLiteral("bo"), binaryOutput},
            {QStringLiteral("ao"), analogOutput},
            {QStringLiteral("ai"), analogInput}};
}

const Texts englishDriver = driverTexts(QStringLiteral("SAIA S-BUS Driver"),
                                        QStringLiteral("Saia S-BUS Address Descriptions\n"
                                                       "address A(M) - Input address number\n"
                                                       "               Compose of 'Variable'+'Address'\n"
                                                       "                example) I200 -> 200th Input\n"
                                                       "                example) O200 -> 200th Output \n"),
                                        QStringLiteral("Saia S-BUS Address Descriptions\n"
                                                       "address A(M) - Output address number\n"
                                                       "               Compose of 'Variable'+'Address'\n"
                                                       "                example) O200 -> 200th Output\n"
                                                       "                example) F200 -> 200th Flag\n"),
                                        QStringLiteral("Saia S-BUS Address Descriptions\n"
                                                       "address A(M) - Output address number\n"
                                                       "               Compose of 'Variable'+'Address'\n"
                                                       "               example) R200 -> 200th register\n"
                                                       "               example) T200 -> 200th Timer\n"),
                                        QStringLiteral("Saia S-BUS Address Descriptions\n"
                                                       "address A(M) - Input address number\n"
                                                       "               Compose of 'Variable'+'Address'\n"
                                                       "               example) R200  -> 200th register\n"
                                                       "               example) T200 ->  200th Timer\n"));
const Texts germanDriver = driverTexts(QStringLiteral("Treiber für SAIA S-BUS"),
                                       QStringLiteral("Saia-S-BUS-Adressen\n"
                                                      "Adresse A(M) - Nummer der Eingangsadresse\n"
                                                      "               besteht aus 'Variable'+'Adresse'\n"
                                                      "               z. B. I200 -> Eingang 200\n"
                                                      "               z. B. O200 -> Ausgang 200\n"),
                                       QStringLiteral("Saia-S-BUS-Adressen\n"
                                                      "Adresse A(M) - Nummer der Ausgangsadresse\n"
                                                      "               besteht aus 'Variable'+'Adresse'\n"
                                                      "               z. B. O200 -> Ausgang 200\n"
                                                      "               z. B. F200 -> Merker 200\n"),
                                       QStringLiteral("Saia-S-BUS-Adressen\n"
                                                      "Adresse A(M) - Nummer der Ausgangsadresse\n"
                                                      "               besteht aus 'Variable'+'Adresse'\n"
                                                      "               z. B. R200 -> Register 200\n"
                                                      "               z. B. T200 -> Timer 200\n"),
                                       QStringLiteral("Saia-S-BUS-Adressen\n"
                                                      "Adresse A(M) - Nummer der Eingangsadresse\n"
                                                      "               besteht aus 'Variable'+'Adresse'\n"
                                                      "               z. B. R200 -> Register 200\n"
                                                      "               z. B. T200 -> Timer 200\n"));
const Texts frenchDriver = driverTexts(QStringLiteral("Pilote SAIA S-BUS"),
                                       QStringLiteral("Adresses Saia S-BUS\n"
                                                      "adresse A(M) - numéro de l'adresse d'entrée\n"
                                                      "               composée de 'Variable'+'Adresse'\n"
                                                      "               p. ex. I200 -> entrée 200\n"
                                                      "               p. ex. O200 -> sortie 200\n"),
                                       QStringLiteral("Adresses Saia S-BUS\n"
                                                      "adresse A(M) - numéro de l'adresse de sortie\n"
                                                      "               composée de 'Variable'+'Adresse'\n"
                                                      "               p. ex. O200 -> sortie 200\n"
                                                      "               p. ex. F200 -> indicateur 200\n"),
                                       QStringLiteral("Adresses Saia S-BUS\n"
                                                      "adresse A(M) - numéro de l'adresse de sortie\n"
                                                      "               composée de 'Variable'+'Adresse'\n"
                                                      "               p. ex. R200 -> registre 200\n"
                                                      "               p. ex. T200 -> temporisateur 200\n"),
                                       QStringLiteral("Adresses Saia S-BUS\n"
                                                      "adresse A(M) - numéro de l'adresse d'entrée\n"
                                                      "               composée de 'Variable'+'Adresse'\n"
                                                      "               p. ex. R200 -> registre 200\n"
                                                      "               p. ex. T200 -> temporisateur 200\n"));

// No locale of any system, a known language without a translation, and none at all.
constexpr const char* untranslatedLocales[] = {"xx_YY.UTF-8", "ko_KR.UTF-8", "C"};

} // namespace

TEST(OptionPageLanguage, IsGermanInGermany) {
    expectPage("de_DE.UTF-8", germanPage);
}

TEST(OptionPageLanguage, IsFrenchInFrenchSpeakingSwitzerland) {
    expectPage("fr_CH.UTF-8", frenchPage);
}

TEST(OptionPageLanguage, IsItalianInItalianSpeakingSwitzerland) {
    expectPage("it_CH.UTF-8", italianPage);
}

TEST(OptionPageLanguage, IsEnglishUnderAnyOtherLocale) {
    for (const char* const locale : untranslatedLocales)
        expectPage(locale, englishPage);
}

TEST(DriverTextLanguage, IsGermanInGermany) {
    expectDriver("de_DE.UTF-8", germanDriver);
}

TEST(DriverTextLanguage, IsFrenchInFrenchSpeakingSwitzerland) {
    expectDriver("fr_CH.UTF-8", frenchDriver);
}

TEST(DriverTextLanguage, IsEnglishUnderAnyOtherLocale) {
    for (const char* const locale : untranslatedLocales)
        expectDriver(locale, englishDriver);
}
