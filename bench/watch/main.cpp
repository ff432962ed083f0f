// Prints how long one watch-folder scan takes over a tree of 10,000 files
// (100 of them movies) in 100 folders: the listing alone, and a whole scan
// once the movies are known.

#include "MCWatchModeController.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kFolders = 100;
constexpr int kFilesPerFolder = 100;
constexpr int kRuns = 20;

void makeTree(const QString &root)
{
    for (int folder = 0; folder < kFolders; ++folder) {
        const QString dir = QStringLiteral("%1/folder-%2").arg(root).arg(folder);
        QDir().mkpath(dir);
        for (int file = 0; file < kFilesPerFolder; ++file) {
            const bool movie = file == 0;
            QFile out(QStringLiteral("%1/file-%2.%3").arg(dir).arg(file).arg(movie ? "mkv" : "jpg"));
            out.open(QIODevice::WriteOnly);
            out.write("x");
        }
    }
}

double medianMs(const std::function<void()> &work)
{
    std::vector<double> times;
    for (int i = 0; i < kRuns; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir root;
    makeTree(root.path());
    MCWatchModeController watch;
    watch.watchFolderURL = QUrl::fromLocalFile(root.path());
    const QUrl folder = watch.watchFolderURL;

    qsizetype movies = 0;
    const double listing = medianMs([&] { movies = watch.makeMovieListForWatchFolderURL(folder).size(); });
    watch.startWatchMode(false);
    const double scan = medianMs([&] { watch.watchLoop(); });

    std::printf("tree: %d files, %lld movies\n", kFolders * kFilesPerFolder, static_cast<long long>(movies));
    std::printf("movie list: %.1f ms (median of %d)\n", listing, kRuns);
    std::printf("one scan: %.1f ms (median of %d; goal under 50 ms)\n", scan, kRuns);
    return 0;
}
