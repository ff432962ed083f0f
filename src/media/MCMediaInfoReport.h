#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

// Plain functions over the lines of mediainfo's full report.
namespace MCMediaInfoReport {

enum class SectionKind { None, Video, Audio, Text };

// Track section headers: "Video" only (Video #1 is not one), "Audio #n" or
// "Audio", "Text #n" or "Text"; letter case ignored where the word stands alone.
SectionKind headerKind(QStringView line);

// Any section title, a track's or not ("General", "Menu", "Video #2"): a
// line of its own without a key.
bool isSectionTitle(QStringView line);

struct Header
{
    qsizetype line = 0;
    SectionKind kind = SectionKind::None;
};
QList<Header> headers(const QStringList &lines);

// The key is the text before the first ": " (blanks kept), the value the
// text between the first and the second. Views into the line.
struct KeyValue
{
    QStringView key;
    QStringView value;
    bool valid = false;
};
KeyValue keyValue(QStringView line);

// The leading integer of a text, as a C program reads it (0 if none).
qint64 leadingInteger(QStringView text);

// Splits a report into lines at every newline, empty lines kept.
QStringList lines(const QString &report);

} // namespace MCMediaInfoReport
