#pragma once

#include <QList>
#include <QObject>
#include <QString>

// The tools of the resource folder and the version each reports, asked in
// the background (each tool is a separate program and some are slow to
// start). Kestrane's own stand-ins are named as such and not run.
class MCToolVersions : public QObject
{
    Q_OBJECT
public:
    struct Tool
    {
        QString name;    // as Kestrane runs it, e.g. "Frameworks/mkvmerge"
        QString path;    // where the name leads, empty when missing
        QString version; // "not found", "asking...", or the tool's own words
    };

    explicit MCToolVersions(const QString &resourceFolder, QObject *parent = nullptr);

    // Starts asking every tool present; toolChanged reports each answer.
    void start();
    const QList<Tool> &tools() const { return m_tools; }
    bool isFinished() const { return m_pending == 0; }

    // The telling line of a tool's version output: the first with a digit,
    // without its copyright tail.
    static QString versionIn(const QString &output);

    static constexpr int timeoutMs = 5000;

signals:
    void toolChanged(int row);
    void finished();

private:
    void ask(int row, const QStringList &arguments);
    void answer(int row, const QString &version);

    QList<Tool> m_tools;
    int m_pending = 0;
};
