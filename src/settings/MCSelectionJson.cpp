#include "MCSelectionJson.h"

#include <QHash>
#include <QJsonArray>

#include <array>
#include <utility>

namespace MCSelectionJson {

namespace {

template <class Record, class Value>
using Field = std::pair<const char *, Value Record::*>;

// The fields of a record by kind, named as in the record itself.
template <class Record>
struct Fields
{
    QList<Field<Record, QString>> texts;
    QList<Field<Record, bool>> flags;
    QList<Field<Record, QUrl>> locations;
};

const Fields<MCVideoTrack> &trackFields()
{
    using T = MCVideoTrack;
    static const Fields<T> fields{
        {{"trackType", &T::trackType}, {"trackIndex", &T::trackIndex}, {"trackCodec", &T::trackCodec},
         {"trackExtension", &T::trackExtension}, {"trackInfo", &T::trackInfo}, {"trackTitle", &T::trackTitle},
         {"trackLanguage", &T::trackLanguage}, {"trackBitRate", &T::trackBitRate},
         {"trackNumberOfChannels", &T::trackNumberOfChannels}, {"trackMp4boxID", &T::trackMp4boxID},
         {"trackMkvmergeID", &T::trackMkvmergeID}, {"trackFfmpegID", &T::trackFfmpegID},
         {"trackMencoderID", &T::trackMencoderID}, {"selectedAudioTrackIndex", &T::selectedAudioTrackIndex},
         {"trackFilePath", &T::trackFilePath}, {"trackFileName", &T::trackFileName},
         {"trackFileExtension", &T::trackFileExtension}, {"trackPathToFileFolder", &T::trackPathToFileFolder},
         {"userCodec", &T::userCodec}, {"userBitRate", &T::userBitRate},
         {"userNumberOfChannels", &T::userNumberOfChannels}, {"muxingTrackType", &T::muxingTrackType},
         {"muxingTrackLanguage", &T::muxingTrackLanguage}, {"muxingTrackTitle", &T::muxingTrackTitle},
         {"muxingTrackMp4boxID", &T::muxingTrackMp4boxID}, {"muxingTrackMencoderID", &T::muxingTrackMencoderID},
         {"muxingTrackCodec", &T::muxingTrackCodec}, {"muxingTrackExtension", &T::muxingTrackExtension},
         {"muxingTrackFileExtension", &T::muxingTrackFileExtension}},
        {{"trackDefaultFlag", &T::trackDefaultFlag}, {"trackForcedFlag", &T::trackForcedFlag},
         {"trackSelected", &T::trackSelected}, {"isStereoCopyFlag", &T::isStereoCopyFlag},
         {"createStereoCopyFlag", &T::createStereoCopyFlag}, {"externalTrackFlag", &T::externalTrackFlag},
         {"convertSubFlag", &T::convertSubFlag}, {"wasReEncoded", &T::wasReEncoded}},
        {{"trackFileURL", &T::trackFileURL}, {"trackURLToFileFolder", &T::trackURLToFileFolder},
         {"convertedFileURL", &T::convertedFileURL}, {"muxingTrackFileURL", &T::muxingTrackFileURL}}};
    return fields;
}

const Fields<MCSelection> &selectionFields()
{
    using S = MCSelection;
    static const Fields<S> fields{
        {{"mp4Muxer", &S::mp4Muxer}, {"currentEncoder", &S::currentEncoder},
         {"videoTrackFilePath", &S::videoTrackFilePath}, {"videoTrackFileName", &S::videoTrackFileName},
         {"videoTrackFileShortName", &S::videoTrackFileShortName},
         {"videoTrackFileExtension", &S::videoTrackFileExtension}, {"videoTrackCodec", &S::videoTrackCodec},
         {"videoTrackFPS", &S::videoTrackFPS}, {"videoTrackWidth", &S::videoTrackWidth},
         {"videoTrackHeight", &S::videoTrackHeight}, {"videoTrackBitRate", &S::videoTrackBitRate},
         {"videoTrackPAR", &S::videoTrackPAR}, {"videoTrackProfile", &S::videoTrackProfile}, {"jobType", &S::jobType},
         {"jobStatus", &S::jobStatus}, {"theDevice", &S::theDevice}, {"userVideoBitRate", &S::userVideoBitRate},
         {"userAudioBitRate", &S::userAudioBitRate}, {"userFPS", &S::userFPS}, {"userHeight", &S::userHeight},
         {"userWidth", &S::userWidth}, {"userPassNumber", &S::userPassNumber}, {"userParWidth", &S::userParWidth},
         {"userParHeight", &S::userParHeight}, {"splitType", &S::splitType}, {"splitSize", &S::splitSize},
         {"splitNumber", &S::splitNumber}, {"splitStartTimeText", &S::splitStartTimeText},
         {"splitEndTimeText", &S::splitEndTimeText}, {"splitStartTimeSeconds", &S::splitStartTimeSeconds},
         {"splitEndTimeSeconds", &S::splitEndTimeSeconds}, {"splitDurationText", &S::splitDurationText},
         {"splitDurationSeconds", &S::splitDurationSeconds}, {"vidCount", &S::vidCount}, {"audCount", &S::audCount},
         {"subCount", &S::subCount}},
        {{"forceLegacyEncoder", &S::forceLegacyEncoder}, {"headerRemovalFlag", &S::headerRemovalFlag}},
        {{"videoTrackFileURL", &S::videoTrackFileURL}}};
    return fields;
}

template <class Record>
QJsonObject write(const Record &record, const Fields<Record> &fields)
{
    QJsonObject object;
    for (const auto &[name, member] : fields.texts)
        object.insert(QLatin1String(name), record.*member);
    for (const auto &[name, member] : fields.flags)
        object.insert(QLatin1String(name), record.*member);
    for (const auto &[name, member] : fields.locations)
        object.insert(QLatin1String(name), (record.*member).toString());
    return object;
}

template <class Record>
void read(const QJsonObject &object, Record &record, const Fields<Record> &fields)
{
    for (const auto &[name, member] : fields.texts) {
        const QJsonValue value = object.value(QLatin1String(name));
        if (value.isString())
            record.*member = value.toString();
    }
    for (const auto &[name, member] : fields.flags) {
        const QJsonValue value = object.value(QLatin1String(name));
        if (value.isBool())
            record.*member = value.toBool();
    }
    for (const auto &[name, member] : fields.locations) {
        const QJsonValue value = object.value(QLatin1String(name));
        if (value.isString())
            record.*member = QUrl(value.toString());
    }
}

const std::array<std::pair<const char *, MCTrackList MCSelection::*>, 3> kTrackLists{{
    {"trackList", &MCSelection::trackList},
    {"addedAudioTrackList", &MCSelection::addedAudioTrackList},
    {"keepTracksList", &MCSelection::keepTracksList},
}};

} // namespace

QJsonObject toJson(const MCSelection &selection)
{
    QJsonObject object = write(selection, selectionFields());
    QJsonArray files;
    for (const QUrl &url : selection.editFilesURLsList)
        files.append(url.toString());
    object.insert(QStringLiteral("editFilesURLsList"), files);
    // Every track once; the lists name them by position.
    QHash<const MCVideoTrack *, int> numbers;
    QJsonArray tracks;
    for (const auto &[name, list] : kTrackLists) {
        QJsonArray positions;
        for (const MCVideoTrackPtr &track : selection.*list) {
            if (!track)
                continue;
            if (!numbers.contains(track.get())) {
                numbers.insert(track.get(), static_cast<int>(tracks.size()));
                tracks.append(write(*track, trackFields()));
            }
            positions.append(numbers.value(track.get()));
        }
        object.insert(QLatin1String(name), positions);
    }
    object.insert(QStringLiteral("tracks"), tracks);
    return object;
}

MCSelectionPtr fromJson(const QJsonObject &object)
{
    auto selection = std::make_shared<MCSelection>();
    selection->initialize();
    read(object, *selection, selectionFields());
    for (const QJsonValue &url : object.value(QStringLiteral("editFilesURLsList")).toArray())
        selection->editFilesURLsList << QUrl(url.toString());
    QList<MCVideoTrackPtr> tracks;
    for (const QJsonValue &value : object.value(QStringLiteral("tracks")).toArray()) {
        auto track = std::make_shared<MCVideoTrack>();
        read(value.toObject(), *track, trackFields());
        tracks << track;
    }
    for (const auto &[name, list] : kTrackLists) {
        for (const QJsonValue &position : object.value(QLatin1String(name)).toArray()) {
            const int number = position.toInt(-1);
            if (number >= 0 && number < tracks.size())
                (selection.get()->*list) << tracks.at(number);
        }
    }
    return selection;
}

} // namespace MCSelectionJson
