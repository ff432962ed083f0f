#pragma once

#include "MCSelection.h"
#include "MCVideoFile.h"
#include "MCWords.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class MCMkvTabRules;
class MCMp4TabRules;
class MCPresetsController;
struct MCNotification;

// The state of the main window's settings area and the rules that decide,
// after every change, what may be done with the current file and its
// selected tracks. It keeps the live selection record in step with the track
// table, the option rows and the typed numbers, writes each selected track's
// wanted output, and publishes flags, lists, texts and two warning colours
// for the window to bind. Colours are the names "black" and "red".
//
// Everything the window binds is a property announced by stateChanged().
// The option-row setters only store their row (with the side effects listed
// on each); the window calls updateTabs() after a user action on a row, as
// every action on the settings area ends in it.
class MCSelectionController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString currentTab READ currentTab WRITE setCurrentTab NOTIFY stateChanged)
    Q_PROPERTY(QString statusText MEMBER statusText NOTIFY stateChanged)
    Q_PROPERTY(QString statusColor MEMBER statusColor NOTIFY stateChanged)
    Q_PROPERTY(bool trackTableEnabled MEMBER trackTableEnabled NOTIFY stateChanged)
    Q_PROPERTY(bool canAddTrack MEMBER canAddTrack NOTIFY stateChanged)
    Q_PROPERTY(bool canConvert MEMBER canConvert NOTIFY stateChanged)
    Q_PROPERTY(QString convertRefusalText READ convertRefusalText NOTIFY convertRefusalTextChanged)
    Q_PROPERTY(bool hideTrackTogglesFlag MEMBER hideTrackTogglesFlag NOTIFY stateChanged)
    Q_PROPERTY(bool hideTrackTable MEMBER hideTrackTable NOTIFY stateChanged)
    Q_PROPERTY(bool hideFileTable MEMBER hideFileTable NOTIFY stateChanged)
    Q_PROPERTY(bool hideAudioTrackPopupFlag MEMBER hideAudioTrackPopupFlag NOTIFY stateChanged)
    Q_PROPERTY(bool subtitleSelected MEMBER subtitleSelected NOTIFY stateChanged)
    Q_PROPERTY(bool canMuxSubtitles MEMBER canMuxSubtitles NOTIFY stateChanged)
    Q_PROPERTY(bool canBurnSubtitles MEMBER canBurnSubtitles NOTIFY stateChanged)
    Q_PROPERTY(bool canConvertAudioTrack MEMBER canConvertAudioTrack NOTIFY stateChanged)
    Q_PROPERTY(bool mustConvertVideoTrack MEMBER mustConvertVideoTrack NOTIFY stateChanged)
    Q_PROPERTY(bool mustConvertAudioTrack MEMBER mustConvertAudioTrack NOTIFY stateChanged)
    Q_PROPERTY(bool popupAudioIsSurround MEMBER popupAudioIsSurround NOTIFY stateChanged)
    Q_PROPERTY(bool canAddStereoTrack MEMBER canAddStereoTrack NOTIFY stateChanged)
    Q_PROPERTY(bool userBitRateOK MEMBER userBitRateOK NOTIFY stateChanged)
    Q_PROPERTY(bool userWidthOK MEMBER userWidthOK NOTIFY stateChanged)
    Q_PROPERTY(bool userFPSOK MEMBER userFPSOK NOTIFY stateChanged)
    Q_PROPERTY(bool canEditTracks MEMBER canEditTracks NOTIFY stateChanged)
    Q_PROPERTY(bool canEditPAR MEMBER canEditPAR NOTIFY stateChanged)
    Q_PROPERTY(bool canSplit MEMBER canSplit NOTIFY stateChanged)
    Q_PROPERTY(bool canJoin MEMBER canJoin NOTIFY stateChanged)
    Q_PROPERTY(QString editTrackLabel MEMBER editTrackLabel NOTIFY stateChanged)
    Q_PROPERTY(QStringList deviceList MEMBER deviceList NOTIFY stateChanged)
    Q_PROPERTY(QStringList audioTrackLabels READ audioTrackLabels WRITE setAudioTrackLabels NOTIFY stateChanged)
    Q_PROPERTY(QStringList audioBitRateContent MEMBER audioBitRateContent NOTIFY stateChanged)
    Q_PROPERTY(QStringList fpsList MEMBER fpsList NOTIFY stateChanged)
    Q_PROPERTY(QString aviVideoPassThruColor MEMBER aviVideoPassThruColor NOTIFY stateChanged)
    Q_PROPERTY(QString aviAudioPassThruColor MEMBER aviAudioPassThruColor NOTIFY stateChanged)
    Q_PROPERTY(int addStereoTrackButton READ addStereoTrackButton WRITE setAddStereoTrackButton NOTIFY stateChanged)
    Q_PROPERTY(QString enteredUserVideoBitRate READ enteredUserVideoBitRate WRITE setEnteredUserVideoBitRate
                   NOTIFY stateChanged)
    Q_PROPERTY(QString enteredUserFPS READ enteredUserFPS WRITE setEnteredUserFPS NOTIFY stateChanged)
    Q_PROPERTY(QString enteredUserWidth READ enteredUserWidth WRITE setEnteredUserWidth NOTIFY stateChanged)
    Q_PROPERTY(QString enteredSplitStartTime MEMBER enteredSplitStartTime NOTIFY stateChanged)
    Q_PROPERTY(QString enteredSplitEndTime MEMBER enteredSplitEndTime NOTIFY stateChanged)
    Q_PROPERTY(QString enteredSplitDuration MEMBER enteredSplitDuration NOTIFY stateChanged)
    Q_PROPERTY(QString enteredSplitSize READ enteredSplitSize WRITE setEnteredSplitSize NOTIFY stateChanged)
    Q_PROPERTY(QString enteredSplitNumber READ enteredSplitNumber WRITE setEnteredSplitNumber NOTIFY stateChanged)
    Q_PROPERTY(QString enteredParWidth READ enteredParWidth WRITE setEnteredParWidth NOTIFY stateChanged)
    Q_PROPERTY(QString enteredParHeight READ enteredParHeight WRITE setEnteredParHeight NOTIFY stateChanged)
    Q_PROPERTY(QString mp4Device READ mp4Device WRITE setMp4Device NOTIFY stateChanged)
    Q_PROPERTY(bool appIsUpdatingTabs MEMBER appIsUpdatingTabs NOTIFY stateChanged)
    Q_PROPERTY(int audioTrackPopupIndex READ audioTrackPopupIndex WRITE setAudioTrackPopupIndex NOTIFY stateChanged)
    Q_PROPERTY(int videoMatrixIndex READ videoMatrixIndex WRITE setVideoMatrixIndex NOTIFY stateChanged)
    Q_PROPERTY(int audioMatrixIndex READ audioMatrixIndex WRITE setAudioMatrixIndex NOTIFY stateChanged)
    Q_PROPERTY(int subtitleMatrixIndex READ subtitleMatrixIndex WRITE setSubtitleMatrixIndex NOTIFY stateChanged)
    Q_PROPERTY(int editTrackMatrixIndex READ editTrackMatrixIndex WRITE setEditTrackMatrixIndex NOTIFY stateChanged)
    Q_PROPERTY(int splitTypeMatrixIndex MEMBER splitTypeMatrixIndex NOTIFY stateChanged)

public:
    static inline const QString &tabAvi = MCWords::tabAvi;
    static inline const QString &tabMkv = MCWords::tabMkv;
    static inline const QString &tabMp4 = MCWords::tabMp4;
    static inline const QString &tabEditFiles = MCWords::tabEditFiles;
    static inline const QString &tabEditTracks = MCWords::tabEditTracks;
    // The sender a click on the track table passes: the user overrides the
    // track-selection preset by hand.
    static inline const QString senderTrackTable = QStringLiteral("trackTableView");
    static inline const QString colorBlack = QStringLiteral("black");
    static inline const QString colorRed = QStringLiteral("red");

    // Starts with an empty file and a fresh record; call initialize() next.
    explicit MCSelectionController(QObject *parent = nullptr);

    void initialize();

    // Links. A new file or record replaces the old one (null gives an empty
    // one); a new file is handed to the preset store's presets too.
    const MCSelectionPtr &currentSelection() const { return m_currentSelection; }
    void setCurrentSelection(MCSelectionPtr selection);
    const std::shared_ptr<MCVideoFile> &currentVideoFile() const { return m_currentVideoFile; }
    void setCurrentVideoFile(std::shared_ptr<MCVideoFile> file);
    MCPresetsController *presetsController() const { return m_presetsController; }
    // The "MKV" tab's own rows and rules (owned).
    MCMkvTabRules *mkvTab() const { return m_mkvTab; }
    // The "MP4" tab's: the same rows, and the device (mp4Device) goes into
    // the record.
    MCMp4TabRules *mp4Tab() const { return m_mp4Tab; }
    // The rows of the tab named so ("MKV" or "MP4"), else null.
    MCMkvTabRules *conversionTab(const QString &tab) const;
    void setPresetsController(MCPresetsController *controller) { m_presetsController = controller; }

    // The decision procedure, run after every change.
    Q_INVOKABLE void updateTabs();
    // Re-reads the track selection of the file into the record.
    Q_INVOKABLE void trackTableSelectionChanged(const QString &sender = {});
    // Time field changes, as posted by the split time fields.
    void notificationHub(const MCNotification &notification);

    // What a front end without the window's controls sets directly.
    // The tracks at these 1-based positions of the file, chosen by hand:
    // the track preset no longer applies.
    void chooseTracks(const QList<int> &positions);
    // The split range, HH:MM:SS (the end or the duration gives its length).
    void setSplitStartTime(const QString &text);
    void setSplitEndTime(const QString &text);
    void setSplitDuration(const QString &text);
    // The stereo-copy choice, with the copies rebuilt at once.
    void chooseStereoCopy(bool wanted);

    // Select-all buttons: select every track of the kind, or clear them all
    // when all are selected already.
    Q_INVOKABLE void toggleAllVideo();
    Q_INVOKABLE void toggleAllAudio();
    Q_INVOKABLE void toggleAllSubtitle();

    QString currentTab() const { return m_currentTab; }
    void setCurrentTab(const QString &tab);
    // A click outside the controls: ends editing and cancels the settings preset.
    Q_INVOKABLE void guiClickedTrap();
    Q_INVOKABLE void useNewEncoderCheckBox(bool ticked);
    // Asks the window to clear the track table's row highlight.
    void clearTrackTableHighlight() { emit clearTrackHighlight(); }

    int videoMatrixIndex() const { return m_videoMatrixIndex; }
    void setVideoMatrixIndex(int index);
    int audioMatrixIndex() const { return m_audioMatrixIndex; }
    void setAudioMatrixIndex(int index);
    int subtitleMatrixIndex() const { return m_subtitleMatrixIndex; }
    void setSubtitleMatrixIndex(int index);
    int editTrackMatrixIndex() const { return m_editTrackMatrixIndex; }
    void setEditTrackMatrixIndex(int index);
    QStringList audioTrackLabels() const { return m_audioTrackLabels; }
    void setAudioTrackLabels(const QStringList &labels);
    int audioTrackPopupIndex() const { return m_audioTrackPopupIndex; }
    // Negative stands for "no choice" and, like an index above 100, stores 0.
    void setAudioTrackPopupIndex(int index);
    // Rebuilds the audio-track chooser's labels from the selected audio tracks.
    void upddateAudioTrackPopupFor(const QString &sender = {});
    // The check box also asks the chosen audio track for a stereo copy; the
    // copies are rebuilt on the next turn of the event loop.
    int addStereoTrackButton() const { return m_addStereoTrackButton; }
    void setAddStereoTrackButton(int state);
    QString mp4Device() const { return m_mp4Device; }
    void setMp4Device(const QString &device);

    // Typed numbers; a null text stands for an empty field.
    QString enteredUserVideoBitRate() const { return m_enteredUserVideoBitRate; }
    void setEnteredUserVideoBitRate(const QString &text);
    QString enteredUserFPS() const { return m_enteredUserFPS; }
    void setEnteredUserFPS(const QString &text);
    QString enteredUserWidth() const { return m_enteredUserWidth; }
    void setEnteredUserWidth(const QString &text);
    QString enteredSplitSize() const { return m_enteredSplitSize; }
    void setEnteredSplitSize(const QString &text);
    QString enteredSplitNumber() const { return m_enteredSplitNumber; }
    void setEnteredSplitNumber(const QString &text);
    QString enteredParWidth() const { return m_enteredParWidth; }
    void setEnteredParWidth(const QString &text);
    QString enteredParHeight() const { return m_enteredParHeight; }
    void setEnteredParHeight(const QString &text);

    // Why the "AVI" tab cannot convert what is chosen (canConvert is then
    // false), in words a user can act on; empty when it can, or when no
    // file is loaded.
    QString convertRefusalText() const { return m_convertRefusalText; }

    // The status line above the table ("currentFileTextField") and the table's state.
    QString statusText;
    QString statusColor = colorBlack;
    bool trackTableEnabled = true;

    bool canAddTrack = false;
    bool canConvert = false;
    bool hideTrackTogglesFlag = false;
    bool hideTrackTable = false;
    bool hideFileTable = true;
    bool hideAudioTrackPopupFlag = true;
    bool subtitleSelected = false;
    bool canMuxSubtitles = false;
    bool canBurnSubtitles = false;
    bool canConvertAudioTrack = false; // declared for the window; no rule writes it
    bool mustConvertVideoTrack = false;
    bool mustConvertAudioTrack = false;
    bool popupAudioIsSurround = false;
    bool canAddStereoTrack = false;
    bool userBitRateOK = false;
    bool userWidthOK = false;
    bool userFPSOK = false;
    bool canEditTracks = false;
    bool canEditPAR = false;
    bool canSplit = false;
    bool canJoin = false;
    QString editTrackLabel;
    QStringList deviceList;
    QStringList audioBitRateContent;
    QStringList fpsList;
    QString aviVideoPassThruColor = colorBlack;
    QString aviAudioPassThruColor = colorBlack;
    QString enteredSplitStartTime;
    QString enteredSplitEndTime;
    QString enteredSplitDuration;
    bool appIsUpdatingTabs = false;
    int splitTypeMatrixIndex = 0;

signals:
    void stateChanged();
    void convertRefusalTextChanged(const QString &text);
    void clearTrackHighlight();
    // The window ends text editing (a click outside the controls).
    void endEditingRequested();
    // The typed width changed the picture: the window redraws.
    void redrawRequested();

private:
    MCTrackList fileTracks() const;
    void setStatus(const QString &text, const QString &color);
    void setCanBurnSubtitles(bool can);
    void setConvertRefusalText(const QString &text);
    void updateAviTab();
    // The "AVI" tab's decision; answers why it cannot convert, if it cannot.
    QString decideAviTab();
    void applyAviRowsTo(MCVideoTrack &track);
    void applyAudioRowTo(MCVideoTrack &track);
    // The "MKV" and "MP4" tabs' decision, made by their own rules.
    void updateConversionTab(MCMkvTabRules &tab);
    void toggleAll(const QStringList &lowerTypes, const QString &selectedCount, const QString &fileCount);
    MCVideoTrackPtr chosenAudioTrack(int index) const;
    void typedFieldChanged();

    MCSelectionPtr m_currentSelection;
    std::shared_ptr<MCVideoFile> m_currentVideoFile;
    MCPresetsController *m_presetsController = nullptr;
    MCMkvTabRules *m_mkvTab;
    MCMp4TabRules *m_mp4Tab;
    QString m_currentTab = tabAvi;
    QString m_convertRefusalText;
    bool m_canBurnSubtitlesGiven = false;
    bool m_observingTimeFields = false;
    int m_videoMatrixIndex = 0;
    int m_audioMatrixIndex = 0;
    int m_subtitleMatrixIndex = 0;
    int m_editTrackMatrixIndex = 0;
    QStringList m_audioTrackLabels;
    int m_audioTrackPopupIndex = 0;
    int m_addStereoTrackButton = 0;
    QString m_mp4Device;
    QString m_enteredUserVideoBitRate;
    QString m_enteredUserFPS;
    QString m_enteredUserWidth;
    QString m_enteredSplitSize;
    QString m_enteredSplitNumber;
    QString m_enteredParWidth;
    QString m_enteredParHeight;
};
