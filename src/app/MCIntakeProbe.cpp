#include "MCIntakeProbe.h"

#include "MCVideoFile.h"

#include <QThread>

MCIntakeProbe::MCIntakeProbe(QObject *parent)
    : QObject(parent)
{
}

MCIntakeProbe::~MCIntakeProbe()
{
    if (m_worker) {
        m_worker->wait();
        delete m_worker;
    }
}

void MCIntakeProbe::inspect(const QList<QUrl> &urls, std::shared_ptr<MCReportCache> cache, std::function<void()> then)
{
    m_pending.append({urls, std::move(cache), std::move(then)});
    if (m_worker)
        return;
    startNext();
    emit busyChanged(true);
}

void MCIntakeProbe::startNext()
{
    Request request = m_pending.takeFirst();
    m_then = std::move(request.then);
    m_worker = QThread::create([urls = request.urls, cache = request.cache] {
        for (const QUrl &url : urls) {
            MCVideoFile file;
            file.setReportCache(cache);
            file.initializeForURL(url);
        }
    });
    // Delivered on this object's thread: the intake goes on there.
    connect(m_worker, &QThread::finished, this, &MCIntakeProbe::finishCurrent);
    m_worker->start();
}

void MCIntakeProbe::finishCurrent()
{
    // finished() is sent just before the thread ends.
    m_worker->wait();
    delete m_worker;
    m_worker = nullptr;
    const std::function<void()> then = std::move(m_then);
    m_then = nullptr;
    if (then)
        then();
    // then() may have asked again, which started at once.
    if (m_worker)
        return;
    if (m_pending.isEmpty())
        emit busyChanged(false);
    else
        startNext();
}
