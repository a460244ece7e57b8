#include "Catalogue.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

Catalogue readCatalogue(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    QXmlStreamReader xml(&file);
    Catalogue catalogue;
    QString context;
    QString source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("source"))
            source = xml.readElementText();
        else if (xml.name() == QLatin1String("translation")) {
            const QString state = xml.attributes().value(QLatin1String("type")).toString();
            catalogue.insert({context, source}, {xml.readElementText(), state});
        }
    }
    EXPECT_FALSE(xml.hasError()) << qPrintable(path + QStringLiteral(": ") + xml.errorString());
    return catalogue;
}

Catalogue textsInTheSources() {
    const QTemporaryDir directory;
    const QString found = directory.filePath(QStringLiteral("found.ts"));
    QProcess lupdate;
    lupdate.setWorkingDirectory(QStringLiteral(SOURCE_ROOT));
    lupdate.start(QStringLiteral(LUPDATE),
                  {QStringLiteral("-silent"), QStringLiteral("protocol"), QStringLiteral("rtu"),
                   QStringLiteral("channel"), QStringLiteral("ui"), QStringLiteral("driver"),
                   QStringLiteral("-ts"), found});
    EXPECT_TRUE(lupdate.waitForFinished(60'000));
    EXPECT_EQ(lupdate.exitCode(), 0) << lupdate.readAllStandardError().constData();
    return readCatalogue(found);
}
