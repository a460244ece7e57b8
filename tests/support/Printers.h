#pragma once

#include "Hex.h"

#include <QString>
#include <QStringList>

#include <algorithm>
#include <ostream>

// How a failing test shows Qt's texts: as texts, not as lists of code units. Found by GoogleTest through
// the types' own (global) namespace. What toHex gives is text already and is shown as it is.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    const bool readable =
        std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
    *out << (readable ? bytes : "hex " + toHex(bytes)).toStdString();
}

inline void PrintTo(const QStringList& texts, std::ostream* out) {
    *out << "{\n";
    for (const QString& text : texts)
        *out << "  \"" << text.toStdString() << "\"\n";
    *out << '}';
}

// For the texts that a test adds to its expectations.
inline std::ostream& operator<<(std::ostream& out, const QByteArray& bytes) {
    PrintTo(bytes, &out);
    return out;
}

inline std::ostream& operator<<(std::ostream& out, const QString& text) {
    PrintTo(text, &out);
    return out;
}
