#pragma once

#include <QCoreApplication>
#include <QTranslator>

// Wraps every text of one context in angle brackets while it lives, so that a test sees which texts go
// through the translator, and under which context.
class MarkingTranslator : public QTranslator {
public:
    explicit MarkingTranslator(const char* contextToMark) : markedContext(contextToMark) {
        QCoreApplication::installTranslator(this);
    }
    ~MarkingTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* text, const char* disambiguation,
                      int count) const override {
        if (markedContext != context || disambiguation != nullptr || count != -1)
            return {};
        return QLatin1Char('<') + QString::fromUtf8(text) + QLatin1Char('>');
    }

private:
    const QByteArray markedContext;
};
