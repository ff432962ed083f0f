#pragma once

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

// Runs the tool stand-ins through the resource folder, as Kestrane does.
namespace standin {

inline const QString kMp4Box = QStringLiteral("mp4boxUpdated/MP4box");

inline QString toolPath(const QString &name)
{
    return qEnvironmentVariable("KESTRANE_RESOURCES") + QLatin1Char('/') + name;
}

// `arguments` is written as in Kestrane's command lines (file names quoted);
// a failure shows what the tool wrote.
inline testing::AssertionResult runs(const QString &name, const QString &arguments, QString *output = nullptr)
{
    QString log;
    const bool ok = testsupport::run(QStringLiteral("\"%1\" %2").arg(toolPath(name), arguments), &log) == 0;
    if (output)
        *output = log;
    return ok ? testing::AssertionSuccess() : testing::AssertionFailure() << log.toStdString();
}

inline testing::AssertionResult mp4box(const QString &arguments, QString *log = nullptr)
{
    return runs(kMp4Box, arguments, log);
}

inline QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

inline double seconds(const QString &path, const QString &kind)
{
    return testsupport::mediaInfo(path, kind, QStringLiteral("Duration")).toDouble() / 1000.0;
}

inline int integer(const QString &path, const QString &kind, const QString &parameter)
{
    return testsupport::mediaInfo(path, kind, parameter).toInt();
}

// One mediainfo parameter of every track of a kind, "|" after each.
inline QString everyTrack(const QString &path, const QString &kind, const QString &parameter)
{
    QString output;
    testsupport::run(QStringLiteral("mediainfo --Inform='%1;%%2%|' '%3'").arg(kind, parameter, path), &output);
    return output.trimmed();
}

// Several mediainfo parameters of the first track of a kind, "/" between them.
inline QString fields(const QString &path, const QString &kind, const QStringList &parameters)
{
    return everyTrack(path, kind, parameters.join(QStringLiteral("%/%"))).section(QLatin1Char('|'), 0, 0);
}

// The first line ffprobe prints for the video stream of `path` with `query`.
inline QString probe(const QString &path, const QString &query)
{
    QString output;
    testsupport::run(QStringLiteral("ffprobe -v error -select_streams v %1 -of csv=p=0 '%2'").arg(query, path), &output);
    return output.section(QLatin1Char('\n'), 0, 0).trimmed();
}

// ffprobe's flags of the first video packet ("K_" for a key frame).
inline QString firstVideoFlags(const QString &path)
{
    return probe(path, QStringLiteral("-read_intervals %+#1 -show_entries packet=flags"));
}

inline int videoPackets(const QString &path)
{
    return probe(path, QStringLiteral("-count_packets -show_entries stream=nb_read_packets")).toInt();
}

// True when ffmpeg decodes every video and audio packet without a word.
inline bool decodesCleanly(const QString &path)
{
    QString errors;
    const int status = testsupport::run(QStringLiteral("ffmpeg -nostdin -v error -i '%1' -map 0:v -map 0:a? -f null - 2>&1").arg(path), &errors);
    return status == 0 && errors.trimmed().isEmpty();
}

// Mean loudness in dB of one channel (FL, FC, ...) of a file's first audio.
inline double channelLoudness(const QString &path, const QString &channel)
{
    QString output;
    testsupport::run(QStringLiteral("ffmpeg -hide_banner -nostdin -i '%1' -map 0:a:0 -af 'pan=mono|c0=%2,volumedetect' "
                                    "-f null - 2>&1 | grep mean_volume").arg(path, channel), &output);
    return output.section(QStringLiteral("mean_volume:"), 1).section(QLatin1Char('d'), 0, 0).trimmed().toDouble();
}

inline QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// A suite whose source media are made once; after every test each of them
// must be as it was made. Tests write into their own folder, `out`.
class MediaSuite : public ::testing::Test
{
protected:
    // ffmpeg's output for `arguments` (DIR standing for the media folder), or
    // a file of `text` when there are no arguments.
    struct Medium
    {
        QString name;
        QString arguments;
        QByteArray text = {};
    };

    static void makeMedia(const QList<Medium> &list)
    {
        media = std::make_unique<QTemporaryDir>();
        for (const Medium &medium : list) {
            if (medium.arguments.isEmpty())
                write(source(medium.name), medium.text);
            else
                testsupport::ffmpeg(media->path(), medium.name, QString(medium.arguments).replace(QStringLiteral("DIR"), media->path()));
        }
        sums.clear();
        for (const QString &name : filesIn(media->path()))
            sums.insert(name, testsupport::checksum(source(name)));
    }
    static void TearDownTestSuite() { media.reset(); }

    void TearDown() override
    {
        for (auto it = sums.cbegin(); it != sums.cend(); ++it)
            EXPECT_EQ(testsupport::checksum(source(it.key())), it.value()) << it.key().toStdString() << " was changed";
    }

    static QString source(const QString &name) { return media->path() + QLatin1Char('/') + name; }
    QString target(const QString &name) const { return out.path() + QLatin1Char('/') + name; }
    // A copy in the test's own folder, for commands that write beside their file.
    QString copied(const QString &name, const QString &as = {}) const
    {
        const QString copy = target(as.isEmpty() ? name : as);
        QFile::copy(source(name), copy);
        return copy;
    }

    QTemporaryDir out;

private:
    static inline std::unique_ptr<QTemporaryDir> media;
    static inline QHash<QString, QByteArray> sums;
};

} // namespace standin
