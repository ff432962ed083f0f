#include "MCScreenshotTour.h"

#include <QFile>
#include <QTimer>

#include <cstdio>

MCScreenshotTour::MCScreenshotTour(QList<Stop> stops, QObject *parent)
    : QObject(parent)
    , m_stops(std::move(stops))
    , m_stepsFile(qEnvironmentVariable("KESTRANE_SCREENSHOT_SCRIPT"))
{
}

void MCScreenshotTour::start()
{
    QTimer::singleShot(1500, this, &MCScreenshotTour::next);
}

void MCScreenshotTour::next()
{
    ++m_index;
    if (m_index >= m_stops.size()) {
        std::printf("done\n");
        std::fflush(stdout);
        return;
    }
    m_stops.at(m_index).show();
    // Give the window a moment to settle before it is photographed.
    QTimer::singleShot(1200, this, [this] {
        std::printf("%s\n", qPrintable(m_stops.at(m_index).name));
        std::fflush(stdout);
        poll();
    });
}

void MCScreenshotTour::poll()
{
    QFile steps(m_stepsFile);
    if (steps.open(QIODevice::ReadOnly)
        && steps.readAll().contains(QStringLiteral("ready %1\n").arg(m_stops.at(m_index).name).toUtf8())) {
        next();
        return;
    }
    QTimer::singleShot(200, this, &MCScreenshotTour::poll);
}
