#include "MCMainWindow.h"

#include "MCDropTableView.h"
#include "MCFormParts.h"
#include "MCMkvTabPage.h"
#include "MCNumberField.h"
#include "MCTimeField.h"
#include "MCPreferences.h"
#include "MCPreferencesController.h"
#include "MCQueuePanel.h"
#include "MCToolTipBinder.h"
#include "MCTrackTableModel.h"

#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStackedWidget>
#include <QStringListModel>
#include <QStyle>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

using MCFormParts::numberField;
using MCFormParts::radioGroup;
using MCFormParts::withUnit;

QLineEdit *timeField(QWidget *parent, const QString &name)
{
    auto *field = new QLineEdit(QStringLiteral("00:00:00"), parent);
    field->setObjectName(name);
    field->setFixedWidth(field->fontMetrics().horizontalAdvance(QStringLiteral("00:00:00")) + 24);
    field->setMaxLength(12);
    new MCTimeField(field);
    return field;
}

// The keys people expect everywhere, with the desktop's own where it has
// others (some desktops define none for Quit or Preferences).
QList<QKeySequence> withStandardKeys(const QKeySequence &usual, QKeySequence::StandardKey standard)
{
    QList<QKeySequence> keys{usual};
    for (const QKeySequence &key : QKeySequence::keyBindings(standard)) {
        if (!keys.contains(key))
            keys << key;
    }
    return keys;
}

} // namespace

const QStringList &MCMainWindow::tabNames()
{
    static const QStringList names{QStringLiteral("AVI"), QStringLiteral("MKV"), QStringLiteral("MP4"),
                                   QStringLiteral("Edit Files"), QStringLiteral("Edit Tracks")};
    return names;
}

MCMainWindow::MCMainWindow(MCPreferences *preferences, MCQueueController *queue, QWidget *parent)
    : QMainWindow(parent)
    , m_preferences(preferences)
{
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("Kestrane"));
    setAcceptDrops(true);
    toolTips = new MCToolTipBinder(preferences, this);

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->addWidget(buildTopBar());
    layout->addWidget(buildTables(), 1);

    tabs = new QTabWidget(central);
    mkvTab = new MCMkvTabPage(tabNames().at(1), false, this);
    // An MP4 is made for a device: its extension, "-ipod" and the H.264 level follow it.
    mp4Tab = new MCMkvTabPage(tabNames().at(2), true, this);
    tabs->addTab(buildAviTab(), tabNames().at(0));
    tabs->addTab(mkvTab, tabNames().at(1));
    tabs->addTab(mp4Tab, tabNames().at(2));
    tabs->addTab(buildEditFilesTab(), tabNames().at(3));
    tabs->addTab(buildEditTracksTab(), tabNames().at(4));
    layout->addWidget(tabs);
    setCentralWidget(central);

    queuePanel = new MCQueuePanel(queue, toolTips, this);
    addDockWidget(Qt::RightDockWidgetArea, queuePanel);
    queuePanel->hide();
    preferencesPanel = new MCPreferencesController(preferences, toolTips, this);

    buildMenus();
    bindToolTips();
    resize(1000, 700);
}

MCMainWindow::~MCMainWindow()
{
    // A field being typed in commits now, while the window is whole: left
    // to the focus change as the window goes, its edit would reach the
    // binding with the window half destroyed.
    if (QWidget *focused = QApplication::focusWidget(); focused && isAncestorOf(focused))
        focused->clearFocus();
}

QWidget *MCMainWindow::buildTopBar()
{
    auto *bar = new QWidget(this);
    auto *grid = new QGridLayout(bar);
    grid->setContentsMargins(0, 0, 0, 0);

    openButton = new QPushButton(style()->standardIcon(QStyle::SP_DialogOpenButton), QStringLiteral("Open..."), bar);
    addButton = new QPushButton(QStringLiteral("Add Tracks..."), bar);
    playButton = new QPushButton(style()->standardIcon(QStyle::SP_MediaPlay), QStringLiteral("Play"), bar);
    watchButton = new QPushButton(QStringLiteral("Watch Folder"), bar);
    queueButton = new QPushButton(QStringLiteral("Queue"), bar);
    queueButton->setCheckable(true);

    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {openButton, addButton, playButton, watchButton})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(queueButton);
    grid->addLayout(buttons, 0, 0, 1, 6);

    presetSelectionsPopUp = new QComboBox(bar);
    presetSettingsPopUp = new QComboBox(bar);
    presetSelectionsPopUp->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    presetSettingsPopUp->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    presetSelectionsPopUp->setMinimumContentsLength(14);
    presetSettingsPopUp->setMinimumContentsLength(14);
    editSelectionsButton = new QPushButton(QStringLiteral("Edit..."), bar);
    editSettingsButton = new QPushButton(QStringLiteral("Edit..."), bar);
    auto *presets = new QHBoxLayout;
    presets->addWidget(new QLabel(QStringLiteral("Track Selections:"), bar));
    presets->addWidget(presetSelectionsPopUp);
    presets->addWidget(editSelectionsButton);
    presets->addSpacing(24);
    presets->addWidget(new QLabel(QStringLiteral("Settings:"), bar));
    presets->addWidget(presetSettingsPopUp);
    presets->addWidget(editSettingsButton);
    presets->addStretch();
    grid->addLayout(presets, 1, 0, 1, 6);

    fileTextField = new QLabel(QStringLiteral("Drop Video File(s) in the Table Below"), bar);
    fileTextField->setTextInteractionFlags(Qt::TextSelectableByMouse);
    fileTextField->setMinimumWidth(100);
    fileTextField->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QFont font = fileTextField->font();
    font.setBold(true);
    fileTextField->setFont(font);
    grid->addWidget(fileTextField, 2, 0, 1, 6);
    return bar;
}

QWidget *MCMainWindow::buildTables()
{
    auto *box = new QWidget(this);
    auto *layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);

    tableStack = new QStackedWidget(box);
    trackTable = new MCDropTableView(tableStack);
    trackTable->setObjectName(QStringLiteral("trackTable"));
    trackModel = new MCTrackTableModel(trackTable);
    trackTable->setModel(trackModel);
    trackTable->verticalHeader()->hide();
    trackTable->setAlternatingRowColors(true);
    trackTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    trackTable->setSelectionMode(QAbstractItemView::SingleSelection);
    trackTable->setCheckColumn(MCTrackTableModel::SelectedColumn);
    auto *header = trackTable->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(MCTrackTableModel::InfoColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(MCTrackTableModel::SelectedColumn, QHeaderView::Fixed);
    header->resizeSection(MCTrackTableModel::SelectedColumn, 32);

    fileTable = new MCDropTableView(tableStack);
    fileTable->setObjectName(QStringLiteral("fileTable"));
    fileModel = new QStringListModel(fileTable);
    fileTable->setModel(fileModel);
    fileTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fileTable->verticalHeader()->hide();
    fileTable->horizontalHeader()->hide();
    fileTable->horizontalHeader()->setStretchLastSection(true);
    fileTable->setAlternatingRowColors(true);
    tableStack->addWidget(trackTable);
    tableStack->addWidget(fileTable);
    layout->addWidget(tableStack, 1);

    trackToggles = new QWidget(box);
    auto *toggles = new QHBoxLayout(trackToggles);
    toggles->setContentsMargins(0, 0, 0, 0);
    toggles->addWidget(new QLabel(QStringLiteral("Select all:"), trackToggles));
    toggleVideoButton = new QPushButton(QStringLiteral("Video"), trackToggles);
    toggleAudioButton = new QPushButton(QStringLiteral("Audio"), trackToggles);
    toggleSubtitleButton = new QPushButton(QStringLiteral("Subtitles"), trackToggles);
    for (QPushButton *button : {toggleVideoButton, toggleAudioButton, toggleSubtitleButton})
        toggles->addWidget(button);
    toggles->addStretch();
    layout->addWidget(trackToggles);
    return box;
}

QWidget *MCMainWindow::buildAviTab()
{
    auto *page = new QWidget(this);
    auto *layout = new QHBoxLayout(page);

    auto *video = new QGroupBox(QStringLiteral("Video"), page);
    auto *videoLayout = new QVBoxLayout(video);
    videoMatrix = radioGroup(video, videoLayout,
                             {QStringLiteral("Passthru"), QStringLiteral("MPEG-4 (1 pass)"), QStringLiteral("MPEG-4 (2 pass)")});
    auto *videoForm = new QFormLayout;
    vidBitRateField = numberField(video);
    resWidthField = numberField(video);
    new MCNumberField(vidBitRateField, MCNumberField::Kind::Whole);
    new MCNumberField(resWidthField, MCNumberField::Kind::Whole);
    fpsCombo = new QComboBox(video);
    fpsCombo->setEditable(true);
    new MCNumberField(fpsCombo->lineEdit(), MCNumberField::Kind::Decimal);
    fpsCombo->setFixedWidth(90);
    devicePopUp = new QComboBox(video);
    videoForm->addRow(QStringLiteral("Bit rate:"), withUnit(video, vidBitRateField, QStringLiteral("kb/s")));
    videoForm->addRow(QStringLiteral("Width:"), withUnit(video, resWidthField, QStringLiteral("pixels")));
    videoForm->addRow(QStringLiteral("Frame rate:"), withUnit(video, fpsCombo, QStringLiteral("fps")));
    videoForm->addRow(QStringLiteral("Device:"), devicePopUp);
    videoLayout->addLayout(videoForm);
    videoLayout->addStretch();

    auto *audio = new QGroupBox(QStringLiteral("Audio"), page);
    auto *audioLayout = new QVBoxLayout(audio);
    MCFormParts::addAudioTrackChooser(audio, audioLayout, audioTrackLabel, audioTrackPopUp);
    audioMatrix = radioGroup(audio, audioLayout,
                             {QStringLiteral("Passthru"), QStringLiteral("MP3 Stereo"), QStringLiteral("AC3 5.1")});
    auto *audioForm = new QFormLayout;
    audioBitRatePopUp = new QComboBox(audio);
    audioForm->addRow(QStringLiteral("Bit rate:"), withUnit(audio, audioBitRatePopUp, QStringLiteral("kb/s")));
    audioLayout->addLayout(audioForm);
    addStereoCheckBox = new QCheckBox(QStringLiteral("Add a stereo copy"), audio);
    audioLayout->addWidget(addStereoCheckBox);
    audioLayout->addStretch();

    auto *subtitles = new QGroupBox(QStringLiteral("Subtitles"), page);
    auto *subtitleLayout = new QVBoxLayout(subtitles);
    subtitleMatrix = radioGroup(subtitles, subtitleLayout, {QStringLiteral("Burn into video"), QStringLiteral("Extract to file")});
    subtitleLayout->addStretch();
    convertRefusalLabel = new QLabel(subtitles);
    convertRefusalLabel->setWordWrap(true);
    convertRefusalLabel->setVisible(false);
    setColorName(convertRefusalLabel, QStringLiteral("red"));
    subtitleLayout->addWidget(convertRefusalLabel);
    convertButton = new QPushButton(QStringLiteral("Convert"), subtitles);
    convertButton->setDefault(true);
    subtitleLayout->addWidget(convertButton, 0, Qt::AlignRight);

    layout->addWidget(video, 3);
    layout->addWidget(audio, 3);
    layout->addWidget(subtitles, 2);
    return page;
}

QWidget *MCMainWindow::buildEditFilesTab()
{
    auto *page = new QWidget(this);
    auto *layout = new QHBoxLayout(page);

    auto *join = new QGroupBox(QStringLiteral("Join"), page);
    auto *joinLayout = new QVBoxLayout(join);
    auto *joinText = new QLabel(QStringLiteral("Joins the listed files, in order, into one file."), join);
    joinText->setWordWrap(true);
    joinLayout->addWidget(joinText);
    joinLayout->addStretch();
    joinButton = new QPushButton(QStringLiteral("Join"), join);
    joinLayout->addWidget(joinButton, 0, Qt::AlignRight);

    auto *split = new QGroupBox(QStringLiteral("Split"), page);
    auto *splitLayout = new QGridLayout(split);
    auto *typeRow = new QHBoxLayout;
    splitTypeMatrix = radioGroup(split, typeRow,
                                 {QStringLiteral("By time"), QStringLiteral("By size"), QStringLiteral("By duration (MKV)")});
    typeRow->addStretch();
    splitLayout->addLayout(typeRow, 0, 0, 1, 4);
    splitStartTime = timeField(split, QStringLiteral("startTimeTextField"));
    splitEndTime = timeField(split, QStringLiteral("endTimeTextField"));
    splitSize = numberField(split, 60);
    splitNumber = numberField(split, 60);
    new MCNumberField(splitSize, MCNumberField::Kind::Whole);
    new MCNumberField(splitNumber, MCNumberField::Kind::Whole);
    splitLayout->addWidget(new QLabel(QStringLiteral("Start:"), split), 1, 0, Qt::AlignRight);
    splitLayout->addWidget(splitStartTime, 1, 1);
    splitLayout->addWidget(new QLabel(QStringLiteral("End:"), split), 2, 0, Qt::AlignRight);
    splitLayout->addWidget(splitEndTime, 2, 1);
    splitLayout->addWidget(new QLabel(QStringLiteral("Size:"), split), 1, 2, Qt::AlignRight);
    splitLayout->addWidget(withUnit(split, splitSize, QStringLiteral("MB")), 1, 3);
    splitLayout->addWidget(new QLabel(QStringLiteral("Pieces:"), split), 2, 2, Qt::AlignRight);
    splitLayout->addWidget(splitNumber, 2, 3);
    splitDuration = timeField(split, QStringLiteral("durationTimeTextField"));
    splitLayout->addWidget(new QLabel(QStringLiteral("Pieces of:"), split), 3, 0, Qt::AlignRight);
    splitLayout->addWidget(splitDuration, 3, 1);
    splitLayout->setColumnStretch(3, 1);
    splitLayout->setRowStretch(4, 1);
    splitButton = new QPushButton(QStringLiteral("Split"), split);
    splitLayout->addWidget(splitButton, 5, 3, Qt::AlignRight);

    auto *other = new QGroupBox(QStringLiteral("Other"), page);
    auto *otherLayout = new QFormLayout(other);
    parWidth = numberField(other, 50);
    parHeight = numberField(other, 50);
    new MCNumberField(parWidth, MCNumberField::Kind::Whole);
    new MCNumberField(parHeight, MCNumberField::Kind::Whole);
    auto *par = new QWidget(other);
    auto *parLayout = new QHBoxLayout(par);
    parLayout->setContentsMargins(0, 0, 0, 0);
    parLayout->addWidget(parWidth);
    parLayout->addWidget(new QLabel(QStringLiteral(":"), par));
    parLayout->addWidget(parHeight);
    parLayout->addStretch();
    otherLayout->addRow(QStringLiteral("Pixel aspect:"), par);
    // Only MP4 files have their pixel aspect ratio set on its own.
    parButton = new QPushButton(QStringLiteral("Set PAR (MP4)"), other);
    otherLayout->addRow(QString(), parButton);
    remuxButton = new QPushButton(QStringLiteral("Re-Mux"), other);
    otherLayout->addRow(QString(), remuxButton);

    layout->addWidget(join, 2);
    layout->addWidget(split, 3);
    layout->addWidget(other, 2);
    return page;
}

QWidget *MCMainWindow::buildEditTracksTab()
{
    auto *page = new QWidget(this);
    auto *layout = new QHBoxLayout(page);
    auto *group = new QGroupBox(QStringLiteral("Tracks"), page);
    auto *groupLayout = new QVBoxLayout(group);
    editTrackMatrix = radioGroup(group, groupLayout,
                                 {QStringLiteral("Extract tracks"), QStringLiteral("Add external tracks"),
                                  QStringLiteral("Remove tracks (MKV, MP4)")});
    editTrackLabel = new QLabel(group);
    editTrackLabel->setWordWrap(true);
    groupLayout->addWidget(editTrackLabel);
    groupLayout->addStretch();
    auto *buttons = new QHBoxLayout;
    addTracksButton = new QPushButton(QStringLiteral("Add Tracks..."), group);
    startTrackEditButton = new QPushButton(QStringLiteral("Start"), group);
    buttons->addWidget(addTracksButton);
    buttons->addStretch();
    buttons->addWidget(startTrackEditButton);
    groupLayout->addLayout(buttons);
    layout->addWidget(group);
    return page;
}

void MCMainWindow::buildMenus()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    openAction = file->addAction(QStringLiteral("&Open..."));
    openAction->setShortcuts(withStandardKeys(QKeySequence(Qt::CTRL | Qt::Key_O), QKeySequence::Open));
    addAction = file->addAction(QStringLiteral("&Add Tracks..."));
    startAction = file->addAction(QStringLiteral("&Start"));
    startAction->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)});
    connect(startAction, &QAction::triggered, this, [this] {
        if (QPushButton *button = startButtonOfCurrentTab())
            button->click();
    });
    file->addSeparator();
    preferencesAction = file->addAction(QStringLiteral("&Preferences..."));
    preferencesAction->setShortcuts(withStandardKeys(QKeySequence(Qt::CTRL | Qt::Key_Comma), QKeySequence::Preferences));
    file->addSeparator();
    quitAction = file->addAction(QStringLiteral("&Quit"));
    quitAction->setShortcuts(withStandardKeys(QKeySequence(Qt::CTRL | Qt::Key_Q), QKeySequence::Quit));

    QMenu *view = menuBar()->addMenu(QStringLiteral("&View"));
    showQueueAction = queuePanel->toggleViewAction();
    showQueueAction->setText(QStringLiteral("&Queue"));
    view->addAction(showQueueAction);

    QMenu *help = menuBar()->addMenu(QStringLiteral("&Help"));
    onlineGuideAction = help->addAction(QStringLiteral("Online Guide"));
    troubleshootingAction = help->addAction(QStringLiteral("Online Troubleshooting"));
    help->addSeparator();
    toolTipsAction = help->addAction(QString());
    saveFileInfoAction = help->addAction(QStringLiteral("Save File Info"));
    help->addSeparator();
    aboutAction = help->addAction(QStringLiteral("&About Kestrane"));
    auto titleToolTips = [this] {
        toolTipsAction->setText(m_preferences->showToolTipsFlag ? QStringLiteral("Hide Tool Tips") : QStringLiteral("Show Tool Tips"));
    };
    titleToolTips();
    connect(m_preferences, &MCPreferences::toolTipsChanged, this, titleToolTips);
    connect(queuePanel, &QDockWidget::visibilityChanged, queueButton, &QPushButton::setChecked);
    connect(queuePanel, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (visible)
            widenQueuePanel();
    });
    connect(queueButton, &QPushButton::clicked, queuePanel, &QWidget::setVisible);
}

void MCMainWindow::bindToolTips()
{
    const QList<QPair<QWidget *, const char *>> named{
        {vidBitRateField, "ttVidBitRateField"},
        {resWidthField, "ttResWidthField"},
        {audioBitRatePopUp, "ttAudioBitRateButton"},
        {convertButton, "ttConvertButton"},
        {fpsCombo, "ttFPSCombo"},
        {addStereoCheckBox, "ttAddStereoCheckBox"},
        {devicePopUp, "ttDevicePopUp"},
        {audioTrackPopUp, "ttMultipleAudioTrackPopUp"},
        {startTrackEditButton, "ttStartTrackEditButton"},
        {parWidth, "ttEditPAR"},
        {parHeight, "ttEditPAR"},
        {parButton, "ttEditPAR"},
        {splitStartTime, "ttSplitStartTime"},
        {splitEndTime, "ttSplitEndTime"},
        {splitSize, "ttSplitSize"},
        {splitNumber, "ttSplitNumber"},
        {fileTextField, "ttConvertFileField"},
        {trackTable, "ttConvertTrackTable"},
        {playButton, "ttPlayButton"},
        {addButton, "ttAddButton"},
        {addTracksButton, "ttAddButton"},
        {toggleVideoButton, "ttToggleVideoButton"},
        {toggleAudioButton, "ttToggleAudioButton"},
        {toggleSubtitleButton, "ttToggleSubtitleButton"},
        {presetSettingsPopUp, "ttPresetSettingsPopUp"},
        {presetSelectionsPopUp, "ttPresetSelectionsPopUp"},
        {watchButton, "ttStartWatchingFolderButton"},
    };
    for (const auto &[widget, name] : named)
        toolTips->bind(widget, QString::fromLatin1(name));
    const QList<QPair<QButtonGroup *, const char *>> groups{
        {videoMatrix, "ttTheVideoMatrix"},
        {audioMatrix, "ttTheAudioMatrix"},
        {subtitleMatrix, "ttTheSubtitleMatrix"},
        {editTrackMatrix, "ttEditTrackMatrix"},
    };
    for (const auto &[group, name] : groups) {
        for (QAbstractButton *button : group->buttons())
            toolTips->bind(button, QString::fromLatin1(name));
    }
}

QPushButton *MCMainWindow::startButtonOfCurrentTab() const
{
    const QString tab = tabNames().value(tabs->currentIndex());
    if (tab == QStringLiteral("AVI"))
        return convertButton;
    if (tab == mkvTab->tabName)
        return mkvTab->convertButton;
    if (tab == mp4Tab->tabName)
        return mp4Tab->convertButton;
    if (tab == QStringLiteral("Edit Files"))
        return joinButton->isEnabled() ? joinButton : splitButton;
    if (tab == QStringLiteral("Edit Tracks"))
        return startTrackEditButton;
    return nullptr;
}

void MCMainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    MCDropTableView::acceptLocalFiles(event);
}

void MCMainWindow::dropEvent(QDropEvent *event)
{
    if (MCDropTableView::acceptLocalFiles(event))
        emit filesDropped(MCDropTableView::localFilesIn(event->mimeData()));
}

QColor MCMainWindow::colorFor(const QString &name, const QPalette &palette)
{
    if (name.compare(QLatin1String("red"), Qt::CaseInsensitive) != 0)
        return palette.color(QPalette::WindowText);
    // A plain red is too dark on a dark theme and too light on a light one.
    return palette.color(QPalette::Base).lightness() < 128 ? QColor(255, 120, 110) : QColor(190, 20, 20);
}

void MCMainWindow::setColorName(QWidget *widget, const QString &name)
{
    // The theme's palette, not the widget's own, which may hold the last colour set.
    const QPalette theme = QApplication::palette(widget);
    const QColor color = colorFor(name, theme);
    QPalette palette = widget->palette();
    // Only the enabled look: a disabled control keeps the theme's grey.
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text}) {
        palette.setColor(QPalette::Active, role, color);
        palette.setColor(QPalette::Inactive, role, color);
        palette.setColor(QPalette::Disabled, role, theme.color(QPalette::Disabled, role));
    }
    widget->setPalette(palette);
}

void MCMainWindow::fitOnScreen()
{
    const QScreen *screen = this->screen();
    if (!screen)
        return;
    const QRect available = screen->availableGeometry();
    // The frame (title bar, borders) counts too; without a window manager it is nil.
    const QSize frameExtra = frameGeometry().size() - size();
    const QSize fitting = size().boundedTo(available.size() - frameExtra).expandedTo(minimumSizeHint());
    if (fitting != size())
        resize(fitting);
    const QSize frame = fitting + frameExtra;
    const int x = qBound(available.left(), frameGeometry().left(), qMax(available.left(), available.right() + 1 - frame.width()));
    const int y = qBound(available.top(), frameGeometry().top(), qMax(available.top(), available.bottom() + 1 - frame.height()));
    if (QPoint(x, y) != frameGeometry().topLeft())
        move(x, y);
}

void MCMainWindow::widenQueuePanel()
{
    // Room for a file name and a result name beside the type and status.
    const int wanted = queuePanel->fontMetrics().averageCharWidth() * 64;
    const int missing = wanted - queuePanel->width();
    if (queuePanel->isFloating() || missing <= 0)
        return;
    // Taken from the screen first, so that the tabs keep their width.
    if (const QScreen *screen = this->screen()) {
        const int free = screen->availableGeometry().right() + 1 - frameGeometry().right() - 1;
        if (free > 0 && !isMaximized() && !isFullScreen())
            resize(width() + qMin(free, missing), height());
    }
    resizeDocks({queuePanel}, {wanted}, Qt::Horizontal);
}

void MCMainWindow::closeEvent(QCloseEvent *event)
{
    if (m_closeApproved || !askToClose) {
        event->accept();
        return;
    }
    event->ignore();
    // Qt drops a close() made inside this event, and the answer may come at
    // once (no job runs): the approved close is made afresh afterwards.
    askToClose([self = QPointer<MCMainWindow>(this)](bool quit) {
        if (!quit || !self)
            return;
        self->m_closeApproved = true;
        QMetaObject::invokeMethod(self.data(), &QWidget::close, Qt::QueuedConnection);
    });
}
