#pragma once

#include "StandInSupport.h"

#include <QHash>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace mp4boxtest {

inline const QString kMp4Box = QStringLiteral("mp4boxUpdated/MP4box");

// Runs the MP4Box stand-in through the resource folder, as Kestrane does.
inline testing::AssertionResult mp4box(const QString &arguments, QString *log = nullptr)
{
    return standin::runs(kMp4Box, arguments, log);
}

inline int videoPackets(const QString &path)
{
    QString output;
    testsupport::run(QStringLiteral("ffprobe -v error -select_streams v -count_packets -show_entries stream=nb_read_packets "
                                    "-of csv=p=0 '%1'").arg(path), &output);
    return output.trimmed().toInt();
}

// True when ffmpeg decodes every video and audio packet without a word.
inline bool decodesCleanly(const QString &path)
{
    QString errors;
    const int status = testsupport::run(QStringLiteral("ffmpeg -nostdin -v error -i '%1' -map 0:v -map 0:a? -f null - 2>&1").arg(path), &errors);
    return status == 0 && errors.trimmed().isEmpty();
}

// A suite whose source media are made once; after every test each of them
// must be as it was made.
class Mp4BoxSuite : public ::testing::Test
{
protected:
    static void makeMedia(const std::function<void(const QString &folder)> &make)
    {
        media = std::make_unique<QTemporaryDir>();
        make(media->path());
        sums.clear();
        for (const QString &name : standin::filesIn(media->path()))
            sums.insert(name, standin::checksum(source(name)));
    }
    static void TearDownTestSuite() { media.reset(); }

    void TearDown() override
    {
        for (auto it = sums.cbegin(); it != sums.cend(); ++it)
            EXPECT_EQ(standin::checksum(source(it.key())), it.value()) << it.key().toStdString() << " was changed";
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

} // namespace mp4boxtest
