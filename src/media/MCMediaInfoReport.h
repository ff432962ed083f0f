#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// Plain functions over the lines of mediainfo's full report.
namespace MCMediaInfoReport {

enum class SectionKind { None, Video, Audio, Text };

// Section headers: "Video" only (Video #1 is not one), "Audio #n" or
// "Audio", "Text #n" or "Text"; letter case ignored where the word stands alone.
SectionKind headerKind(const QString &line);

struct Header
{
    qsizetype line = 0;
    SectionKind kind = SectionKind::None;
};
QList<Header> headers(const QStringList &lines);

// The key is the text before the first ": " (blanks kept), the value the
// text between the first and the second.
struct KeyValue
{
    QString key;
    QString value;
    bool valid = false;
};
KeyValue keyValue(const QString &line);

// The leading integer of a text, as a C program reads it (0 if none).
qint64 leadingInteger(const QString &text);

// Splits a report into lines at every newline, empty lines kept.
QStringList lines(const QString &report);

} // namespace MCMediaInfoReport
