#pragma once

#include "PutCallRecorder.h"
#include "RtuBench.h"

#include <cmath>

// An RTU that is handed values as the engine does, and what it puts then.
class PublishingTest : public RtuBench {
protected:
    void publishStatus(quint32 start, const char* media, const QList<quint8>& values) {
        rtu->publishStatusValues(start, QString::fromLatin1(media), values);
    }
    // Each value as the eight hex digits of its word.
    void publishAnalog(quint32 start, const char* media, const QList<quint32>& words) {
        QList<int> values;
        for (quint32 word : words)
            values << static_cast<int>(word);
        rtu->publishAnalogValues(start, QString::fromLatin1(media), values);
    }
    // What a point of `type` at element 1 of `media` is given for `word`.
    double converted(const char* media, quint32 word, Halvex::PointDataType type) {
        rtu->GetPointList()->Clear();
        addAnalog(1, qPrintable(QString::fromLatin1(media) + QLatin1Char('1')), "", type);
        rtu->InitRtu();
        PutCallRecorder puts(rtu);
        publishAnalog(1, media, {word});
        EXPECT_EQ(puts.analog.size(), 1u);
        return puts.analog.empty() ? std::nan("") : puts.analog[0].value;
    }
    double convertedFloat(quint32 word) { return converted("R", word, Halvex::PointDataType::Float); }
};
