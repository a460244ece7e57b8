#pragma once

#include <QMap>
#include <QPair>
#include <QString>

// What a translation source (.ts) holds: for each context and source text its translation and the state that
// the translator's tools have given it ("unfinished", "vanished"; none for one that is done).
struct CatalogueEntry {
    QString translation;
    QString state;
};
using CatalogueKey = QPair<QString, QString>;
using Catalogue = QMap<CatalogueKey, CatalogueEntry>;

// Records a test failure, and returns what it has, when the file is missing or is not well formed.
Catalogue readCatalogue(const QString& path);

// The texts that the plug-in's sources give to the translator, as the translator's own tool finds them.
Catalogue textsInTheSources();
