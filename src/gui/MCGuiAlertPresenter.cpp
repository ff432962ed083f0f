#include "MCGuiAlertPresenter.h"

#include <QAbstractButton>
#include <QPushButton>
#include <QMessageBox>
#include <QTimer>

#include <memory>

MCGuiAlertPresenter::MCGuiAlertPresenter(std::function<QWidget *()> windowFor)
    : m_windowFor(std::move(windowFor))
{
}

void MCGuiAlertPresenter::present(const MCAlert &alert, std::function<void(int)> onClose)
{
    QWidget *window = m_windowFor ? m_windowFor() : nullptr;
    auto *box = new QMessageBox(window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(QStringLiteral("Kestrane"));
    box->setIcon(alert.style == MCAlert::Style::Warning ? QMessageBox::Warning : QMessageBox::Information);
    box->setText(alert.message);
    box->setInformativeText(alert.informativeText);
    box->setWindowModality(window ? Qt::WindowModal : Qt::ApplicationModal);

    const QStringList titles = alert.buttons.isEmpty() ? QStringList{QStringLiteral("OK")} : alert.buttons;
    QList<QAbstractButton *> buttons;
    for (int i = 0; i < titles.size(); ++i) {
        // The first button is the default; a second one answers Escape.
        const auto role = i == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
        buttons << box->addButton(titles.at(i), role);
    }
    box->setDefaultButton(qobject_cast<QPushButton *>(buttons.first()));
    if (buttons.size() > 1)
        box->setEscapeButton(buttons.at(1));

    // Answered exactly once, whether by a button, Escape or the time-out.
    auto answered = std::make_shared<bool>(false);
    auto answer = [answered, onClose](int code) {
        if (*answered)
            return;
        *answered = true;
        if (onClose)
            onClose(code);
    };
    QObject::connect(box, &QMessageBox::buttonClicked, box, [buttons, answer](QAbstractButton *clicked) {
        const int index = buttons.indexOf(clicked);
        answer(MCAlertFirstButtonReturn + (index < 0 ? 0 : index));
    });
    QObject::connect(box, &QDialog::finished, box, [answer, n = buttons.size()](int) {
        // Closed without a button (Escape with one button, window close).
        answer(n > 1 ? MCAlertSecondButtonReturn : MCAlertFirstButtonReturn);
    });
    if (alert.timeoutSeconds > 0) {
        auto *timer = new QTimer(box);
        timer->setSingleShot(true);
        QObject::connect(timer, &QTimer::timeout, box, [box, answer] {
            answer(MCAlertFirstButtonReturn);
            box->close();
        });
        timer->start(static_cast<int>(alert.timeoutSeconds * 1000));
    }
    m_current = box;
    box->open();
}
