#include "LoadedDriver.h"

#include "MarkingTranslator.h"
#include "RecordingCore.h"

#include <limits>

namespace {

class Descriptor : public LoadedDriver {};

const QString inputText = QStringLiteral("Saia S-BUS Address Descriptions\n"
                                         "address A(M) - Input address number\n"
                                         "               Compose of 'Variable'+'Address'\n"
                                         "                example) I200 -> 200th Input\n"
                                         "                example) O200 -> 200th Output \n");
const QString outputText = QStringLiteral("Saia S-BUS Address Descriptions\n"
                                          "address A(M) - Output address number\n"
                                          "               Compose of 'Variable'+'Address'\n"
                                          "                example) O200 -> 200th Output\n"
                                          "                example) F200 -> 200th Flag\n");
const QString analogOutputText = QStringLiteral("Saia S-BUS Address Descriptions\n"
                                                "address A(M) - Output address number\n"
                                                "               Compose of 'Variable'+'Address'\n"
                                                "               example) R200 -> 200th register\n"
                                                "               example) T200 -> 200th Timer\n");
const QString analogInputText = QStringLiteral("Saia S-BUS Address Descriptions\n"
                                               "address A(M) - Input address number\n"
                                               "               Compose of 'Variable'+'Address'\n"
                                               "               example) R200  -> 200th register\n"
                                               "               example) T200 ->  200th Timer\n");

} // namespace

TEST_F(Descriptor, NamesTheDriver) {
    EXPECT_EQ(driver->driverName(), QStringLiteral("SAIA S-BUS"));
    EXPECT_EQ(driver->driverDescription(), QStringLiteral("SAIA S-BUS Driver"));
}

TEST_F(Descriptor, HasCodeElevenAndIsAvailableUnderEveryCondition) {
    const auto expectSame = [this] {
        EXPECT_EQ(driver->driverCode(), 11);
        EXPECT_TRUE(driver->isAvailable());
    };
    expectSame();
    RecordingCore core;
    driver->initialize(&core);
    expectSame();
    driver->loadTranslator();
    expectSame();
    driver->fin();
    expectSame();
}

TEST_F(Descriptor, SupportsItsTwoTypesAlone) {
    EXPECT_TRUE(driver->isSupportedCommType(94021));
    EXPECT_TRUE(driver->isSupportedCommType(94022));
    for (int code :
         {94020, 94023, 0, -94021, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        EXPECT_FALSE(driver->isSupportedCommType(code)) << code;
}

TEST_F(Descriptor, ListsTheSerialTypeBeforeTheEthernetOne) {
    const QList<QPair<int, QString>> types{{94021, QStringLiteral("SBus-Serial")},
                                           {94022, QStringLiteral("SBus-Ethernet")}};
    EXPECT_EQ(driver->supportedCommTypes(), types);
}

TEST_F(Descriptor, DescribesBinaryInputAddresses) {
    EXPECT_EQ(driver->biAddressDescriptions(), QStringList{inputText});
    EXPECT_EQ(driver->biAddressDescriptions().value(0).size(), 207);
}

TEST_F(Descriptor, DescribesBinaryOutputAddresses) {
    EXPECT_EQ(driver->boAddressDescriptions(), QStringList{outputText});
    EXPECT_EQ(driver->boAddressDescriptions().value(0).size(), 206);
}

TEST_F(Descriptor, DescribesAnalogOutputAddresses) {
    EXPECT_EQ(driver->aoAddressDescriptions(), QStringList{analogOutputText});
    EXPECT_EQ(driver->aoAddressDescriptions().value(0).size(), 207);
}

TEST_F(Descriptor, DescribesAnalogInputAddresses) {
    EXPECT_EQ(driver->aiAddressDescriptions(), QStringList{analogInputText});
    EXPECT_EQ(driver->aiAddressDescriptions().value(0).size(), 208);
}

TEST_F(Descriptor, TranslatesNamesAndWholeAddressTextsButNoTypeNames) {
    const MarkingTranslator translator("SBusDriver");
    const auto marked = [](const QString& text) { return QLatin1Char('<') + text + QLatin1Char('>'); };
    EXPECT_EQ(driver->driverName(), QStringLiteral("<SAIA S-BUS>"));
    EXPECT_EQ(driver->driverDescription(), QStringLiteral("<SAIA S-BUS Driver>"));
    EXPECT_EQ(driver->biAddressDescriptions(), QStringList{marked(inputText)});
    EXPECT_EQ(driver->boAddressDescriptions(), QStringList{marked(outputText)});
    EXPECT_EQ(driver->aoAddressDescriptions(), QStringList{marked(analogOutputText)});
    EXPECT_EQ(driver->aiAddressDescriptions(), QStringList{marked(analogInputText)});
    EXPECT_EQ(driver->supportedCommTypes().value(0).second, QStringLiteral("SBus-Serial"));
    EXPECT_EQ(driver->supportedCommTypes().value(1).second, QStringLiteral("SBus-Ethernet"));
}
