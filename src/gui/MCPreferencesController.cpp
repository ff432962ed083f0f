#include "MCPreferencesController.h"

#include "MCFileChooser.h"
#include "MCNumberField.h"
#include "MCPreferences.h"
#include "MCToolTipBinder.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLineEdit *numberField(QWidget *parent)
{
    auto *field = new QLineEdit(parent);
    field->setMaximumWidth(60);
    new MCNumberField(field, MCNumberField::Kind::Whole);
    return field;
}

QWidget *row(QWidget *parent, std::initializer_list<QWidget *> widgets, bool stretch = false)
{
    auto *box = new QWidget(parent);
    auto *layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    if (stretch)
        layout->addStretch();
    return box;
}

} // namespace

MCPreferencesController::MCPreferencesController(MCPreferences *preferences, MCToolTipBinder *toolTips, QWidget *parent)
    : QDialog(parent)
    , m_preferences(preferences)
{
    setObjectName(QStringLiteral("preferencesPanel"));
    setWindowTitle(QStringLiteral("Preferences"));

    auto *output = new QGroupBox(QStringLiteral("Output"), this);
    m_saveField = new QLineEdit(output);
    m_saveField->setReadOnly(true);
    m_saveField->setPlaceholderText(QStringLiteral("Beside the source file"));
    m_saveField->setMinimumWidth(260);
    auto *changeSave = new QPushButton(QStringLiteral("Change..."), output);
    auto *clearSave = new QPushButton(QStringLiteral("Clear"), output);
    m_keepLogs = new QCheckBox(QStringLiteral("Keep log and temporary files"), output);
    m_legacyEncoder = new QCheckBox(QStringLiteral("Use the legacy encoder"), output);
    auto *outputForm = new QFormLayout(output);
    outputForm->addRow(QStringLiteral("Save folder:"), row(output, {m_saveField, changeSave, clearSave}));
    outputForm->addRow(QString(), m_keepLogs);
    outputForm->addRow(QString(), m_legacyEncoder);

    auto *subtitles = new QGroupBox(QStringLiteral("Subtitles"), this);
    m_fontField = new QLineEdit(subtitles);
    m_fontField->setReadOnly(true);
    m_fontField->setPlaceholderText(QStringLiteral("No subtitles are drawn"));
    auto *changeFont = new QPushButton(QStringLiteral("Change..."), subtitles);
    m_subPosField = numberField(subtitles);
    m_subSizeField = numberField(subtitles);
    auto *subForm = new QFormLayout(subtitles);
    subForm->addRow(QStringLiteral("Font:"), row(subtitles, {m_fontField, changeFont}));
    subForm->addRow(QStringLiteral("Position:"),
                    row(subtitles, {m_subPosField, new QLabel(QStringLiteral("% of the height from the bottom"), subtitles)}, true));
    subForm->addRow(QStringLiteral("Size:"),
                    row(subtitles, {m_subSizeField, new QLabel(QStringLiteral("% of the picture height"), subtitles)}, true));

    m_toolTips = new QCheckBox(QStringLiteral("Show tool tips"), this);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &MCPreferencesController::okPreferencesButton);
    connect(buttons, &QDialogButtonBox::rejected, this, &MCPreferencesController::cancelPreferencesButton);
    connect(changeSave, &QPushButton::clicked, this, &MCPreferencesController::changeSaveButton);
    connect(clearSave, &QPushButton::clicked, this, &MCPreferencesController::clearSaveDirectory);
    connect(changeFont, &QPushButton::clicked, this, &MCPreferencesController::changeFontButton);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(output);
    layout->addWidget(subtitles);
    layout->addWidget(m_toolTips);
    layout->addWidget(buttons);

    toolTips->bind(m_keepLogs, QStringLiteral("ttPrefLogsButton"));
    toolTips->bind(m_toolTips, QStringLiteral("ttPrefToolTipsButton"));
    toolTips->bind(m_subPosField, QStringLiteral("ttPrefSubPosField"));
    toolTips->bind(m_subSizeField, QStringLiteral("ttPrefSubHeightField"));
    toolTips->bind(m_fontField, QStringLiteral("ttPrefSubFontField"));
}

void MCPreferencesController::openPreferences()
{
    loadPropertiesFromPreferences();
    if (QWidget *main = parentWidget()) {
        adjustSize();
        const QRect frame = main->frameGeometry();
        move(frame.center().x() - width() / 2, frame.top() + 60);
    }
    show();
    raise();
    activateWindow();
}

void MCPreferencesController::loadPropertiesFromPreferences()
{
    m_saveField->setText(m_preferences->saveDirectoryURL.toLocalFile());
    m_fontURL = m_preferences->subtitleFontURL;
    showFontName();
    m_subPosField->setText(m_preferences->subtitlePosition);
    m_subSizeField->setText(m_preferences->subtitleSize);
    m_keepLogs->setChecked(m_preferences->keepLogsFlag);
    m_toolTips->setChecked(m_preferences->showToolTipsFlag);
    m_legacyEncoder->setChecked(m_preferences->useLegacyEncoderFlag);
}

void MCPreferencesController::savePropertiesToPreferences()
{
    const QString folder = m_saveField->text();
    m_preferences->saveDirectoryURL = folder.isEmpty() ? QUrl() : QUrl::fromLocalFile(folder);
    m_preferences->subtitleFontURL = m_fontURL;
    // An emptied number field keeps the stored value rather than a blank.
    if (!m_subPosField->text().isEmpty())
        m_preferences->subtitlePosition = m_subPosField->text();
    if (!m_subSizeField->text().isEmpty())
        m_preferences->subtitleSize = m_subSizeField->text();
    m_preferences->keepLogsFlag = m_keepLogs->isChecked();
    m_preferences->useLegacyEncoderFlag = m_legacyEncoder->isChecked();
    m_preferences->setShowToolTipsFlag(m_toolTips->isChecked());
    m_preferences->modifyToolTips();
    m_preferences->savePreferencesToDefaults();
}

void MCPreferencesController::changeSaveButton()
{
    MCFileChooser::open(this, QStringLiteral("Select save directory location:"), QFileDialog::Directory,
                        m_saveField->text(), [this](const QList<QUrl> &urls) { m_saveField->setText(urls.first().toLocalFile()); });
}

void MCPreferencesController::clearSaveDirectory()
{
    m_saveField->setText(QString());
}

void MCPreferencesController::changeFontButton()
{
    MCFileChooser::open(this, QStringLiteral("Choose a Subtitle Font:"), QFileDialog::ExistingFile,
                        QString::fromLatin1(MCPreferences::fontChooserStartFolder), [this](const QList<QUrl> &urls) {
                            m_fontURL = urls.first();
                            showFontName();
                        });
}

void MCPreferencesController::okPreferencesButton()
{
    savePropertiesToPreferences();
    accept();
}

void MCPreferencesController::cancelPreferencesButton()
{
    reject();
}

void MCPreferencesController::showFontName()
{
    m_fontField->setText(m_fontURL.isEmpty() ? QString() : QFileInfo(m_fontURL.toLocalFile()).fileName());
}
