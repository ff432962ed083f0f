#include "MCProfileEditor.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace {

const QString kNoMatch = QStringLiteral("no match");
const QString kError = QStringLiteral("error");
// The avcC box type, "avcC" in ASCII.
const QString kAvcCType = QStringLiteral("61766343");
// Files this large are searched only in their first or last part.
constexpr qint64 kWholeFileLimit = 500000000;
const QString kPartialSpan = QStringLiteral("50000000");
// A configuration record is a few dozen bytes; anything much larger is no avcC.
constexpr qint64 kLargestAvcC = 1024;

struct LevelLimit
{
    QStringList devices;
    QStringList levelsAbove;
    QString limit;
};

// "High@L4" as today's mediainfo prints level 4.0 reads "High@L4.0".
QString withDecimalLevel(const QString &profile)
{
    static const QRegularExpression wholeLevel(QStringLiteral("@L(\\d+)$"));
    QString normalized = profile;
    return normalized.replace(wholeLevel, QStringLiteral("@L\\1.0"));
}

qsizetype indexOfSequence(const QStringList &tokens, const QStringList &bytes, qsizetype from = 0)
{
    for (qsizetype i = from; i + bytes.size() <= tokens.size(); ++i) {
        bool same = true;
        for (qsizetype k = 0; k < bytes.size() && same; ++k)
            same = tokens.at(i + k).compare(bytes.at(k), Qt::CaseInsensitive) == 0;
        if (same)
            return i;
    }
    return -1;
}

// The byte columns of an "xxd -g 1" line (the text after its offset).
QStringList byteTokens(const QString &dumpLine, qsizetype count = 256)
{
    QStringList tokens = dumpLine.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    static const QRegularExpression twoHexDigits(QStringLiteral("^[0-9a-fA-F]{2}$"));
    qsizetype n = 0;
    while (n < tokens.size() && n < count && twoHexDigits.match(tokens.at(n)).hasMatch())
        ++n;
    return tokens.mid(0, n);
}

} // namespace

MCProfileEditor::MCProfileEditor()
{
    converterName = QStringLiteral("profileEditor");
    // Constraint byte 00 for High, 40 for Main, c0 for Baseline; level_idc last.
    const QList<std::pair<QString, QString>> profileBytes{{QStringLiteral("High"), QStringLiteral("6400")},
                                                          {QStringLiteral("Main"), QStringLiteral("4d40")},
                                                          {QStringLiteral("Baseline"), QStringLiteral("42c0")}};
    const QList<std::pair<QString, QString>> levelBytes{{QStringLiteral("5.1"), QStringLiteral("33")},
                                                        {QStringLiteral("5.0"), QStringLiteral("32")},
                                                        {QStringLiteral("4.1"), QStringLiteral("29")},
                                                        {QStringLiteral("4.0"), QStringLiteral("28")},
                                                        {QStringLiteral("3.1"), QStringLiteral("1f")}};
    for (const auto &[profile, pbytes] : profileBytes) {
        for (const auto &[level, lbyte] : levelBytes) {
            const QString name = QStringLiteral("%1@L%2").arg(profile, level);
            profilesDictionaryShort.insert(name, pbytes + lbyte);
            profilesDictionaryLong.insert(name, QStringLiteral("67") + pbytes + lbyte);
        }
    }
}

QString MCProfileEditor::targetProfileFor(const QString &device, const QString &profile)
{
    static const QList<LevelLimit> limits{
        {{QStringLiteral("ps3"), QStringLiteral("ipad 3/iphone 4s"), QStringLiteral("xbox")},
         {QStringLiteral("5.1"), QStringLiteral("5.0")},
         QStringLiteral("4.1")},
        {{QStringLiteral("apple tv 3")},
         {QStringLiteral("5.1"), QStringLiteral("5.0"), QStringLiteral("4.1")},
         QStringLiteral("4.0")},
        {{QStringLiteral("apple tv 2"), QStringLiteral("ipad (2 and earlier)"),
          QStringLiteral("iphone 4/ipod touch (4g and later)")},
         {QStringLiteral("5.1"), QStringLiteral("5.0"), QStringLiteral("4.1"), QStringLiteral("4.0")},
         QStringLiteral("3.1")},
    };
    const QString lowerDevice = device.toLower();
    for (const LevelLimit &limit : limits) {
        if (!limit.devices.contains(lowerDevice))
            continue;
        const QString name = profile.section(QLatin1Char('@'), 0, 0);
        const QString level = withDecimalLevel(profile).section(QStringLiteral("@L"), 1);
        static const QStringList knownProfiles{QStringLiteral("High"), QStringLiteral("Main"), QStringLiteral("Baseline")};
        if (!knownProfiles.contains(name) || !limit.levelsAbove.contains(level))
            return {};
        return QStringLiteral("%1@L%2").arg(name, limit.limit);
    }
    return QStringLiteral("no device");
}

QString MCProfileEditor::editProfileLevelForURL(const QUrl &file, const MCSelectionPtr &selection)
{
    if (!selection)
        return kError;
    initializeFor(selection);
    // A level is lowered on Kestrane's own copy, never in the user's file.
    if (selection->sourcePaths().contains(QFileInfo(file.toLocalFile()).absoluteFilePath()))
        return QStringLiteral("source file");
    const QString target = targetProfileFor(selection->theDevice, selection->videoTrackProfile);
    if (target == QStringLiteral("no device"))
        return target;
    if (target.isEmpty())
        return QStringLiteral("no change needed");
    return editHexForURL(file, withDecimalLevel(selection->videoTrackProfile), target);
}

QString MCProfileEditor::editHexForURL(const QUrl &file, const QString &oldProfile, const QString &newProfile)
{
    const qint64 size = QFileInfo(file.toLocalFile()).size();
    const QString span = size < kWholeFileLimit ? QString::number(size) : kPartialSpan;
    const QString extension = QFileInfo(file.toLocalFile()).suffix().toLower();
    const bool inMp4 = extension == QStringLiteral("mp4") || extension == QStringLiteral("m4v");
    const auto &patterns = inMp4 ? profilesDictionaryShort : profilesDictionaryLong;
    const QString oldHex = patterns.value(oldProfile);
    const QString newHex = patterns.value(newProfile);
    if (size <= 0 || oldHex.isEmpty() || newHex.isEmpty())
        return kError;

    if (!inMp4) {
        // A raw stream: the parameter set itself, after its NAL byte.
        for (int attempt = 0; attempt < 3; ++attempt) {
            const QStringList found = findInSpan(file, oldHex, span);
            if (found.constFirst() == kError)
                return kError;
            if (found.size() == 2)
                replaceInURL(file, oldHex, newHex, found);
            if (fileShowsProfile(file, newProfile))
                return QStringLiteral("changed");
        }
        return QStringLiteral("not changed");
    }
    const QStringList found = findInSpan(file, kAvcCType, span);
    if (found.size() != 2)
        return found.constFirst() == kNoMatch ? QStringLiteral("not changed") : kError;
    replaceInAvcCBox(file, oldHex, newHex, found);
    return fileShowsProfile(file, newProfile) ? QStringLiteral("changed") : QStringLiteral("not changed");
}

QStringList MCProfileEditor::findInSpan(const QUrl &file, const QString &hex, const QString &span) const
{
    const QStringList fromStart = findFirstOffsetInURL(file, hex, QStringLiteral("start"), span);
    if (fromStart.constFirst() != kNoMatch)
        return fromStart;
    return findFirstOffsetInURL(file, hex, QStringLiteral("end"), span);
}

QStringList MCProfileEditor::findFirstOffsetInURL(const QUrl &file, const QString &hex, const QString &direction,
                                                  const QString &size) const
{
    const QStringList bytes = makeHexListFrom(hex);
    if (bytes.isEmpty())
        return {kError};
    // Bytes stand separated by blanks in the dump.
    const QString pattern = bytes.join(QStringLiteral(" *"));
    MCOptionList options{QStringLiteral("-c 256 -g 1")};
    const bool fromEnd = direction == QStringLiteral("end");
    if (fromEnd)
        options << QStringLiteral("-s -%1").arg(size);
    options << file;
    if (!fromEnd)
        options << QStringLiteral("| head -c %1").arg(size);
    options << QStringLiteral("| grep -m 1 '%1'").arg(pattern);
    const QString output = doUnixCommand(QStringLiteral("xxd"), options);
    if (output.isEmpty())
        return {kNoMatch};
    const QString separator = output.contains(QStringLiteral(": ")) ? QStringLiteral(": ") : QStringLiteral(":");
    const qsizetype at = output.indexOf(separator);
    if (at < 0 || output.left(at) == QStringLiteral("xxd"))
        return {kError};
    return {output.left(at), output.mid(at + separator.size())};
}

QString MCProfileEditor::replaceInURL(const QUrl &file, const QString &oldHex, const QString &newHex,
                                      const QStringList &offsetArray) const
{
    if (offsetArray.size() != 2)
        return {};
    const QStringList oldBytes = makeHexListFrom(oldHex);
    const qsizetype first = indexOfSequence(byteTokens(offsetArray.at(1)), oldBytes);
    const qint64 base = addHexString(offsetArray.at(0), QString::number(first < 0 ? 0 : first)).toLongLong(nullptr, 16);
    const QStringList window = bytesAt(file, base, 256);
    for (qsizetype j = indexOfSequence(window, oldBytes); j >= 0; j = indexOfSequence(window, oldBytes, j + 1))
        writeBytes(file, makeHexListFrom(newHex), base + j);
    return {};
}

QString MCProfileEditor::replaceInAvcCBox(const QUrl &file, const QString &oldHex, const QString &newHex,
                                          const QStringList &offsetArray) const
{
    if (offsetArray.size() != 2)
        return {};
    const qsizetype type = indexOfSequence(byteTokens(offsetArray.at(1)), makeHexListFrom(kAvcCType));
    const qint64 boxStart = offsetArray.at(0).toLongLong(nullptr, 16) + type - 4;
    if (type < 0 || boxStart < 0)
        return {};
    const QStringList box = bytesAt(file, boxStart, static_cast<int>(kLargestAvcC));
    if (box.size() < 8)
        return {};
    const qint64 boxSize = box.mid(0, 4).join(QString()).toLongLong(nullptr, 16);
    if (boxSize < 8 || boxSize > box.size())
        return {};
    // The record's own profile bytes and those of the parameter sets it
    // holds; nothing outside the box is touched.
    const QStringList inside = box.mid(0, boxSize);
    const QStringList oldBytes = makeHexListFrom(oldHex);
    for (qsizetype j = indexOfSequence(inside, oldBytes, 8); j >= 0; j = indexOfSequence(inside, oldBytes, j + 1))
        writeBytes(file, makeHexListFrom(newHex), boxStart + j);
    return {};
}

QStringList MCProfileEditor::bytesAt(const QUrl &file, qint64 offset, int count) const
{
    const QString dump = doUnixCommand(QStringLiteral("xxd"), {QStringLiteral("-p -l %1 -s %2").arg(count).arg(offset), file});
    QString hex = dump;
    hex.remove(QLatin1Char('\n'));
    static const QRegularExpression onlyHex(QStringLiteral("^[0-9a-fA-F]*$"));
    return onlyHex.match(hex).hasMatch() ? makeHexListFrom(hex) : QStringList();
}

void MCProfileEditor::writeBytes(const QUrl &file, const QStringList &bytes, qint64 offset) const
{
    QString escaped;
    for (const QString &byte : bytes)
        escaped += QStringLiteral("\\x") + byte;
    // GNU dd reads "0x10" as 0 times 10: the place is given in decimal.
    doUnixCommand(QStringLiteral("printf"), {QStringLiteral("\"%1\"").arg(escaped),
                                             QStringLiteral("| dd bs=1 count=%1").arg(bytes.size()),
                                             QStringLiteral("seek=%1").arg(offset),
                                             QStringLiteral("conv=notrunc of=%1 2>/dev/null").arg(singleQuotedFormOf(file.toLocalFile()))});
}

bool MCProfileEditor::fileShowsProfile(const QUrl &file, const QString &profile) const
{
    // Older mediainfo called the line "Codec profile", today's "Format profile".
    const QString lines = doShellScriptFor(urlOfApp(QStringLiteral("mediaInfo")),
                                           {QStringLiteral("-f"), file, QStringLiteral("| grep -E 'Codec profile|Format profile'")});
    return profileLineShows(lines, profile);
}

bool MCProfileEditor::profileLineShows(const QString &line, const QString &profile)
{
    QString pattern = QRegularExpression::escape(profile);
    if (profile.endsWith(QStringLiteral(".0")))
        pattern = QRegularExpression::escape(profile.chopped(2)) + QStringLiteral("(\\.0)?");
    return QRegularExpression(pattern + QStringLiteral("(?![.\\d])")).match(line).hasMatch();
}

QStringList MCProfileEditor::makeHexListFrom(const QString &hex)
{
    QStringList list;
    for (qsizetype i = 0; i + 1 < hex.size(); i += 2)
        list.append(hex.mid(i, 2));
    return list;
}

QString MCProfileEditor::addHexString(const QString &hex, const QString &decimal)
{
    // 64 bits: a patch beyond 4 GiB must land where it belongs.
    return QString::number(hex.toULongLong(nullptr, 16) + decimal.toULongLong(), 16);
}
