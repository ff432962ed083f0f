#include "MCPresetSelections.h"

#include "MCSelectionController.h"
#include "MCTextNumbers.h"

#include <algorithm>
#include <functional>

namespace {

const QString kFirstTrack = QStringLiteral("First Track");
const QString kAllTracks = QStringLiteral("All Tracks");
const QString kByLanguage = QStringLiteral("By Language");
const QString kEnglish = QStringLiteral("English");

using TrackTest = std::function<bool(const MCVideoTrack &)>;

QString textOf(const QVariantMap &map, const QString &key)
{
    return map.value(key).toString();
}

// The filter lists as stored: dictionaries only, anything else is dropped.
QVariantList filterListFrom(const QVariant &value)
{
    QVariantList filters;
    if (value.metaType().id() != QMetaType::QVariantList)
        return filters;
    const QVariantList stored = value.toList();
    for (const QVariant &entry : stored) {
        if (entry.metaType().id() == QMetaType::QVariantMap)
            filters.append(entry);
    }
    return filters;
}

// The conditions of a "Tracks w/ Properties ..." filter, all of which must
// hold. Channel counts compare as texts against "2", as they always have.
QList<TrackTest> propertyConditions(const QVariantMap &filter, bool withChannels)
{
    using P = MCPresetSelections;
    QList<TrackTest> conditions;
    const QString language = textOf(filter, P::keyLanguage);
    const QString codec = textOf(filter, P::keyCodec);
    const QString channels = textOf(filter, P::keyChannels);
    if (language != P::anyLanguage)
        conditions.append([language](const MCVideoTrack &t) { return t.trackLanguage == language; });
    if (codec != P::anyCodec)
        conditions.append([codec](const MCVideoTrack &t) { return t.trackCodec == codec; });
    if (withChannels && channels == P::stereoOnly)
        conditions.append([](const MCVideoTrack &t) {
            return QString::compare(t.trackNumberOfChannels, QLatin1String("2")) <= 0;
        });
    if (withChannels && channels == P::surroundOnly)
        conditions.append([](const MCVideoTrack &t) {
            return QString::compare(t.trackNumberOfChannels, QLatin1String("2")) > 0;
        });
    return conditions;
}

// Walks one kind's filters over its candidate tracks. In prioritized mode the
// first filter that finds a track ends the walk; "All" never ends it.
void walkFilters(const QVariantList &filters, const MCTrackList &candidates, const QString &mode,
                 const QString &numberChoice, bool withChannels)
{
    using P = MCPresetSelections;
    const bool prioritized = mode == P::modePrioritized;
    for (const QVariant &entry : filters) {
        const QVariantMap filter = entry.toMap();
        const QString choice = textOf(filter, P::keyTrackChoice);
        if (choice == P::choiceAll) {
            for (const MCVideoTrackPtr &track : candidates)
                track->trackSelected = true;
        } else if (choice == numberChoice) {
            const long long n = MCTextNumbers::integerValue(textOf(filter, P::keyTrackNumber));
            if (n < 1 || n > candidates.size())
                continue;
            candidates.at(n - 1)->trackSelected = true;
            if (prioritized)
                return;
        } else if (choice == P::choiceProperties) {
            const bool anyAll = textOf(filter, P::keyLanguage) == P::anyLanguage
                                && textOf(filter, P::keyCodec) == P::anyCodec
                                && (!withChannels || textOf(filter, P::keyChannels) == P::anyType);
            if (anyAll) {
                if (candidates.isEmpty())
                    continue;
                candidates.first()->trackSelected = true;
                return;
            }
            const QList<TrackTest> conditions = propertyConditions(filter, withChannels);
            if (conditions.isEmpty())
                continue;
            for (const MCVideoTrackPtr &track : candidates) {
                const bool matches = std::all_of(conditions.cbegin(), conditions.cend(),
                                                 [&](const TrackTest &test) { return test(*track); });
                if (matches && prioritized) {
                    track->trackSelected = true;
                    return;
                }
            }
        }
    }
}

MCTrackList tracksOfType(const MCTrackList &tracks, const QStringList &types)
{
    MCTrackList found;
    for (const MCVideoTrackPtr &track : tracks) {
        if (types.contains(track->trackType))
            found.append(track);
    }
    return found;
}

} // namespace

MCPresetSelections::MCPresetSelections(std::shared_ptr<MCVideoFile> file, MCSelectionController *controller)
    : pSelectedVideoTrack(kFirstTrack)
    , pSelectedAudioLanguage(kEnglish)
    , pSelectedSubtitleLanguage(kEnglish)
    , currentVideoFile(std::move(file))
    , selectionController(controller)
    , pAudioFilterMode(QLatin1String(""))
    , pSubtitleFilterMode(QLatin1String(""))
    , m_pSelectedAudioTrack(kFirstTrack)
    , m_pSelectedSubtitleTrack(kFirstTrack)
{
    pName = QLatin1String("");
}

void MCPresetSelections::setPSelectedAudioTrack(const QString &choice)
{
    m_pSelectedAudioTrack = choice;
    pAudioIsByLanguage = choice == kByLanguage;
}

void MCPresetSelections::setPSelectedSubtitleTrack(const QString &choice)
{
    m_pSelectedSubtitleTrack = choice;
    pSubtitleIsByLanguage = choice == kByLanguage;
}

QVariantMap MCPresetSelections::audioFilter(const QString &choice, const QString &number, const QString &language,
                                            const QString &codec, const QString &channels)
{
    return {{keyTrackChoice, choice}, {keyTrackNumber, number}, {keyLanguage, language},
            {keyCodec, codec},        {keyChannels, channels}};
}

QVariantMap MCPresetSelections::subtitleFilter(const QString &choice, const QString &number, const QString &language,
                                               const QString &codec)
{
    return {{keyTrackChoice, choice}, {keyTrackNumber, number}, {keyLanguage, language}, {keyCodec, codec}};
}

void MCPresetSelections::initializeAsByID()
{
    const QString empty = QLatin1String("");
    pName = QStringLiteral("Manual");
    pSelectedVideoTrack = QStringLiteral("0");
    setPSelectedAudioTrack(QStringLiteral("0"));
    setPSelectedSubtitleTrack(QStringLiteral("0"));
    isEditable = false;
    pAudioFilterArray = {audioFilter(choiceNone, QStringLiteral("1"), empty, empty, empty)};
    QVariantMap subtitles = subtitleFilter(choiceNone, QStringLiteral("1"), anyLanguage, anyCodec);
    subtitles.insert(keyChannels, anyType);
    pSubtitleFilterArray = {subtitles};
}

void MCPresetSelections::initializeAsFirst()
{
    const QString empty = QLatin1String("");
    pName = kFirstTrack;
    pSelectedVideoTrack = kFirstTrack;
    isEditable = false;
    pAudioFilterArray = {audioFilter(choiceAudioNumber, QStringLiteral("1"), empty, empty, empty)};
    pSubtitleFilterArray = {subtitleFilter(choiceSubtitleNumber, QStringLiteral("1"), anyLanguage, anyCodec)};
}

void MCPresetSelections::initializeAsAll()
{
    const QString empty = QLatin1String("");
    pName = kAllTracks;
    pSelectedVideoTrack = kFirstTrack;
    isEditable = false;
    pAudioFilterArray = {audioFilter(choiceAll, empty, empty, empty, empty)};
    pSubtitleFilterArray = {subtitleFilter(choiceAll, QStringLiteral("1"), anyLanguage, anyCodec)};
}

void MCPresetSelections::initializeAsNewUserPreset()
{
    pName = QStringLiteral("User Preset");
    pSelectedVideoTrack = kFirstTrack;
    setPSelectedAudioTrack(kFirstTrack);
    pSelectedAudioLanguage = kEnglish;
    setPSelectedSubtitleTrack(choiceNone);
    pSelectedSubtitleLanguage = kEnglish;
    useFirstIfNoAudioLanguageMatch = useFirstIfNoSubtitleLanguageMatch = true;
    isEditable = true;
    pAudioFilterArray = {audioFilter(choiceAudioNumber, QStringLiteral("1"), anyLanguage, anyCodec, anyType)};
    pAudioFilterMode = modeApplyAll;
    pSubtitleFilterArray = {subtitleFilter(choiceNone, QStringLiteral("1"), anyLanguage, anyCodec)};
    pSubtitleFilterMode = modeApplyAll;
}

void MCPresetSelections::addDictionaryToAudioFilterArray()
{
    pAudioFilterArray.append(audioFilter(choiceAudioNumber, QStringLiteral("1"), anyLanguage, anyCodec, anyType));
}

void MCPresetSelections::addDictionaryToSubtitleFilterArray()
{
    pSubtitleFilterArray.append(subtitleFilter(choiceSubtitleNumber, QStringLiteral("1"), anyLanguage, anyCodec));
}

QVariantMap MCPresetSelections::makeRecord() const
{
    return {
        {QStringLiteral("pName"), pName},
        {QStringLiteral("pSelectedVideoTrack"), pSelectedVideoTrack},
        {QStringLiteral("pSelectedAudioTrack"), m_pSelectedAudioTrack},
        {QStringLiteral("pAudioIsByLanguage"), pAudioIsByLanguage},
        {QStringLiteral("pSelectedAudioLanguage"), pSelectedAudioLanguage},
        {QStringLiteral("pSelectedSubtitleTrack"), m_pSelectedSubtitleTrack},
        {QStringLiteral("pSubtitleIsByLanguage"), pSubtitleIsByLanguage},
        {QStringLiteral("pSelectedSubtitleLanguage"), pSelectedSubtitleLanguage},
        {QStringLiteral("useFirstIfNoAudioLanguageMatch"), useFirstIfNoAudioLanguageMatch},
        {QStringLiteral("useFirstIfNoSubtitleLanguageMatch"), useFirstIfNoSubtitleLanguageMatch},
        {QStringLiteral("isEditable"), isEditable},
        {QStringLiteral("pAudioFilterMode"), pAudioFilterMode},
        {QStringLiteral("pAudioFilterArray"), pAudioFilterArray},
        {QStringLiteral("pSubtitleFilterMode"), pSubtitleFilterMode},
        {QStringLiteral("pSubtitleFilterArray"), pSubtitleFilterArray},
    };
}

void MCPresetSelections::initFromRecord(const QVariantMap &record)
{
    // A key the record lacks leaves the field as it was.
    const auto readText = [&record](const char *key, QString &field) {
        const auto found = record.constFind(QLatin1String(key));
        if (found != record.cend())
            field = found->toString();
    };
    const auto readFlag = [&record](const char *key, bool &field) {
        const auto found = record.constFind(QLatin1String(key));
        if (found != record.cend())
            field = found->toBool();
    };
    readText("pName", pName);
    readText("pSelectedVideoTrack", pSelectedVideoTrack);
    readText("pSelectedAudioTrack", m_pSelectedAudioTrack);
    readFlag("pAudioIsByLanguage", pAudioIsByLanguage);
    readText("pSelectedAudioLanguage", pSelectedAudioLanguage);
    readText("pSelectedSubtitleTrack", m_pSelectedSubtitleTrack);
    readFlag("pSubtitleIsByLanguage", pSubtitleIsByLanguage);
    readText("pSelectedSubtitleLanguage", pSelectedSubtitleLanguage);
    readFlag("useFirstIfNoAudioLanguageMatch", useFirstIfNoAudioLanguageMatch);
    readFlag("useFirstIfNoSubtitleLanguageMatch", useFirstIfNoSubtitleLanguageMatch);
    readFlag("isEditable", isEditable);
    pAudioFilterArray = filterListFrom(record.value(QStringLiteral("pAudioFilterArray")));
    pSubtitleFilterArray = filterListFrom(record.value(QStringLiteral("pSubtitleFilterArray")));

    const QString one = QStringLiteral("1");
    if (record.contains(QStringLiteral("pAudioFilterMode"))) {
        readText("pAudioFilterMode", pAudioFilterMode);
    } else {
        // Written before filters existed: one filter from the older choice.
        pAudioFilterMode = modeApplyAll;
        if (pAudioFilterArray.isEmpty()) {
            QVariantMap filter = audioFilter(choiceAudioNumber, one, anyLanguage, anyCodec, anyType);
            if (m_pSelectedAudioTrack == kAllTracks)
                filter = audioFilter(choiceAll, one, anyLanguage, anyCodec, anyType);
            else if (m_pSelectedAudioTrack == kByLanguage)
                filter = audioFilter(choiceProperties, one, pSelectedAudioLanguage, anyCodec, anyType);
            pAudioFilterArray = {filter};
        }
    }
    if (record.contains(QStringLiteral("pSubtitleFilterMode"))) {
        readText("pSubtitleFilterMode", pSubtitleFilterMode);
    } else {
        pSubtitleFilterMode = modeApplyAll;
        if (pSubtitleFilterArray.isEmpty()) {
            QVariantMap filter = subtitleFilter(choiceSubtitleNumber, one, anyLanguage, anyCodec);
            if (m_pSelectedSubtitleTrack == kAllTracks)
                filter = subtitleFilter(choiceAll, one, anyLanguage, anyCodec);
            else if (m_pSelectedSubtitleTrack == kByLanguage)
                // Old records kept one language in practice: the audio one.
                filter = subtitleFilter(choiceProperties, one, pSelectedAudioLanguage, anyCodec);
            else if (m_pSelectedSubtitleTrack == choiceNone)
                filter = subtitleFilter(choiceNone, one, anyLanguage, anyCodec);
            pSubtitleFilterArray = {filter};
        }
    }
}

void MCPresetSelections::makeSelections()
{
    // Every application works in prioritized mode, whatever the preset holds.
    pAudioFilterMode = modePrioritized;
    pSubtitleFilterMode = modePrioritized;
    if (!currentVideoFile || currentVideoFile->theFileName == QLatin1String("none"))
        return;
    const MCTrackList tracks = currentVideoFile->trackList;
    for (const MCVideoTrackPtr &track : tracks)
        track->trackSelected = false;
    if (pSelectedVideoTrack == kFirstTrack && !tracks.isEmpty()
        && tracks.first()->trackType == QLatin1String("Video"))
        tracks.first()->trackSelected = true;

    walkFilters(pAudioFilterArray, tracksOfType(tracks, {QStringLiteral("Audio")}), pAudioFilterMode,
                choiceAudioNumber, true);
    walkFilters(pSubtitleFilterArray,
                tracksOfType(tracks, {QStringLiteral("Subtitle"), QStringLiteral("External Subtitle")}),
                pSubtitleFilterMode, choiceSubtitleNumber, false);
    if (selectionController)
        selectionController->trackTableSelectionChanged(QStringLiteral("from makeSelections"));
}
