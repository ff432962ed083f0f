#pragma once

#include <QFrame>

class MCPresetsController;
class QComboBox;
class QFormLayout;
class QLabel;

// The small floating editor of one audio or subtitle filter: which tracks
// it picks (none, a track number, or tracks with a language, codec and,
// for audio, channel layout). It shows the filter the preset store loaded
// for the button under the pointer, takes input only while that button is
// in edit mode, and takes its height from the store.
class MCFilterPanel : public QFrame
{
    Q_OBJECT
public:
    MCFilterPanel(MCPresetsController *presets, bool audio, QWidget *editor);

    bool isAudio() const { return m_audio; }
    int panelHeight() const;

    QComboBox *trackChoicePopUp() const { return m_choice; }
    QComboBox *trackNumberPopUp() const { return m_number; }
    QComboBox *languagePopUp() const { return m_language; }
    QComboBox *codecPopUp() const { return m_codec; }
    QComboBox *channelsPopUp() const { return m_channels; }

    // Copies the filter being shown, its lists and its height from the store.
    void refresh();

private:
    QComboBox *addPopUp(const QString &label);
    void bindPopUp(QComboBox *popUp, QString MCPresetsController::*field);

    MCPresetsController *m_presets;
    bool m_audio;
    bool m_refreshing = false;
    QFormLayout *m_form;
    QComboBox *m_choice;
    QComboBox *m_number;
    QComboBox *m_language;
    QComboBox *m_codec;
    QComboBox *m_channels = nullptr;
    QLabel *m_explanation;
};
