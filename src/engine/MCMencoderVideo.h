#pragma once

#include "MCConverter.h"

#include <optional>

// Encodes (or copies) the video of a file with mencoder into an AVI with
// MPEG-4 video, the first audio track alongside and, when asked, one
// subtitle burned in. Two passes run as one step that starts mencoder twice.
class MCMencoderVideo : public MCConverter
{
public:
    MCMencoderVideo();

    MCOptionList optionArray1;
    MCOptionList optionArray2; // empty for a single pass
    QString mencoderVersion;   // "mencoder" or "mencodernew"
    QString subFontPosition = QStringLiteral("4");
    QString subFontScale = QStringLiteral("3");

    // Names, option arrays and encoder choice, without running anything.
    void prepareFor(const MCSelectionPtr &selection);
    QString startConversionFor(const MCSelectionPtr &selection) override;
    QString startPass2();
    QString monitorConversion() override;

    // The percentage of a mencoder "Pos" line (the text between the last
    // "(" and the next ")", blanks kept); nothing for any other line.
    static std::optional<QString> percentFromPosLine(const QString &line);

    // The two passes share their statistics in the job's private folder, so
    // two jobs (or two Kestranes) never read each other's. Shell-quoted.
    QString passLogFilePath() const;

private:
    bool copiesVideo() const;
    // Whether MEncoder reads the source through FFmpeg's demuxers, which
    // number audio streams their own way.
    bool readsThroughLavf() const;
    QString audioIdFor(const MCVideoTrack &audio) const;
    MCOptionList inputOptions() const;
    MCOptionList videoOptions() const;
    MCOptionList audioOptions() const;
    MCOptionList subtitleOptions() const;
    void composeOptionArrays();
    MCVideoTrackPtr firstTrackOfType(const QStringList &types) const;
};
