#include "PutCallRecorder.h"
#include "RtuBench.h"

#include <map>
#include <random>
#include <set>
#include <vector>

// Random points, addressed well and badly, beside the simplest RTU that polls and publishes: one that files
// point numbers under the texts of addresses and looks each value up by the text of its element.

using Halvex::PollKind;

namespace {

// At most 40 elements of a media, so that no telegram reaches its limit.
class SimplePolls {
public:
    void addAnalog(const AnalogPoint& point) { analogPoints[point.number] = point; }
    void addStatus(const StatusPoint& point) { statusPoints[point.number] = point; }

    void build() {
        analogElements.clear();
        statusElements.clear();
        analogIndex.clear();
        statusIndex.clear();
        for (auto& [number, point] : analogPoints) {
            split(point.address, point.addressNumber);
            analogElements[point.address].insert(point.addressNumber.toInt());
            analogIndex[point.address + point.addressNumber].push_back(number);
        }
        for (auto& [number, point] : statusPoints) {
            for (const auto& [address, addressNumber] :
                 {std::tie(point.firstAddress, point.firstAddressNumber),
                  std::tie(point.secondAddress, point.secondAddressNumber)})
                if (splitWithoutBlanks(address, addressNumber))
                    statusElements[address].insert(addressNumber.toInt());
            statusIndex[point.firstAddress + point.firstAddressNumber].push_back(number);
        }
    }

    QList<SBusRequestItem> analogTelegrams() const { return telegramsOf(analogElements); }
    QList<SBusRequestItem> statusTelegrams() const { return telegramsOf(statusElements); }

    std::vector<StatusPut> statusPuts(quint32 start, const QString& media, const QList<quint8>& values) {
        std::vector<StatusPut> puts;
        for (int i = 0; i < values.size(); ++i) {
            const QString element = QString::number(start + static_cast<quint32>(i));
            for (const unsigned number : statusIndex[media + element]) {
                if (statusPoints[number].firstAddressNumber == element)
                    puts.push_back({number, values[i], true});
                if (statusPoints[number].secondAddressNumber == element)
                    puts.push_back({number, values[i], false});
            }
        }
        return puts;
    }

    std::vector<AnalogPut> analogPuts(quint32 start, const QString& media, const QList<int>& values) {
        std::vector<AnalogPut> puts;
        for (int i = 0; i < values.size(); ++i)
            for (const unsigned number :
                 analogIndex[media + QString::number(start + static_cast<quint32>(i))])
                puts.push_back({number, static_cast<double>(values[i])});
        return puts;
    }

private:
    using Elements = std::map<QString, std::set<int>>; // by media
    using Index = std::map<QString, std::vector<unsigned>>;

    static bool split(QString& address, QString& number) {
        if (address.size() < 2 || address.size() > 6 || address[0] < QLatin1Char('A') ||
            address[0] > QLatin1Char('Z'))
            return false;
        for (int i = 1; i < address.size(); ++i)
            if (address[i] < QLatin1Char('0') || address[i] > QLatin1Char('9'))
                return false;
        number = address.mid(1);
        address = address.left(1);
        return true;
    }

    static bool splitWithoutBlanks(QString& address, QString& number) {
        QString cleaned = address;
        cleaned.remove(QLatin1Char(' '));
        if (!split(cleaned, number))
            return false;
        address = cleaned;
        return true;
    }

    static QList<SBusRequestItem> telegramsOf(const Elements& elementsByMedia) {
        static const std::map<QString, quint32> commands{{"C", 0}, {"F", 2}, {"I", 3}, {"O", 5}, {"T", 7}};
        QList<SBusRequestItem> telegrams;
        for (const auto& [media, elements] : elementsByMedia) {
            const auto known = commands.find(media);
            const quint32 command = known != commands.end() ? known->second : 6;
            int last = -2;
            for (const int element : elements) {
                if (element == last + 1)
                    ++telegrams.last().count;
                else
                    telegrams << readItem(command, static_cast<quint32>(element), 0);
                last = element;
            }
        }
        return telegrams;
    }

    std::map<unsigned, AnalogPoint> analogPoints;
    std::map<unsigned, StatusPoint> statusPoints;
    Elements analogElements;
    Elements statusElements;
    Index analogIndex;
    Index statusIndex;
};

class RandomPointsTest : public RtuBench {
protected:
    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
    template <std::size_t Count>
    const char* oneOf(const char* const (&texts)[Count]) {
        return texts[below(static_cast<int>(Count))];
    }

    QByteArray address(const char* media) {
        const QByteArray number = QByteArray::number(below(30));
        switch (below(10)) {
        case 0:
            return media + number.rightJustified(4, '0');
        case 1:
            return QByteArray(media) + ' ' + number;
        case 2:
            return oneOf({"", "7", "R", "r7", "RR7", "R-7", "R1x", "R0000007", "X7", "P7", " ", "R7 "});
        default:
            return media + number;
        }
    }

    void addPoints(SimplePolls& simple) {
        for (int i = below(40); i >= 0; --i) {
            const auto number = static_cast<unsigned>(below(200));
            if (below(2) == 0)
                simple.addAnalog(*addAnalog(number, address(oneOf({"R", "C"})), oneOf({"", "7", "07"})));
            else
                simple.addStatus(*addStatus(number, address(oneOf({"I", "O", "F"})),
                                            below(3) == 0 ? address(oneOf({"I", "F"})) : QByteArray()));
        }
    }

    void comparePolls(const SimplePolls& simple) {
        EXPECT_EQ(telegramsOf(PollKind::Analog), simple.analogTelegrams());
        EXPECT_EQ(telegramsOf(PollKind::Status), simple.statusTelegrams());
        EXPECT_EQ(telegramsOf(PollKind::Integrity), simple.statusTelegrams() + simple.analogTelegrams());
    }

    void comparePuts(SimplePolls& simple) {
        const auto start = static_cast<quint32>(below(30));
        QList<quint8> bits;
        QList<int> words;
        for (int i = below(35); i > 0; --i) {
            bits << static_cast<quint8>(below(2));
            words << below(1'000'000) - 500'000;
        }
        PutCallRecorder puts(rtu);
        const QString bitMedia = QString::fromLatin1(oneOf({"I", "O", "F"}));
        rtu->publishStatusValues(start, bitMedia, bits);
        EXPECT_EQ(puts.status, simple.statusPuts(start, bitMedia, bits));
        const QString wordMedia = QString::fromLatin1(oneOf({"R", "C"}));
        rtu->publishAnalogValues(start, wordMedia, words);
        EXPECT_EQ(puts.analog, simple.analogPuts(start, wordMedia, words));
    }

    std::mt19937 random{11};
};

} // namespace

TEST_F(RandomPointsTest, ArePolledAndPutAsByTheTextsOfTheirAddresses) {
    for (int table = 0; table < 200 && !HasFailure(); ++table) {
        rtu->GetPointList()->Clear();
        SimplePolls simple;
        addPoints(simple);
        // The second build finds the records as the first one has split them.
        for (int build = 0; build < 2; ++build) {
            rtu->InitRtu();
            simple.build();
            comparePolls(simple);
            for (int answer = 0; answer < 5; ++answer)
                comparePuts(simple);
        }
        EXPECT_FALSE(HasFailure()) << "table " << table;
    }
}
