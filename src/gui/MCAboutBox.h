#pragma once

#include <QDialog>

class MCToolVersions;
class QTableWidget;

// Help > About Kestrane: the version, and the tools of the resource folder
// with the versions they report, filled in as the answers arrive.
class MCAboutBox : public QDialog
{
    Q_OBJECT
public:
    MCAboutBox(const QString &resourceFolder, QWidget *parent = nullptr);

    QTableWidget *toolTable() const { return m_table; }
    MCToolVersions *versions() const { return m_versions; }

private:
    void showTool(int row);

    MCToolVersions *m_versions;
    QTableWidget *m_table;
};
