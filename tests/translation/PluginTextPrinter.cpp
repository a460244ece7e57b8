#include <HalvexAbstractDriver/DeviceOptionWidgetInterface.h>
#include <HalvexAbstractDriver/DriverPluginInterface.h>

#include <QApplication>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPluginLoader>

#include <cstdio>
#include <memory>

namespace {

constexpr int serial = 94021;

QJsonObject namesAndHelp(DriverPluginInterface* driver) {
    return {{QStringLiteral("name"), driver->driverName()},
            {QStringLiteral("description"), driver->driverDescription()},
            {QStringLiteral("bi"), driver->biAddressDescriptions().value(0)},
            {QStringLiteral("bo"), driver->boAddressDescriptions().value(0)},
            {QStringLiteral("ao"), driver->aoAddressDescriptions().value(0)},
            {QStringLiteral("ai"), driver->aiAddressDescriptions().value(0)}};
}

// The page as it opens, and the names of those of its labels that are narrower than their texts. It is
// painted into the file `picture`, unless that is empty.
QJsonObject optionPage(DriverPluginInterface* driver, const QString& picture) {
    const QList<DeviceOptionWidgetInterface*> pages = driver->deviceOptionWidgets(serial);
    const std::unique_ptr<QWidget> page(pages.value(0));
    if (!page)
        return {};
    page->setFixedSize(page->size()); // a dialog need not let it grow
    page->show();
    QJsonObject texts{{QStringLiteral("title"), page->windowTitle()}};
    QJsonArray cutOff;
    for (const QLabel* const label : page->findChildren<QLabel*>()) {
        texts.insert(label->objectName(), label->text());
        if (label->width() < label->sizeHint().width())
            cutOff.append(label->objectName());
    }
    const auto* const mode = page->findChild<QComboBox*>(QStringLiteral("mode"));
    if (mode->width() < mode->sizeHint().width())
        cutOff.append(mode->objectName());
    texts.insert(QStringLiteral("mode 0"), mode->itemText(0));
    texts.insert(QStringLiteral("mode 1"), mode->itemText(1));
    texts.insert(QStringLiteral("cut off"), cutOff);
    if (!picture.isEmpty() && !page->grab().save(picture))
        std::fprintf(stderr, "%s cannot be written\n", qPrintable(picture));
    return texts;
}

} // namespace

// plugin_text_printer PLUGIN [PICTURE]: prints what a user sees of the driver in the language of the system,
// as JSON.
int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QPluginLoader loader(QCoreApplication::arguments().value(1));
    auto* const driver = qobject_cast<DriverPluginInterface*>(loader.instance());
    if (driver == nullptr) {
        std::fprintf(stderr, "%s\n", qPrintable(loader.errorString()));
        return 1;
    }
    driver->loadTranslator();
    const QJsonObject shown{
        {QStringLiteral("driver"), namesAndHelp(driver)},
        {QStringLiteral("page"), optionPage(driver, QCoreApplication::arguments().value(2))}};
    std::printf("%s\n", QJsonDocument(shown).toJson().constData());
    return 0;
}
