#include "MCJoinPropertyCheck.h"

#include "MCAlertCenter.h"
#include "MCVideoFile.h"

#include <algorithm>

MCJoinPropertyCheck::FileProperties MCJoinPropertyCheck::propertiesOfFile(const QUrl &url)
{
    MCVideoFile file;
    file.initialize();
    file.initializeForURL(url);
    FileProperties properties;
    properties.fps = file.theFPS;
    properties.width = file.theWidth;
    properties.height = file.theHeight;
    properties.trackCounts = {file.theNumberOfVideoTracks, file.theNumberOfAudioTracks, file.theNumberOfSubTracks};
    MCTrackList tracks = file.trackList;
    // Text order, as the ids are compared everywhere else.
    std::stable_sort(tracks.begin(), tracks.end(), [](const MCVideoTrackPtr &a, const MCVideoTrackPtr &b) {
        return a->trackMp4boxID < b->trackMp4boxID;
    });
    for (const MCVideoTrackPtr &track : tracks) {
        properties.trackTypes.append(track->trackType);
        properties.trackCodecs.append(track->trackCodec);
    }
    return properties;
}

QStringList MCJoinPropertyCheck::mismatchedProperties(const QList<FileProperties> &files)
{
    bool frameRate = false;
    bool resolution = false;
    bool count = false;
    bool types = false;
    bool codecs = false;
    for (qsizetype i = 0; i + 1 < files.size(); ++i) {
        const FileProperties &a = files.at(i);
        const FileProperties &b = files.at(i + 1);
        frameRate = frameRate || a.fps != b.fps;
        resolution = resolution || a.width != b.width || a.height != b.height;
        count = count || a.trackCounts != b.trackCounts;
        types = types || a.trackTypes != b.trackTypes;
        codecs = codecs || a.trackCodecs != b.trackCodecs;
    }
    QStringList names;
    if (frameRate)
        names.append(QStringLiteral("Frame Rate"));
    if (resolution)
        names.append(QStringLiteral("Video Resolution"));
    if (count)
        names.append(QStringLiteral("Track Count"));
    if (types)
        names.append(QStringLiteral("Track Types"));
    if (codecs)
        names.append(QStringLiteral("Track Codecs"));
    return names;
}

QStringList MCJoinPropertyCheck::findMismatchedProperetiesFor(const QList<QUrl> &urls)
{
    if (urls.size() < 2)
        return {};
    QList<FileProperties> files;
    files.reserve(urls.size());
    for (const QUrl &url : urls)
        files.append(propertiesOfFile(url));
    return mismatchedProperties(files);
}

void MCJoinPropertyCheck::showJoinWarning(const QStringList &mismatchedNames)
{
    MCAlert alert;
    alert.message = QStringLiteral("The files to be joined appear to have the following properties mismatched, "
                                   "which may cause errors or unexpected results in the join process.");
    alert.informativeText = mismatchedNames.join(QStringLiteral(", "));
    alert.style = MCAlert::Style::Warning;
    alert.timeoutSeconds = joinWarningSeconds;
    MCAlertCenter::instance().present(alert);
}
