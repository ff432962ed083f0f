#include "MCFilterButton.h"

#include "MCFilterPanel.h"
#include "MCPresetsController.h"

#include <QEnterEvent>

MCFilterButton::MCFilterButton(int tag, MCFilterPanel *panel, MCPresetsController *presets, QWidget *parent)
    : QPushButton(parent)
    , filterPanel(panel)
    , appPresetsController(presets)
    , m_tag(tag)
{
    setObjectName(QStringLiteral("filterButton%1").arg(tag));
    setAutoDefault(false);
    connect(this, &QPushButton::clicked, this, [this] { appPresetsController->editFilterPanel(m_tag); });
    connect(appPresetsController, &MCPresetsController::editorChanged, this, &MCFilterButton::refresh);
    refresh();
}

void MCFilterButton::refresh()
{
    const MCFilterRow &row = appPresetsController->filterRowForTag(m_tag);
    const bool wasInEditMode = isInEditMode;
    isInEditMode = row.inEditMode;
    setText(row.editTitle);
    setEnabled(row.editEnabled);
    if (!filterPanel)
        return;
    // The panel follows the row that shows it; another row's button must
    // not hide it.
    if (row.panelShown) {
        placePanel();
        filterPanel->show();
        if (isInEditMode && !wasInEditMode) {
            // Editing gives the panel the keyboard.
            filterPanel->raise();
            filterPanel->activateWindow();
        }
    } else if (filterPanel->property("shownFor").toInt() == m_tag) {
        filterPanel->hide();
    }
}

void MCFilterButton::placePanel()
{
    filterPanel->setProperty("shownFor", m_tag);
    const QRect onScreen(mapToGlobal(QPoint(0, 0)), size());
    filterPanel->move(MCPresetsController::filterPanelOrigin(onScreen, QSize(filterPanel->width(), filterPanel->panelHeight())));
}

void MCFilterButton::enterEvent(QEnterEvent *event)
{
    QPushButton::enterEvent(event);
    if (isEnabled() && !isInEditMode)
        appPresetsController->filterButtonEntered(m_tag);
}

void MCFilterButton::leaveEvent(QEvent *event)
{
    QPushButton::leaveEvent(event);
    if (isEnabled())
        appPresetsController->filterButtonExited(m_tag);
}
