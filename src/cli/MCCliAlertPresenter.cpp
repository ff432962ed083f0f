#include "MCCliAlertPresenter.h"

#include "MCTerminalText.h"

#include <cstdio>

MCCliAlertPresenter::MCCliAlertPresenter(Answerer answerer)
    : m_answerer(std::move(answerer))
{
}

QString MCCliAlertPresenter::lineFor(const MCAlert &alert)
{
    const QString message = alert.message.trimmed();
    const QString informative = alert.informativeText.trimmed();
    if (informative.isEmpty())
        return message;
    if (message.isEmpty())
        return informative;
    return QStringLiteral("%1: %2").arg(message, informative);
}

void MCCliAlertPresenter::present(const MCAlert &alert, std::function<void(int)> onClose)
{
    // A batch tests its first file twice (at the drop and at the start);
    // one line says it.
    const QString text = lineFor(alert);
    if (text != m_lastLine) {
        MCTerminalText::print(stderr, text + QLatin1Char('\n'));
    }
    m_lastLine = text;
    int code = MCAlertFirstButtonReturn;
    if (alert.buttons.size() > 1 && m_answerer)
        code = m_answerer(alert);
    if (onClose)
        onClose(code);
}
