#include "LoadedDriver.h"

#include "RecordingCore.h"

#include <HalvexAbstractDriver/DeviceOptionWidgetInterface.h>
#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>

#include <QPointer>

#include <memory>

namespace {

class Factory : public LoadedDriver {
protected:
    std::unique_ptr<CChannel> createChannel(int id) {
        return std::unique_ptr<CChannel>(driver->createChannel(id));
    }
};

} // namespace

TEST_F(Factory, GivesEveryChannelTheCoreOfTheFirstInitialisation) {
    RecordingCore first;
    RecordingCore second;
    driver->initialize(&first);
    driver->initialize(&second);
    EXPECT_EQ(createChannel(1)->GetCore(), &first);
    EXPECT_EQ(createChannel(2)->GetCore(), &first);
}

TEST_F(Factory, TakesANullCoreForTheFirstInitialisationToo) {
    RecordingCore late;
    driver->initialize(nullptr);
    driver->initialize(&late);
    EXPECT_EQ(createChannel(1)->GetCore(), nullptr);
}

TEST_F(Factory, GivesChannelsNoCoreBeforeItIsInitialised) {
    EXPECT_EQ(createChannel(1)->GetCore(), nullptr);
}

TEST_F(Factory, MakesANewChannelOfTheGivenIdEachTime) {
    const auto one = createChannel(17);
    const auto other = createChannel(17);
    EXPECT_NE(one, other);
    EXPECT_EQ(one->channelId(), 17);
    EXPECT_EQ(one->parent(), nullptr);
    EXPECT_EQ(createChannel(-1)->channelId(), -1);
}

TEST_F(Factory, MakesChannelsThatMakeRtus) {
    const auto channel = createChannel(4);
    RemoteTerminalUnit info;
    info.id = 8;
    const CRtu* rtu = channel->AddRtu(info);
    ASSERT_NE(rtu, nullptr);
    EXPECT_EQ(rtu->GetRtuId(), 8);
    EXPECT_EQ(rtu->chennelId(), 4);
}

TEST_F(Factory, MakesANewOptionPageForASerialLineEachTime) {
    const auto first = driver->deviceOptionWidgets(serial);
    const auto second = driver->deviceOptionWidgets(serial);
    ASSERT_EQ(first.size(), 1);
    ASSERT_EQ(second.size(), 1);
    const std::unique_ptr<QWidget> firstPage(first[0]);
    const std::unique_ptr<QWidget> secondPage(second[0]);
    EXPECT_NE(firstPage, secondPage);
    EXPECT_STREQ(firstPage->metaObject()->className(), "SaiaSerialDeviceOption");
    EXPECT_EQ(firstPage->parentWidget(), nullptr);
}

TEST_F(Factory, LeavesChannelsAndPagesToTheHostWhenItGoes) {
    const auto channel = createChannel(3);
    const QPointer<QWidget> page = driver->deviceOptionWidgets(serial).value(0);
    EXPECT_TRUE(driver->children().isEmpty());
    delete loader.instance();
    EXPECT_EQ(channel->channelId(), 3);
    ASSERT_FALSE(page.isNull());
    delete page.data();
}

TEST_F(Factory, MakesNoOptionPageForAnyOtherType) {
    EXPECT_TRUE(driver->deviceOptionWidgets(ethernet).isEmpty());
    for (int code : {0, 94020, 94023, -1})
        EXPECT_TRUE(driver->deviceOptionWidgets(code).isEmpty()) << code;
}

TEST_F(Factory, LeavesTheRestToTheBase) {
    EXPECT_TRUE(driver->chennelOptionWidgets(serial).isEmpty());
    EXPECT_TRUE(driver->scanAddressOptionWidgets(serial).isEmpty());
    EXPECT_EQ(driver->aiAddressWidget(), nullptr);
    EXPECT_EQ(driver->aoAddressWidget(), nullptr);
    EXPECT_EQ(driver->biAddressWidget(), nullptr);
    EXPECT_EQ(driver->boAddressWidget(), nullptr);
    EXPECT_EQ(driver->statusInputAddressDescription(), QString());
    EXPECT_EQ(driver->analogInputAddressDescription(), QString());
}
