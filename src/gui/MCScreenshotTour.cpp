#include "MCScreenshotTour.h"

#if KESTRANE_HAVE_APP
#include "MCAppDelegate.h"
#include "MCJob.h"
#include "MCFilterButton.h"
#include "MCFilterPanel.h"
#include "MCMainWindow.h"
#include "MCPresetSelectionsPanel.h"
#include "MCPresetSettingsPanel.h"
#include "MCPresetsController.h"
#include "MCProgressTableModel.h"
#include "MCQueueController.h"
#include "MCQueuePanel.h"
#include "MCWindowBinding.h"

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QEnterEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#endif

#include <QFile>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int kSettleMs = 1200;
constexpr int kLongestWaitMs = 30000;

#if KESTRANE_HAVE_APP
void rename(QLineEdit *field, const QString &name)
{
    field->setText(name);
    emit field->editingFinished();
}

void choose(QComboBox *popUp, const QString &text)
{
    popUp->setCurrentIndex(popUp->findText(text));
    emit popUp->activated(popUp->currentIndex());
    emit popUp->textActivated(text);
}

// The pointer resting on a filter button, then a click: its panel opens
// for editing.
void editFilter(MCFilterButton *button)
{
    QEnterEvent enter(QPointF(4, 4), QPointF(4, 4), button->mapToGlobal(QPointF(4, 4)));
    QApplication::sendEvent(button, &enter);
    button->click();
}

// The running job's step is far enough along to show a real bar.
bool conversionUnderWay(MCQueueController *queue)
{
    static const QRegularExpression percent(QStringLiteral("(\\d+)(\\.\\d+)?%"));
    if (!queue->qJobIsRunning())
        return false;
    for (const QVariant &row : queue->jobProgressArrayController()->rows()) {
        const auto match = percent.match(row.toMap().value(QStringLiteral("Progress")).toString());
        if (match.hasMatch() && match.captured(1).toInt() >= 20 && match.captured(1).toInt() <= 90)
            return true;
    }
    return false;
}
#endif

} // namespace

MCScreenshotTour::MCScreenshotTour(QList<Stop> stops, QObject *parent)
    : QObject(parent)
    , m_stops(std::move(stops))
    , m_stepsFile(qEnvironmentVariable("KESTRANE_SCREENSHOT_SCRIPT"))
{
}

void MCScreenshotTour::start()
{
    addApplicationStops();
    QTimer::singleShot(1500, this, &MCScreenshotTour::next);
}

void MCScreenshotTour::addApplicationStops()
{
#if KESTRANE_HAVE_APP
    QObject *application = parent();
    auto *binding = application ? application->findChild<MCWindowBinding *>() : nullptr;
    auto *delegate = application ? application->findChild<MCAppDelegate *>() : nullptr;
    MCMainWindow *window = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *main = qobject_cast<MCMainWindow *>(widget))
            window = main;
    }
    if (!binding || !delegate || !window)
        return;
    MCPresetSelectionsPanel *selections = binding->presetSelectionsPanel;
    MCPresetSettingsPanel *settings = binding->presetSettingsPanel;
    MCQueueController *queue = delegate->queueController;

    const Stop selectionsStop{QStringLiteral("preset-selections"), [window, selections] {
                                  window->queuePanel->hide();
                                  window->tabs->setCurrentIndex(0);
                                  window->editSelectionsButton->click();
                                  selections->addPresetButton->click();
                                  rename(selections->nameField, QStringLiteral("English audio first"));
                                  selections->af2AddButton->click();
                                  editFilter(selections->af1EditButton);
                                  choose(selections->audioFilterPanel->trackChoicePopUp(),
                                         QStringLiteral("Tracks w/ Properties ..."));
                                  choose(selections->audioFilterPanel->languagePopUp(), QStringLiteral("English"));
                              }};
    const Stop settingsStop{QStringLiteral("preset-settings"), [window, selections, settings] {
                                selections->af1EditButton->click(); // "Done"
                                selections->okButton->click();
                                window->editSettingsButton->click();
                                settings->addPresetButton->click();
                                rename(settings->nameField, QStringLiteral("Xbox, stereo MP3"));
                                choose(settings->devicePopUp, QStringLiteral("Xbox"));
                                choose(settings->stereoActionPopUp, QStringLiteral("MP3 (2-Ch.)"));
                            }};
    // A two-pass MPEG-4 encode of the loaded file, long enough to be seen.
    // One file dropped again, so that Convert is no batch, and the settings
    // left to the user's own choice.
    const Stop queueStop{QStringLiteral("queue-panel"), [window, settings, binding, delegate] {
                             if (settings->isVisible())
                                 settings->okButton->click();
                             window->tabs->setCurrentIndex(0);
                             if (!delegate->openedURLsArray().isEmpty())
                                 binding->openFiles({delegate->openedURLsArray().first()}, QStringLiteral("drag"));
                             window->presetSettingsPopUp->setCurrentIndex(0);
                             emit window->presetSettingsPopUp->activated(0);
                             if (QAbstractButton *twoPass = window->videoMatrix->button(2); twoPass && twoPass->isEnabled())
                                 twoPass->click();
                             window->resize(1270, 760);
                             window->queuePanel->show();
                             window->resizeDocks({window->queuePanel}, {430}, Qt::Horizontal);
                             if (window->convertButton->isEnabled())
                                 window->convertButton->click();
                         }};
    QList<Stop> stops;
    bool afterQueue = false;
    for (const Stop &stop : std::as_const(m_stops)) {
        if (stop.name == queueStop.name) {
            stops << selectionsStop << settingsStop << queueStop;
            afterQueue = true;
        } else if (afterQueue) {
            // Later views are shown on the window as it was before the queue.
            const QSize size = window->size();
            stops << Stop{stop.name, [window, delegate, size, show = stop.show] {
                              delegate->stopAndEmptyQueue();
                              window->queuePanel->hide();
                              window->resize(size);
                              show();
                          }};
        } else {
            stops << stop;
        }
    }
    if (stops.size() == m_stops.size())
        stops << selectionsStop << settingsStop << queueStop;
    m_stops = stops;
    m_readyWhen.insert(queueStop.name, [queue] { return conversionUnderWay(queue); });
    // Nothing of the tour's conversion outlives it.
    m_finish = [delegate] { delegate->stopAndEmptyQueue(); };
#endif
}

void MCScreenshotTour::next()
{
    ++m_index;
    if (m_index >= m_stops.size()) {
        if (m_finish)
            m_finish();
        std::printf("done\n");
        std::fflush(stdout);
        return;
    }
    m_stops.at(m_index).show();
    // Give the window a moment to settle before it is photographed.
    QTimer::singleShot(kSettleMs, this, [this] { settle(kSettleMs); });
}

void MCScreenshotTour::settle(int waited)
{
    const Stop &stop = m_stops.at(m_index);
    const auto ready = m_readyWhen.value(stop.name);
    if (ready && !ready() && waited < kLongestWaitMs) {
        QTimer::singleShot(200, this, [this, waited] { settle(waited + 200); });
        return;
    }
    std::printf("%s\n", qPrintable(stop.name));
    std::fflush(stdout);
    poll();
}

void MCScreenshotTour::poll()
{
    QFile steps(m_stepsFile);
    if (steps.open(QIODevice::ReadOnly)
        && steps.readAll().contains(QStringLiteral("ready %1\n").arg(m_stops.at(m_index).name).toUtf8())) {
        next();
        return;
    }
    QTimer::singleShot(200, this, &MCScreenshotTour::poll);
}
