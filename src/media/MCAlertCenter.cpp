#include "MCAlertCenter.h"

#include "MCLog.h"

#include <QMutex>

namespace {
QMutex presenterMutex;
}

MCAlertCenter &MCAlertCenter::instance()
{
    static MCAlertCenter center;
    return center;
}

void MCAlertCenter::setPresenter(std::shared_ptr<MCAlertPresenter> presenter)
{
    QMutexLocker lock(&presenterMutex);
    m_presenter = std::move(presenter);
}

std::shared_ptr<MCAlertPresenter> MCAlertCenter::presenter() const
{
    QMutexLocker lock(&presenterMutex);
    return m_presenter;
}

void MCAlertCenter::present(const MCAlert &alert, std::function<void(int)> onClose)
{
    if (const auto current = presenter()) {
        current->present(alert, std::move(onClose));
        return;
    }
    MCLog::line(QStringLiteral("Alert: %1 %2").arg(alert.message, alert.informativeText));
    if (onClose)
        onClose(MCAlertFirstButtonReturn);
}
