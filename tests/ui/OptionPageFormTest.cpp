#include "MarkingTranslator.h"
#include "OptionPage.h"
#include "VirtualSlots.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QMetaMethod>
#include <QProxyStyle>
#include <QVBoxLayout>

namespace {

class OptionPageForm : public OptionPage {
protected:
    QLabel* label(const char* name) const { return page.findChild<QLabel*>(QString::fromLatin1(name)); }
    QGridLayout* grid() const { return page.findChild<QGridLayout*>(QStringLiteral("gridLayout")); }
    QWidget* cell(int row, int column) const {
        QLayoutItem* item = grid()->itemAtPosition(row, column);
        return item ? item->widget() : nullptr;
    }
};

constexpr auto rightAndCentred = Qt::AlignRight | Qt::AlignVCenter;

// A style whose own spacings and margins are none of those that the form asks for.
class WideStyle : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        switch (metric) {
        case PM_LayoutHorizontalSpacing:
        case PM_LayoutVerticalSpacing:
        case PM_LayoutLeftMargin:
        case PM_LayoutTopMargin:
        case PM_LayoutRightMargin:
        case PM_LayoutBottomMargin:
            return 40;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }
};

// Remembers the texts that are looked up while it lives, in order, and translates none.
class TextRecorder : public QTranslator {
public:
    TextRecorder() { QCoreApplication::installTranslator(this); }
    ~TextRecorder() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* text, const char*, int) const override {
        if (qstrcmp(context, "SaiaSerialDeviceOption") == 0)
            texts << QString::fromLatin1(text);
        return {};
    }

    mutable QStringList texts;
};

// The connections to an object's slots as Qt prints them for debugging: the sender's class and name and the
// receiving slot, the newest first.
QStringList connectionsTo(const QObject& receiver) {
    static QStringList lines;
    lines.clear();
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& line) {
            if (line.contains(QLatin1String("<--")))
                lines << line.simplified();
        });
    receiver.dumpObjectInfo();
    qInstallMessageHandler(before);
    return lines;
}

} // namespace

TEST_F(OptionPageForm, HasItsNameSizeAndTitle) {
    EXPECT_EQ(page.objectName(), QStringLiteral("SaiaSerialDeviceOption"));
    EXPECT_EQ(page.size(), QSize(394, 200));
    EXPECT_EQ(page.windowTitle(), QStringLiteral("Protocol"));
}

TEST_F(OptionPageForm, BelongsToTheParentItIsGiven) {
    EXPECT_EQ(page.parentWidget(), nullptr);
    QWidget parent;
    const auto* child = new SaiaSerialDeviceOption(&parent);
    EXPECT_EQ(child->parentWidget(), &parent);
}

TEST_F(OptionPageForm, LaysTheGridOverAnExpandingSpacer) {
    const auto* vertical = page.findChild<QVBoxLayout*>(QStringLiteral("verticalLayout"));
    ASSERT_NE(vertical, nullptr);
    EXPECT_EQ(page.layout(), vertical);
    EXPECT_EQ(vertical->spacing(), 6);
    EXPECT_EQ(vertical->contentsMargins(), QMargins(11, 11, 11, 11));
    ASSERT_EQ(vertical->count(), 2);
    EXPECT_EQ(vertical->itemAt(0)->layout(), grid());
    QSpacerItem* spacer = vertical->itemAt(1)->spacerItem();
    ASSERT_NE(spacer, nullptr);
    EXPECT_EQ(spacer->sizeHint(), QSize(20, 40));
    EXPECT_EQ(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
    EXPECT_EQ(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
}

TEST_F(OptionPageForm, HoldsThreeRowsOfLabelAndField) {
    ASSERT_NE(grid(), nullptr);
    EXPECT_EQ(grid()->spacing(), 6);
    EXPECT_EQ(grid()->rowCount(), 3);
    EXPECT_EQ(grid()->columnCount(), 2);
    EXPECT_EQ(cell(0, 0), label("label_2"));
    EXPECT_EQ(cell(0, 1), addr);
    EXPECT_EQ(cell(1, 0), label("label_3"));
    EXPECT_EQ(cell(1, 1), mode);
    EXPECT_EQ(cell(2, 0), label("bl"));
}

TEST_F(OptionPageForm, AddsItsCellsRowByRow) {
    QStringList names;
    for (int i = 0; i < grid()->count(); ++i) {
        QLayoutItem* const item = grid()->itemAt(i);
        names << (item->widget() ? item->widget()->objectName() : item->layout()->objectName());
    }
    EXPECT_EQ(names, (QStringList{"label_2", "addr", "label_3", "mode", "bl", "horizontalLayout"}));
}

TEST_F(OptionPageForm, PutsTheUnitBehindTheDelay) {
    ASSERT_NE(grid()->itemAtPosition(2, 1), nullptr);
    const QLayout* row = grid()->itemAtPosition(2, 1)->layout();
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row, page.findChild<QHBoxLayout*>(QStringLiteral("horizontalLayout")));
    EXPECT_EQ(row->spacing(), 6);
    ASSERT_EQ(row->count(), 2);
    EXPECT_EQ(row->itemAt(0)->widget(), delay);
    EXPECT_EQ(row->itemAt(1)->widget(), label("msec"));
}

TEST_F(OptionPageForm, KeepsItsSpacingsAndMarginsInEveryStyle) {
    WideStyle style;
    SaiaSerialDeviceOption styled(nullptr);
    styled.setStyle(&style);
    QWidget other;
    other.setStyle(&style);
    ASSERT_EQ(QHBoxLayout(&other).spacing(), 40) << "left to the style";
    auto* vertical = styled.findChild<QVBoxLayout*>(QStringLiteral("verticalLayout"));
    auto* inner = styled.findChild<QGridLayout*>(QStringLiteral("gridLayout"));
    const auto* row = styled.findChild<QHBoxLayout*>(QStringLiteral("horizontalLayout"));
    EXPECT_EQ(vertical->spacing(), 6);
    EXPECT_EQ(vertical->contentsMargins(), QMargins(11, 11, 11, 11));
    EXPECT_EQ(inner->horizontalSpacing(), 6);
    EXPECT_EQ(inner->verticalSpacing(), 6);
    EXPECT_EQ(inner->contentsMargins(), QMargins());
    EXPECT_EQ(row->spacing(), 6);
    EXPECT_EQ(row->contentsMargins(), QMargins());
    // Each has its spacing of its own, not that of the layout around it.
    vertical->setSpacing(20);
    EXPECT_EQ(inner->spacing(), 6);
    inner->setSpacing(20);
    EXPECT_EQ(row->spacing(), 6);
}

TEST_F(OptionPageForm, StretchesAndAlignsNoCell) {
    const auto* vertical = page.findChild<QVBoxLayout*>(QStringLiteral("verticalLayout"));
    const auto* row = page.findChild<QHBoxLayout*>(QStringLiteral("horizontalLayout"));
    for (const QLayout* layout : {static_cast<const QLayout*>(vertical), static_cast<const QLayout*>(row),
                                  static_cast<const QLayout*>(grid())})
        for (int i = 0; i < layout->count(); ++i)
            EXPECT_EQ(layout->itemAt(i)->alignment(), Qt::Alignment())
                << qPrintable(layout->objectName()) << i;
    for (int i : {0, 1}) {
        EXPECT_EQ(vertical->stretch(i), 0);
        EXPECT_EQ(row->stretch(i), 0);
        EXPECT_EQ(grid()->columnStretch(i), 0);
    }
    for (int i : {0, 1, 2})
        EXPECT_EQ(grid()->rowStretch(i), 0);
    EXPECT_EQ(grid()->count(), 6) << "one item a cell";
}

TEST_F(OptionPageForm, LeavesEverySizePolicyButTheStationsAsItIs) {
    const QSpinBox spinBox;
    const QComboBox comboBox;
    const QLabel plainLabel;
    EXPECT_EQ(delay->sizePolicy(), spinBox.sizePolicy());
    EXPECT_EQ(mode->sizePolicy(), comboBox.sizePolicy());
    for (const char* name : {"label_2", "label_3", "bl", "msec"})
        EXPECT_EQ(label(name)->sizePolicy(), plainLabel.sizePolicy()) << name;
}

// Which is the order in which the tabulator key goes through them, too.
TEST_F(OptionPageForm, MakesItsWidgetsInTheOrderInWhichTheyAreSeen) {
    QStringList names;
    for (const QWidget* widget : page.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        names << widget->objectName();
    EXPECT_EQ(names, (QStringList{"label_2", "addr", "label_3", "mode", "bl", "delay", "msec"}));
}

TEST_F(OptionPageForm, NamesItsFields) {
    for (const auto& [name, text] :
         {std::pair{"label_2", "Comm. Board Station No.:"}, std::pair{"label_3", "S-Bus Protocol :"},
          std::pair{"bl", "Break Delay Time :"}, std::pair{"msec", "(msec)"}}) {
        ASSERT_NE(label(name), nullptr) << name;
        EXPECT_EQ(label(name)->text(), QString::fromLatin1(text)) << name;
    }
}

TEST_F(OptionPageForm, AlignsTheLabelsRightAndCentred) {
    for (const char* name : {"label_2", "label_3", "bl"}) {
        ASSERT_NE(label(name), nullptr) << name;
        EXPECT_EQ(label(name)->alignment(), rightAndCentred) << name;
    }
    EXPECT_EQ(label("msec")->alignment(), QLabel().alignment()) << "stands behind its field";
}

TEST_F(OptionPageForm, OffersStationsUpTo256) {
    ASSERT_NE(addr, nullptr);
    EXPECT_EQ(addr->minimum(), 0);
    EXPECT_EQ(addr->maximum(), 256);
    EXPECT_EQ(addr->value(), 1);
    EXPECT_EQ(addr->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    EXPECT_EQ(addr->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    EXPECT_EQ(addr->sizePolicy().horizontalStretch(), 0);
    EXPECT_EQ(addr->sizePolicy().verticalStretch(), 0);
}

TEST_F(OptionPageForm, OffersDataModeAndBreakMode) {
    ASSERT_NE(mode, nullptr);
    ASSERT_EQ(mode->count(), 2);
    EXPECT_EQ(mode->itemText(0), QStringLiteral("Data Mode"));
    EXPECT_EQ(mode->itemText(1), QStringLiteral("Break Mode"));
    EXPECT_EQ(mode->currentIndex(), 0);
}

TEST_F(OptionPageForm, OffersDelaysUpToASecond) {
    ASSERT_NE(delay, nullptr);
    EXPECT_EQ(delay->minimum(), 0);
    EXPECT_EQ(delay->maximum(), 1000);
    EXPECT_EQ(delay->value(), 10);
}

TEST_F(OptionPageForm, TranslatesEveryTextUnderItsOwnName) {
    const MarkingTranslator translator("SaiaSerialDeviceOption");
    const SaiaSerialDeviceOption translated(nullptr);
    EXPECT_EQ(translated.windowTitle(), QStringLiteral("<Protocol>"));
    for (const auto& [name, text] :
         {std::pair{"label_2", "<Comm. Board Station No.:>"}, std::pair{"label_3", "<S-Bus Protocol :>"},
          std::pair{"bl", "<Break Delay Time :>"}, std::pair{"msec", "<(msec)>"}})
        EXPECT_EQ(translated.findChild<QLabel*>(QString::fromLatin1(name))->text(),
                  QString::fromLatin1(text));
    const auto* choices = translated.findChild<QComboBox*>(QStringLiteral("mode"));
    EXPECT_EQ(choices->itemText(0), QStringLiteral("<Data Mode>"));
    EXPECT_EQ(choices->itemText(1), QStringLiteral("<Break Mode>"));
}

TEST_F(OptionPageForm, TakesItsOwnNameForATitleBeforeItsTextsAndTheLastingTitleBehindThem) {
    const TextRecorder recorder;
    const SaiaSerialDeviceOption recorded(nullptr);
    EXPECT_EQ(recorder.texts, (QStringList{"SaiaSerialDeviceOption",
                                           "Comm. Board Station No.:", "S-Bus Protocol :", "Data Mode",
                                           "Break Mode", "Break Delay Time :", "(msec)", "Protocol"}));
}

TEST_F(OptionPageForm, ListensToStationThenDelayThenMode) {
    EXPECT_EQ(connectionsTo(page),
              (QStringList{"<-- QComboBox::mode transmitTypeChanged(int)",
                           "<-- QSpinBox::delay valueChanged(int)", "<-- QSpinBox::addr valueChanged(int)"}));
}

TEST_F(OptionPageForm, DeclaresItsFourSlotsInOrderAndNothingElse) {
    const QMetaObject* meta = page.metaObject();
    EXPECT_STREQ(meta->className(), "SaiaSerialDeviceOption");
    EXPECT_STREQ(meta->superClass()->className(), "DeviceOptionWidgetInterface");
    EXPECT_EQ(meta->propertyCount(), meta->propertyOffset());
    QList<QByteArray> signatures;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        EXPECT_EQ(meta->method(i).methodType(), QMetaMethod::Slot);
        EXPECT_EQ(meta->method(i).access(), QMetaMethod::Public);
        signatures << meta->method(i).methodSignature();
    }
    EXPECT_EQ(signatures, (QList<QByteArray>{"slaveAddressChanged(QString)", "transmitTypeChanged(int)",
                                             "delayChanged(QString)", "valueChanged(int)"}));
}

TEST_F(OptionPageForm, AnswersToItsOwnNameAndItsBases) {
    EXPECT_EQ(page.qt_metacast("SaiaSerialDeviceOption"), &page);
    EXPECT_NE(page.qt_metacast("DeviceOptionWidgetInterface"), nullptr);
    EXPECT_NE(page.qt_metacast("QWidget"), nullptr);
    EXPECT_EQ(page.qt_metacast("SBusDriver"), nullptr);
}

TEST(DeviceOptionWidgetSlots, HaveLoadScanBetweenInitPageAndSlotOk) {
    const std::size_t initPage = slotOf(&DeviceOptionWidgetInterface::initPage);
    EXPECT_EQ(slotOf(&DeviceOptionWidgetInterface::loadScan), initPage + 1);
    EXPECT_EQ(slotOf(&DeviceOptionWidgetInterface::slotOK), initPage + 2);
    EXPECT_EQ(slotOf(&SaiaSerialDeviceOption::loadScan), initPage + 1);
}
