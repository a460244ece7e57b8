#include "LoadedDriver.h"

#include "VirtualSlots.h"

#include <PlainDriver.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QPointer>

#include <cstring>

namespace {

class PluginFile : public LoadedDriver {};

// What the object has at a place of its table of operations.
const void* operationAt(const DriverPluginInterface& object, std::size_t slot) {
    const void* const* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof(table));
    return table[slot];
}

} // namespace

TEST_F(PluginFile, IsNamedAfterTheDriverWithoutAPrefix) {
    EXPECT_EQ(QFileInfo(QStringLiteral(PLUGIN_FILE)).completeBaseName(), QStringLiteral("SBusDriver"));
}

TEST_F(PluginFile, TellsItsMetadataWithoutBeingLoaded) {
    const QJsonObject metadata = QPluginLoader(QStringLiteral(PLUGIN_FILE)).metaData();
    const QString interface = metadata[QStringLiteral("IID")].toString();
    EXPECT_EQ(interface, QStringLiteral(HALVEX_DRIVER_PLUGIN_IID));
    EXPECT_TRUE(interface.endsWith(QStringLiteral(".driverplugin")));
    EXPECT_EQ(metadata[QStringLiteral("className")].toString(), QStringLiteral("SBusDriver"));
    const QJsonObject keys{{QStringLiteral("Keys"), QJsonArray{QStringLiteral("SBusDriver")}}};
    EXPECT_EQ(metadata[QStringLiteral("MetaData")].toObject(), keys);
}

TEST_F(PluginFile, ExportsTheTwoEntryPoints) {
    QLibrary library(QStringLiteral(PLUGIN_FILE));
    EXPECT_NE(library.resolve("qt_plugin_instance"), nullptr);
    EXPECT_NE(library.resolve("qt_plugin_query_metadata"), nullptr);
}

TEST_F(PluginFile, GivesTheSameDriverOnASecondLoad) {
    QPluginLoader second(QStringLiteral(PLUGIN_FILE));
    EXPECT_EQ(second.instance(), loader.instance());
    QLibrary library(QStringLiteral(PLUGIN_FILE));
    const auto entry = reinterpret_cast<QObject* (*)()>(library.resolve("qt_plugin_instance"));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry(), loader.instance());
    EXPECT_EQ(entry(), entry());
}

TEST_F(PluginFile, GivesAFreshDriverOnceTheHostHasDeletedTheFirst) {
    QLibrary library(QStringLiteral(PLUGIN_FILE));
    const auto entry = reinterpret_cast<QObject* (*)()>(library.resolve("qt_plugin_instance"));
    ASSERT_NE(entry, nullptr);
    const QPointer<QObject> first = entry();
    first->setObjectName(QStringLiteral("the first"));
    delete first.data();
    QObject* second = entry();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->objectName(), QString());
    EXPECT_EQ(entry(), second);
    delete second;
}

TEST_F(PluginFile, GivesADriverWithoutAParent) {
    EXPECT_EQ(loader.instance()->parent(), nullptr);
}

TEST_F(PluginFile, GivesADriverThatDeclaresNothingOfItsOwn) {
    const QMetaObject* meta = loader.instance()->metaObject();
    EXPECT_STREQ(meta->className(), "SBusDriver");
    EXPECT_STREQ(meta->superClass()->className(), "DriverPluginInterface");
    EXPECT_EQ(meta->methodCount(), meta->methodOffset());
    EXPECT_EQ(meta->propertyCount(), meta->propertyOffset());
    EXPECT_EQ(meta->enumeratorCount(), meta->enumeratorOffset());
}

TEST_F(PluginFile, GivesADriverThatAnswersToItsOwnNameAndItsBases) {
    EXPECT_EQ(driver->qt_metacast("SBusDriver"), loader.instance());
    EXPECT_EQ(driver->qt_metacast("DriverPluginInterface"), driver);
    EXPECT_EQ(driver->qt_metacast(HALVEX_DRIVER_PLUGIN_IID), driver);
    EXPECT_EQ(driver->qt_metacast("QObject"), loader.instance());
    EXPECT_EQ(driver->qt_metacast("SBusChennel"), nullptr);
}

TEST_F(PluginFile, GivesADriverThatOverridesWhatEveryDriverMustAndNoMore) {
    using Interface = DriverPluginInterface;
    const PlainDriver plain;
    for (std::size_t slot :
         {slotOf(&Interface::fin), slotOf(&Interface::checkOwnDataBase), slotOf(&Interface::isServerCommand),
          slotOf(&Interface::unPackedResult), slotOf(&Interface::driverCommandParameter),
          slotOf(&Interface::defaultCommAddress), slotOf(&Interface::supportedPhysicalLayer),
          slotOf(&Interface::isPortNotUse), slotOf(&Interface::isAddressNotUse),
          slotOf(&Interface::chennelOptionWidgets), slotOf(&Interface::scanAddressOptionWidgets),
          slotOf(&Interface::statusInputAddressDescription),
          slotOf(&Interface::statusOutputAddressDescription),
          slotOf(&Interface::analogInputAddressDescription),
          slotOf(&Interface::analogOutputAddressDescription), slotOf(&Interface::aiAddressWidget),
          slotOf(&Interface::aoAddressWidget), slotOf(&Interface::biAddressWidget),
          slotOf(&Interface::boAddressWidget)})
        EXPECT_EQ(operationAt(*driver, slot), operationAt(plain, slot)) << "slot " << slot;
    EXPECT_NE(operationAt(*driver, slotOf(&Interface::driverCode)),
              operationAt(plain, slotOf(&Interface::driverCode)));
}

TEST(DriverPluginInterfaceSlots, StandInTheOrderOfTheInterface) {
    using Interface = DriverPluginInterface;
    std::size_t slot = 12; // behind the object's operations
    EXPECT_EQ(slotOf(&Interface::driverDescription), slot++);
    EXPECT_EQ(slotOf(&Interface::initialize), slot++);
    EXPECT_EQ(slotOf(&Interface::fin), slot++);
    EXPECT_EQ(slotOf(&Interface::driverName), slot++);
    EXPECT_EQ(slotOf(&Interface::createChannel), slot++);
    EXPECT_EQ(slotOf(&Interface::isSupportedCommType), slot++);
    EXPECT_EQ(slotOf(&Interface::isAvailable), slot++);
    EXPECT_EQ(slotOf(&Interface::checkOwnDataBase), slot++);
    EXPECT_EQ(slotOf(&Interface::isServerCommand), slot++);
    EXPECT_EQ(slotOf(&Interface::unPackedResult), slot++);
    EXPECT_EQ(slotOf(&Interface::driverCommandParameter), slot++);
    EXPECT_EQ(slotOf(&Interface::defaultCommAddress), slot++);
    EXPECT_EQ(slotOf(&Interface::supportedPhysicalLayer), slot++);
    EXPECT_EQ(slotOf(&Interface::isPortNotUse), slot++);
    EXPECT_EQ(slotOf(&Interface::isAddressNotUse), slot++);
    EXPECT_EQ(slotOf(&Interface::supportedCommTypes), slot++);
    EXPECT_EQ(slotOf(&Interface::chennelOptionWidgets), slot++);
    EXPECT_EQ(slotOf(&Interface::deviceOptionWidgets), slot++);
    EXPECT_EQ(slotOf(&Interface::scanAddressOptionWidgets), slot++);
    EXPECT_EQ(slotOf(&Interface::statusInputAddressDescription), slot++);
    EXPECT_EQ(slotOf(&Interface::statusOutputAddressDescription), slot++);
    EXPECT_EQ(slotOf(&Interface::analogInputAddressDescription), slot++);
    EXPECT_EQ(slotOf(&Interface::analogOutputAddressDescription), slot++);
    EXPECT_EQ(slotOf(&Interface::aiAddressWidget), slot++);
    EXPECT_EQ(slotOf(&Interface::aoAddressWidget), slot++);
    EXPECT_EQ(slotOf(&Interface::biAddressWidget), slot++);
    EXPECT_EQ(slotOf(&Interface::boAddressWidget), slot++);
    EXPECT_EQ(slotOf(&Interface::loadTranslator), slot++);
    EXPECT_EQ(slotOf(&Interface::driverCode), slot++);
    EXPECT_EQ(slotOf(&Interface::biAddressDescriptions), slot++);
    EXPECT_EQ(slotOf(&Interface::boAddressDescriptions), slot++);
    EXPECT_EQ(slotOf(&Interface::aoAddressDescriptions), slot++);
    EXPECT_EQ(slotOf(&Interface::aiAddressDescriptions), slot);
}
