#include "CrashReport.h"
#include "OptionPage.h"

#include <QEvent>

#include <functional>

namespace {

class OptionPageRecord : public OptionPage {};

// Slots that write without asking whether there is a record: a page is loaded before a user can touch it.
class OptionPageDeathTest : public OptionPage {
protected:
    OptionPageDeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

// Tells of a widget that is enabled or disabled, at that moment.
class EnabledWatch : public QObject {
public:
    EnabledWatch(QWidget* widget, std::function<void()> noticed) : notice(std::move(noticed)) {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::EnabledChange)
            notice();
        return false;
    }

private:
    const std::function<void()> notice;
};

void whenChanged(QSpinBox* box, const std::function<void()>& notice) {
    QObject::connect(box, QOverload<int>::of(&QSpinBox::valueChanged), notice);
}

void whenChanged(QComboBox* box, const std::function<void()>& notice) {
    QObject::connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), notice);
}

void expectRecord(const EScan& scan, const char* station, const char* transmitType, const char* breakDelay) {
    EXPECT_EQ(scan.stationAddress, QString::fromLatin1(station));
    EXPECT_EQ(scan.transmitType, QString::fromLatin1(transmitType));
    EXPECT_EQ(scan.breakDelay, QString::fromLatin1(breakDelay));
}

} // namespace

TEST_F(OptionPageRecord, ShowsTheStoredValues) {
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    EXPECT_EQ(addr->value(), 1);
    EXPECT_EQ(mode->currentIndex(), 1);
    EXPECT_EQ(delay->value(), 50);
    expectRecord(scan, "1", "1", "50");
}

TEST_F(OptionPageRecord, AnotherStationThanShownOverwritesTheBreakDelayBeforeItIsRead) {
    EScan scan = record("5", "1", "50");
    page.loadScan(&scan);
    EXPECT_EQ(addr->value(), 5);
    EXPECT_EQ(delay->value(), 10);
    expectRecord(scan, "5", "1", "10");
}

TEST_F(OptionPageRecord, TheStationThatIsShownAlreadyWritesNothingBack) {
    EScan scan = record("1", "0", "50");
    page.loadScan(&scan);
    EXPECT_EQ(delay->value(), 50);
    expectRecord(scan, "1", "0", "50");
}

TEST_F(OptionPageRecord, ASecondRecordIsGivenTheDelayOfTheFirst) {
    EScan first = record("1", "1", "50");
    page.loadScan(&first);
    EScan second = record("7", "1", "300");
    page.loadScan(&second);
    EXPECT_EQ(delay->value(), 50);
    expectRecord(second, "7", "1", "50");
    expectRecord(first, "1", "1", "50");
}

TEST_F(OptionPageRecord, AnEmptyBreakDelayBecomesTen) {
    EScan scan = record("1", "1", "");
    page.loadScan(&scan);
    EXPECT_EQ(delay->value(), 10);
    EXPECT_EQ(scan.breakDelay, QStringLiteral("10"));
}

TEST_F(OptionPageRecord, AnEmptyBreakDelayBecomesTenWhateverWasShownBefore) {
    EScan first = record("1", "1", "50");
    page.loadScan(&first);
    EScan second = record("1", "1", "");
    page.loadScan(&second);
    EXPECT_EQ(delay->value(), 10);
    EXPECT_EQ(second.breakDelay, QStringLiteral("10"));
}

TEST_F(OptionPageRecord, AStationThatIsNoNumberIsZero) {
    EScan scan = record("five", "1", "50");
    page.loadScan(&scan);
    EXPECT_EQ(addr->value(), 0);
    expectRecord(scan, "0", "1", "10");
}

TEST_F(OptionPageRecord, ATransmitTypeThatIsNoDecimalNumberIsDataMode) {
    for (const char* text : {"break", "A"}) {
        EScan scan = record("1", text, "50");
        page.loadScan(&scan);
        EXPECT_EQ(mode->currentIndex(), 0) << text;
        EXPECT_FALSE(delay->isEnabled()) << text;
        EXPECT_EQ(scan.transmitType, QString::fromLatin1(text));
    }
}

TEST_F(OptionPageRecord, AnEmptyTransmitTypeIsDataMode) {
    EScan scan = record("1", "", "50");
    page.loadScan(&scan);
    EXPECT_EQ(mode->currentIndex(), 0);
    EXPECT_FALSE(delay->isEnabled());
}

TEST_F(OptionPageRecord, ABreakDelayThatIsNoNumberIsZero) {
    EScan scan = record("1", "1", "soon");
    page.loadScan(&scan);
    EXPECT_EQ(delay->value(), 0);
    EXPECT_EQ(scan.breakDelay, QStringLiteral("0"));
}

TEST_F(OptionPageRecord, LeadingZerosMakeNoOctalNumbers) {
    EScan scan = record("010", "01", "0100");
    page.loadScan(&scan);
    EXPECT_EQ(addr->value(), 10);
    EXPECT_EQ(mode->currentIndex(), 1);
    scan = record("10", "01", "0100");
    page.loadScan(&scan);
    EXPECT_EQ(delay->value(), 100);
    scan = record("10", "010", "100");
    page.loadScan(&scan);
    EXPECT_EQ(mode->currentIndex(), -1) << "ten, not eight";
}

TEST_F(OptionPageRecord, HexadecimalTextsAreNoNumbers) {
    EScan scan = record("0x10", "0x1", "50");
    page.loadScan(&scan);
    EXPECT_EQ(addr->value(), 0);
    EXPECT_EQ(mode->currentIndex(), 0);
    scan = record("0", "0", "0x10");
    page.loadScan(&scan);
    EXPECT_EQ(delay->value(), 0);
}

TEST_F(OptionPageRecord, FillsStationThenRightsThenModeThenDelay) {
    HalvexAccountService::instance()->setEditDatabase(false);
    EScan scan = record("5", "1", "");
    QStringList steps;
    whenChanged(addr, [&] {
        steps << QStringLiteral("station");
        EXPECT_TRUE(page.isEnabled());
        scan.breakDelay.clear(); // what the write-back put there
    });
    const EnabledWatch rights(&page, [&] { steps << QStringLiteral("rights"); });
    whenChanged(mode, [&] {
        steps << QStringLiteral("mode");
        EXPECT_EQ(scan.breakDelay, QString()) << "the missing delay is not made up for yet";
        delay->setValue(33); // so that the delay changes at its turn
        scan.breakDelay.clear();
        steps.removeAll(QStringLiteral("delay"));
    });
    whenChanged(delay, [&] { steps << QStringLiteral("delay"); });
    page.loadScan(&scan);
    EXPECT_EQ(steps, (QStringList{"station", "rights", "mode", "delay"}));
    expectRecord(scan, "5", "1", "10");
}

TEST_F(OptionPageRecord, FillsTheDelayBeforeItDisablesIt) {
    EScan scan = record("1", "0", "50");
    bool enabledAtChange = false;
    whenChanged(delay, [&] { enabledAtChange = delay->isEnabled(); });
    page.loadScan(&scan);
    EXPECT_TRUE(enabledAtChange);
    EXPECT_FALSE(delay->isEnabled());
}

TEST_F(OptionPageRecord, StoresAChosenModeBeforeItEnablesTheDelay) {
    EScan scan = record("1", "0", "10");
    page.loadScan(&scan);
    QString stored;
    const EnabledWatch watch(delay, [&] { stored = scan.transmitType; });
    mode->setCurrentIndex(1);
    EXPECT_EQ(stored, QStringLiteral("1"));
}

TEST_F(OptionPageRecord, ValuesBeyondTheRangesAreCut) {
    EScan scan = record("300", "1", "10");
    page.loadScan(&scan);
    EXPECT_EQ(addr->value(), 256);
    EXPECT_EQ(scan.stationAddress, QStringLiteral("256"));
    scan = record("256", "1", "5000");
    page.loadScan(&scan);
    EXPECT_EQ(delay->value(), 1000);
    EXPECT_EQ(scan.breakDelay, QStringLiteral("1000"));
}

TEST_F(OptionPageRecord, DataModeDisablesTheDelayAndBreakModeEnablesIt) {
    EScan data = record("1", "0", "10");
    page.loadScan(&data);
    EXPECT_FALSE(delay->isEnabled());
    EScan breaking = record("1", "1", "10");
    page.loadScan(&breaking);
    EXPECT_TRUE(delay->isEnabled());
    page.loadScan(&data);
    EXPECT_FALSE(delay->isEnabled());
}

TEST_F(OptionPageRecord, AnUnknownTransmitTypeReachesTheChoiceAsItIs) {
    EScan scan = record("1", "7", "50");
    page.loadScan(&scan);
    EXPECT_EQ(mode->currentIndex(), -1) << "the choice has no eighth entry";
    EXPECT_EQ(scan.transmitType, QStringLiteral("-1")) << "the change of the choice was stored";
    EXPECT_TRUE(delay->isEnabled());
    EXPECT_EQ(delay->value(), 50);
}

TEST_F(OptionPageRecord, ANegativeTransmitTypeEnablesTheDelayToo) {
    EScan scan = record("1", "-1", "50");
    page.loadScan(&scan);
    EXPECT_EQ(mode->currentIndex(), -1);
    EXPECT_TRUE(delay->isEnabled());
}

TEST_F(OptionPageRecord, ChoosingDataModeDisablesTheDelay) {
    EScan scan = record("1", "1", "10");
    page.loadScan(&scan);
    mode->setCurrentIndex(0);
    EXPECT_FALSE(delay->isEnabled());
    EXPECT_EQ(scan.transmitType, QStringLiteral("0"));
}

TEST_F(OptionPageRecord, ChoosingBreakModeEnablesTheDelayAndStoresIt) {
    EScan scan = record("1", "0", "10");
    page.loadScan(&scan);
    mode->setCurrentIndex(1);
    EXPECT_TRUE(delay->isEnabled());
    EXPECT_EQ(scan.transmitType, QStringLiteral("1"));
}

TEST_F(OptionPageRecord, AnEditedStationIsStoredAtOnceTogetherWithTheDelay) {
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    scan.breakDelay = QStringLiteral("replaced");
    addr->setValue(9);
    expectRecord(scan, "9", "1", "50");
}

TEST_F(OptionPageRecord, AnEditedDelayIsStoredAtOnceTogetherWithTheStation) {
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    scan.stationAddress = QStringLiteral("replaced");
    delay->setValue(77);
    expectRecord(scan, "1", "1", "77");
}

TEST_F(OptionPageRecord, TheValueSlotStoresWhatTheWidgetsShowAndNotItsArgument) {
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    scan = record("", "1", "");
    page.valueChanged(999);
    expectRecord(scan, "1", "1", "50");
}

TEST_F(OptionPageRecord, TheTransmitTypeSlotStoresItsArgumentAndEnablesTheDelayUnlessItIsZero) {
    EScan scan = record("1", "0", "10");
    page.loadScan(&scan);
    page.transmitTypeChanged(12);
    EXPECT_EQ(scan.transmitType, QStringLiteral("12"));
    EXPECT_TRUE(delay->isEnabled());
    page.transmitTypeChanged(0);
    EXPECT_EQ(scan.transmitType, QStringLiteral("0"));
    EXPECT_FALSE(delay->isEnabled());
    page.transmitTypeChanged(-1);
    EXPECT_EQ(scan.transmitType, QStringLiteral("-1"));
    EXPECT_TRUE(delay->isEnabled());
}

TEST_F(OptionPageRecord, TheStationSlotStoresItsTextAsItIs) {
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    page.slaveAddressChanged(QStringLiteral(" 12 x"));
    expectRecord(scan, " 12 x", "1", "50");
    EXPECT_EQ(addr->value(), 1);
}

TEST_F(OptionPageRecord, TheStationSlotDoesNothingBeforeARecordIsLoaded) {
    page.slaveAddressChanged(QStringLiteral("12"));
    EXPECT_EQ(addr->value(), 1);
    EXPECT_EQ(delay->value(), 10);
}

TEST_F(OptionPageDeathTest, TheModeSlotNeedsARecord) {
    EXPECT_DEATH(page.transmitTypeChanged(1), "");
    takeCrashReport();
}

TEST_F(OptionPageDeathTest, TheValueSlotNeedsARecord) {
    EXPECT_DEATH(page.valueChanged(1), "");
    takeCrashReport();
}

TEST_F(OptionPageRecord, TheDelaySlotDoesNothing) {
    page.delayChanged(QStringLiteral("99"));
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    page.delayChanged(QStringLiteral("99"));
    expectRecord(scan, "1", "1", "50");
    EXPECT_EQ(delay->value(), 50);
}

TEST_F(OptionPageRecord, WithoutEditRightsShowsEveryValueDisabled) {
    HalvexAccountService::instance()->setEditDatabase(false);
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    EXPECT_EQ(addr->value(), 1);
    EXPECT_EQ(mode->currentIndex(), 1);
    EXPECT_EQ(delay->value(), 50);
    EXPECT_FALSE(page.isEnabled());
    for (const QWidget* widget : page.findChildren<QWidget*>())
        EXPECT_FALSE(widget->isEnabled()) << qPrintable(widget->objectName());
}

TEST_F(OptionPageRecord, NothingEnablesThePageAgain) {
    HalvexAccountService::instance()->setEditDatabase(false);
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    HalvexAccountService::instance()->setEditDatabase(true);
    page.loadScan(&scan);
    EXPECT_FALSE(page.isEnabled());
    EXPECT_FALSE(delay->isEnabled());
}

TEST_F(OptionPageRecord, WithEditRightsIsEnabled) {
    EScan scan = record("1", "1", "50");
    page.loadScan(&scan);
    EXPECT_TRUE(page.isEnabled());
    EXPECT_TRUE(addr->isEnabled());
    EXPECT_TRUE(mode->isEnabled());
}

TEST_F(OptionPageRecord, IsLoadedByTheDialogsFirstCallAndAgreesToItsLast) {
    EScan scan = record("1", "1", "50");
    DeviceOptionWidgetInterface& asTheDialogSeesIt = page;
    asTheDialogSeesIt.initPage(&scan);
    EXPECT_EQ(delay->value(), 50);
    QString message;
    EXPECT_TRUE(asTheDialogSeesIt.slotOK(message));
    EXPECT_TRUE(message.isEmpty());
    expectRecord(scan, "1", "1", "50");
}
