#include "MCFileChooser.h"

QFileDialog *MCFileChooser::open(QWidget *parent, const QString &title, QFileDialog::FileMode mode,
                                 const QString &startFolder, Chosen chosen)
{
    auto *dialog = new QFileDialog(parent, title, startFolder);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(mode);
    if (mode == QFileDialog::Directory)
        dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setWindowModality(Qt::WindowModal);
    // accepted() comes before the deferred delete, so the dialog can still be read.
    QObject::connect(dialog, &QDialog::accepted, dialog, [dialog, chosen = std::move(chosen)] {
        const QList<QUrl> urls = dialog->selectedUrls();
        if (!urls.isEmpty() && chosen)
            chosen(urls);
    });
    dialog->open();
    return dialog;
}
