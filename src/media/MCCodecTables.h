#pragma once

#include <QList>
#include <QStringList>

// One classification table: classes of match patterns, the class names
// stored as the track's codec, and the extensions for a lone stream.
struct MCCodecTable
{
    QList<QStringList> codecList;
    QStringList infoList;
    QStringList extList;
};

// The three codec classification tables, in class order. A later class that
// also matches a codec value wins, so the order matters.
namespace MCCodecTables {
MCCodecTable video();
MCCodecTable audio();
MCCodecTable subtitle();
} // namespace MCCodecTables
