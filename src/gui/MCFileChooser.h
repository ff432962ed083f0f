#pragma once

#include <QFileDialog>
#include <QList>
#include <QUrl>

#include <functional>

// Every file and folder chooser of the window: Qt's file dialog, modal to its
// window, handing the chosen locations on once it is accepted. The answer is
// read from the accepted dialog itself, which works for the platform's dialog
// and for Qt's own alike (Qt's own never sends urlsSelected).
class MCFileChooser
{
public:
    using Chosen = std::function<void(const QList<QUrl> &)>;

    // mode Directory also limits the view to folders. The dialog deletes
    // itself when closed; it is answered for tests and for callers that
    // adjust it further.
    static QFileDialog *open(QWidget *parent, const QString &title, QFileDialog::FileMode mode,
                             const QString &startFolder, Chosen chosen);
};
