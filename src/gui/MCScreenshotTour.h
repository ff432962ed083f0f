#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

// Walks the window through its views for scripts/screenshots.sh: shows a
// view, names it on stdout, and goes on once the script has written
// "ready NAME" into the file named by KESTRANE_SCREENSHOT_SCRIPT.
//
// Where the application controller is there, the tour also opens both
// preset editors and photographs the queue while a conversion runs; the
// conversion is stopped when the tour ends.
class MCScreenshotTour : public QObject
{
    Q_OBJECT
public:
    struct Stop
    {
        QString name;
        std::function<void()> show;
    };

    MCScreenshotTour(QList<Stop> stops, QObject *parent = nullptr);
    void start();

private:
    void addApplicationStops();
    void next();
    void settle(int waited);
    void poll();

    QList<Stop> m_stops;
    // A view that needs time (a running job) is named once this answers true.
    QHash<QString, std::function<bool()>> m_readyWhen;
    std::function<void()> m_finish;
    int m_index = -1;
    QString m_stepsFile;
};
