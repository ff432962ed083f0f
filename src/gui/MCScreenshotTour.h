#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

// Walks the window through its views for scripts/screenshots.sh: shows a
// view, names it on stdout, and goes on once the script has written
// "ready NAME" into the file named by KESTRANE_SCREENSHOT_SCRIPT.
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
    void next();
    void poll();

    QList<Stop> m_stops;
    int m_index = -1;
    QString m_stepsFile;
};
